/// The host of the tests, as the logic calls it. comTestHost.h has the same host over the binary interface.
#pragma once

#include "platform/hostServices.h"

#include <functional>
#include <string>

namespace qel
{

/// What the host answers. Its services read it in each call, so a test may change it at any time.
struct TestHost
{
    Text UniqueName = u"1";
    int32_t InstanceNumber = 1;
    Text MediaFolder, ImageFolder, FileFolder;
    Text MediaURL = u"media/", ImageURL = u"images/", FileURL = u"files/";
    Text ArchiveName;
    int32_t RecordType = 0;
    bool AtEnd = false;
    Text RecordFilename, RecordURL, DataFolder;
    Text Link;        ///< that the author chooses
    Text PresentLink; ///< of the last ChooseLink

    /// Runs inside each call, with the member's name. What it throws is the call's failure.
    std::function<void(const std::string& myMember)> Called = [](const std::string&) {
    };

    /// Lets all files of a build go into one folder, which is given with its separator.
    void BuildInto(const Text& myFolder) { MediaFolder = ImageFolder = FileFolder = myFolder; }
};

/// Both services of a host.
class TestHostServices final : public BuildHelper, public Database
{
public:
    explicit TestHostServices(TestHost& theHost) : myHost(theHost) {}

    Text UniqueName() override { return Answer("UniqueName", &TestHost::UniqueName); }
    int32_t InstanceNumber() override { return Answer("InstanceNumber", &TestHost::InstanceNumber); }
    Text MediaFolder() override { return Answer("MediaFolder", &TestHost::MediaFolder); }
    Text MediaURL() override { return Answer("MediaURL", &TestHost::MediaURL); }
    Text ImageFolder() override { return Answer("ImageFolder", &TestHost::ImageFolder); }
    Text ImageURL() override { return Answer("ImageURL", &TestHost::ImageURL); }
    Text FileFolder() override { return Answer("FileFolder", &TestHost::FileFolder); }
    Text FileURL() override { return Answer("FileURL", &TestHost::FileURL); }
    Text ArchiveName() override { return Answer("ArchiveName", &TestHost::ArchiveName); }
    int32_t RecordType() override { return Answer("RecordType", &TestHost::RecordType); }
    bool AtEnd() override { return Answer("EOF", &TestHost::AtEnd); }
    Text RecordFilename() override { return Answer("RecordFilename", &TestHost::RecordFilename); }
    void SeekUID(TextView) override { myHost.Called("SeekUID"); }
    Text RecordURL() override { return Answer("RecordURL", &TestHost::RecordURL); }
    Text DataFolder() override { return Answer("DataFolder", &TestHost::DataFolder); }
    Text ChooseLink(TextView myPresentLink) override
    {
        myHost.PresentLink = myPresentLink;
        return Answer("ChooseLink", &TestHost::Link);
    }

private:
    template <class Value>
    Value Answer(const char* myMember, Value TestHost::*myAnswer) const
    {
        TestHost& theHost = myHost; // the listener may take back the service that is called
        theHost.Called(myMember);
        return theHost.*myAnswer;
    }

    TestHost& myHost;
};

} // namespace qel

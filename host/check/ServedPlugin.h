/// A host for the checks: its services count their calls, and a check can make one of them fail.
#pragma once

#include "check/moduleTexts.h"
#include "check/OpenedComponent.h"
#include "com/CountedObject.h"
#include "com/failure.h"

#include <string>
#include <vector>

namespace qel::host
{

/// What the host's objects answer, and what they have been asked.
struct HostState
{
    template <class Value, class Given>
    HRESULT Tell(const char* myName, Value* theValue, const Given& myGiven)
    {
        return Answer(theValue,
                      [&]
                      {
                          Note(myName);
                          return myGiven;
                      });
    }
    /// Counts a call. Throws the failure if it is this call's turn.
    void Note(const char* myName);

    Text UniqueName = u"17";
    Text ImageURL = u"images/";
    Text MediaURL = u"media/";
    Text FileURL = u"files/";
    Text RecordFilename = u"nota.pdf";
    Text RecordURL = u"otra.html";
    Text ExpectedUID = u"4711"; ///< the one that may be searched for
    Text Root;                  ///< the folder of the build's and the site's folders; ends in "/"
    int32_t Instance = 3;
    int32_t Kind = 5;
    bool AtEnd = false;
    std::vector<std::string> Calls;
    size_t FailingCall = 0; ///< from 1; 0: none
    Error Reason{};
};

class CheckedHelper final : public CountedObject<QelBuildHelper>
{
public:
    explicit CheckedHelper(HostState& theState) : myState(theState) {}

    STDMETHODIMP get_UniqueName(BSTR* theName) override
    {
        return myState.Tell("UniqueName", theName, myState.UniqueName);
    }
    STDMETHODIMP get_InstanceNumber(int32_t* theNumber) override
    {
        return myState.Tell("InstanceNumber", theNumber, myState.Instance);
    }
    STDMETHODIMP get_MediaFolder(BSTR* theFolder) override { return Folder("MediaFolder", theFolder, u"media/"); }
    STDMETHODIMP get_MediaURL(BSTR* theURL) override { return myState.Tell("MediaURL", theURL, myState.MediaURL); }
    STDMETHODIMP get_ImageFolder(BSTR* theFolder) override { return Folder("ImageFolder", theFolder, u"images/"); }
    STDMETHODIMP get_ImageURL(BSTR* theURL) override { return myState.Tell("ImageURL", theURL, myState.ImageURL); }
    STDMETHODIMP get_FileFolder(BSTR* theFolder) override { return Folder("FileFolder", theFolder, u"files/"); }
    STDMETHODIMP get_FileURL(BSTR* theURL) override { return myState.Tell("FileURL", theURL, myState.FileURL); }
    STDMETHODIMP get_ArchiveName(BSTR* theName) override
    {
        return myState.Tell("ArchiveName", theName, u"archivo.dat");
    }

private:
    HRESULT Folder(const char* myName, BSTR* theFolder, TextView myFolder)
    {
        return myState.Tell(myName, theFolder, JoinTexts({myState.Root, myFolder}));
    }

    HostState& myState;
};

/// Services that a component accepts and does not use.
class Thumbnails final : public CountedObject<QelThumbnails>
{
};
class Topic final : public CountedObject<QelTopic>
{
};

class CheckedDatabase final : public CountedObject<QelDatabase>
{
public:
    explicit CheckedDatabase(HostState& theState) : myState(theState) {}

    STDMETHODIMP get_RecordType(int32_t* theType) override { return myState.Tell("RecordType", theType, myState.Kind); }
    STDMETHODIMP get_EOF(VARIANT_BOOL* theEnd) override { return myState.Tell("EOF", theEnd, myState.AtEnd); }
    STDMETHODIMP get_RecordFilename(BSTR* theName) override
    {
        return myState.Tell("RecordFilename", theName, myState.RecordFilename);
    }
    STDMETHODIMP SeekUID(BSTR* myUID, int32_t* myFirst, int32_t* mySecond) override;
    STDMETHODIMP get_RecordURL(BSTR* theURL) override { return myState.Tell("RecordURL", theURL, myState.RecordURL); }
    STDMETHODIMP get_DataFolder(BSTR* theFolder) override
    {
        return myState.Tell("DataFolder", theFolder, JoinTexts({myState.Root, u"data/"}));
    }
    STDMETHODIMP ChooseLink(BSTR* /*myPresentLink*/, BSTR* theLink) override
    {
        return myState.Tell("ChooseLink", theLink, u"URL:x");
    }

private:
    HostState& myState;
};

/// A plug-in object with services, on the thread that makes it. The site contains an archive, archivo.dat, with a
/// picture of 3 by 2 pixels and a tune, and a file, nota.pdf. The services are withdrawn at the end of its life.
class ServedPlugin
{
public:
    ServedPlugin(const OpenedComponent& myComponent, const CheckContext& myContext);
    ServedPlugin(const ServedPlugin&) = delete;
    ServedPlugin& operator=(const ServedPlugin&) = delete;
    ~ServedPlugin();

    /// Writes a script and reads the page text. Both calls have to succeed.
    Text Output(TextView myScript) const;

    HostState State;
    ComPtr<CheckedHelper> Helper;
    ComPtr<CheckedDatabase> Database;
    ComPtr<QelPlugin> Plugin;
};

struct ArchivedFile
{
    std::string Name; ///< begins with a backslash
    std::string Bytes;
};

/// The bytes of a design archive.
std::string ArchiveOf(const std::vector<ArchivedFile>& myFiles);
/// A number as an archive stores it.
std::string FourBytes(size_t myNumber);

/// A picture of 3 by 2 pixels, and what stands for a tune.
std::string_view PictureBytes();
constexpr std::string_view TuneBytes = "MThd";

} // namespace qel::host

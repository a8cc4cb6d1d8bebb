/// The host of the tests over the binary interface.
#pragma once

#include "com/CountedObject.h"
#include "com/failure.h"
#include "com/interfaceTables.h"
#include "TestHost.h"

namespace qel
{

/// One service: what both have in common.
template <class Interface>
class ComTestService : public CountedObject<Interface>
{
protected:
    explicit ComTestService(TestHost& theHost) : My(theHost) {}

    template <class Value, class Member>
    HRESULT Read(Value* theValue, Member myMember)
    {
        return Answer(theValue, [&] { return (My.*myMember)(); });
    }

    TestHostServices My;
};

class ComTestBuildHelper : public ComTestService<QelBuildHelper>
{
public:
    explicit ComTestBuildHelper(TestHost& theHost) : ComTestService(theHost) {}

    HRESULT get_UniqueName(BSTR* theName) override { return Read(theName, &BuildHelper::UniqueName); }
    HRESULT get_InstanceNumber(int32_t* theNumber) override { return Read(theNumber, &BuildHelper::InstanceNumber); }
    HRESULT get_MediaFolder(BSTR* theFolder) override { return Read(theFolder, &BuildHelper::MediaFolder); }
    HRESULT get_MediaURL(BSTR* theURL) override { return Read(theURL, &BuildHelper::MediaURL); }
    HRESULT get_ImageFolder(BSTR* theFolder) override { return Read(theFolder, &BuildHelper::ImageFolder); }
    HRESULT get_ImageURL(BSTR* theURL) override { return Read(theURL, &BuildHelper::ImageURL); }
    HRESULT get_FileFolder(BSTR* theFolder) override { return Read(theFolder, &BuildHelper::FileFolder); }
    HRESULT get_FileURL(BSTR* theURL) override { return Read(theURL, &BuildHelper::FileURL); }
    HRESULT get_ArchiveName(BSTR* theName) override { return Read(theName, &BuildHelper::ArchiveName); }
};

class ComTestDatabase : public ComTestService<QelDatabase>
{
public:
    explicit ComTestDatabase(TestHost& theHost) : ComTestService(theHost) {}

    HRESULT get_RecordType(int32_t* theType) override { return Read(theType, &Database::RecordType); }
    HRESULT get_EOF(VARIANT_BOOL* theEnd) override { return Read(theEnd, &Database::AtEnd); }
    HRESULT get_RecordFilename(BSTR* theFilename) override { return Read(theFilename, &Database::RecordFilename); }
    HRESULT SeekUID(BSTR* myUID, int32_t* /*myFirst*/, int32_t* /*mySecond*/) override
    {
        return Accept(myUID, [&](TextView myText) { My.SeekUID(myText); });
    }
    HRESULT get_RecordURL(BSTR* theURL) override { return Read(theURL, &Database::RecordURL); }
    HRESULT get_DataFolder(BSTR* theFolder) override { return Read(theFolder, &Database::DataFolder); }
    HRESULT ChooseLink(BSTR* myPresentLink, BSTR* theLink) override
    {
        return AnswerTo(myPresentLink, theLink, [&](BSTR myLink) { return My.ChooseLink(TextOfBstr(myLink)); });
    }
};

} // namespace qel

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

    STDMETHODIMP get_UniqueName(BSTR* theName) override { return Read(theName, &BuildHelper::UniqueName); }
    STDMETHODIMP get_InstanceNumber(int32_t* theNumber) override
    {
        return Read(theNumber, &BuildHelper::InstanceNumber);
    }
    STDMETHODIMP get_MediaFolder(BSTR* theFolder) override { return Read(theFolder, &BuildHelper::MediaFolder); }
    STDMETHODIMP get_MediaURL(BSTR* theURL) override { return Read(theURL, &BuildHelper::MediaURL); }
    STDMETHODIMP get_ImageFolder(BSTR* theFolder) override { return Read(theFolder, &BuildHelper::ImageFolder); }
    STDMETHODIMP get_ImageURL(BSTR* theURL) override { return Read(theURL, &BuildHelper::ImageURL); }
    STDMETHODIMP get_FileFolder(BSTR* theFolder) override { return Read(theFolder, &BuildHelper::FileFolder); }
    STDMETHODIMP get_FileURL(BSTR* theURL) override { return Read(theURL, &BuildHelper::FileURL); }
    STDMETHODIMP get_ArchiveName(BSTR* theName) override { return Read(theName, &BuildHelper::ArchiveName); }
};

class ComTestDatabase : public ComTestService<QelDatabase>
{
public:
    explicit ComTestDatabase(TestHost& theHost) : ComTestService(theHost) {}

    STDMETHODIMP get_RecordType(int32_t* theType) override { return Read(theType, &Database::RecordType); }
    STDMETHODIMP get_EOF(VARIANT_BOOL* theEnd) override { return Read(theEnd, &Database::AtEnd); }
    STDMETHODIMP get_RecordFilename(BSTR* theFilename) override { return Read(theFilename, &Database::RecordFilename); }
    STDMETHODIMP SeekUID(BSTR* myUID, int32_t* /*myFirst*/, int32_t* /*mySecond*/) override
    {
        return Accept(myUID, [&](TextView myText) { My.SeekUID(myText); });
    }
    STDMETHODIMP get_RecordURL(BSTR* theURL) override { return Read(theURL, &Database::RecordURL); }
    STDMETHODIMP get_DataFolder(BSTR* theFolder) override { return Read(theFolder, &Database::DataFolder); }
    STDMETHODIMP ChooseLink(BSTR* myPresentLink, BSTR* theLink) override
    {
        return AnswerTo(myPresentLink, theLink, [&](BSTR myLink) { return My.ChooseLink(TextOfBstr(myLink)); });
    }
};

} // namespace qel

/// What the host hands in to the component.
///
/// Folders are absolute and addresses relative to a page; all of them end in "/". The site outlives both
/// objects.
#pragma once

#include "com/CountedObject.h"
#include "com/failure.h"
#include "com/interfaceTables.h"
#include "site/PageText.h"
#include "site/Site.h"
#include "text/encodings.h"

namespace qel::host
{

/// The build service. All names that it makes contain the module's number, which is never given to another module.
class BuildService final : public CountedObject<QelBuildHelper>
{
public:
    /// Failure: the site's path cannot be told to the component.
    explicit BuildService(const Site& mySite);

    /// Chooses the module whose names the members return from now on.
    void SetModule(int64_t theModule) { myModule = theModule; }

    STDMETHODIMP get_UniqueName(BSTR* theName) override
    {
        return Answer(theName, [&] { return NumberText(myModule); });
    }
    STDMETHODIMP get_InstanceNumber(int32_t* theNumber) override
    {
        return Answer(theNumber, [&] { return static_cast<int32_t>(myModule); });
    }
    STDMETHODIMP get_MediaFolder(BSTR* theFolder) override { return Join(theFolder, myOutput, u"media/"); }
    STDMETHODIMP get_MediaURL(BSTR* theURL) override { return Join(theURL, u"", u"media/"); }
    STDMETHODIMP get_ImageFolder(BSTR* theFolder) override { return Join(theFolder, myOutput, u"images/"); }
    STDMETHODIMP get_ImageURL(BSTR* theURL) override { return Join(theURL, u"", u"images/"); }
    STDMETHODIMP get_FileFolder(BSTR* theFolder) override { return Join(theFolder, myOutput, u"files/"); }
    STDMETHODIMP get_FileURL(BSTR* theURL) override { return Join(theURL, u"", u"files/"); }
    STDMETHODIMP get_ArchiveName(BSTR* theName) override
    {
        return Answer(theName, [&] { return FromUtf8(Site::ArchiveName(myModule)); });
    }

private:
    static HRESULT Join(BSTR* theText, TextView myFirst, TextView mySecond)
    {
        return Answer(theText, [&] { return JoinTexts({myFirst, mySecond}); });
    }

    Text myOutput; ///< the build folder
    int64_t myModule = 0;
};

/// The database service. Before the first search, and after one without success, there is no current record.
class DatabaseService final : public CountedObject<QelDatabase>
{
public:
    /// Failure: the site's path cannot be told to the component.
    explicit DatabaseService(Site& theSite);

    STDMETHODIMP get_RecordType(int32_t* theType) override
    {
        return Answer(theType, [&] { return myRecord ? static_cast<int32_t>(myRecord->Kind) : 0; });
    }
    STDMETHODIMP get_EOF(VARIANT_BOOL* theEnd) override
    {
        return Answer(theEnd, [&] { return !myRecord; });
    }
    STDMETHODIMP get_RecordFilename(BSTR* theFilename) override
    {
        return Answer(theFilename, [&] { return myRecord ? FromUtf8(myRecord->Filename) : Text(); });
    }
    STDMETHODIMP SeekUID(BSTR* myUID, int32_t* myFirst, int32_t* mySecond) override;
    /// The address is escaped as it has to be in a quoted attribute, also of a tag in a quoted script text.
    STDMETHODIMP get_RecordURL(BSTR* theURL) override
    {
        return Answer(theURL, [&] { return myRecord ? FromUtf8(EscapedForHtml(RecordAddress(*myRecord))) : Text(); });
    }
    STDMETHODIMP get_DataFolder(BSTR* theFolder) override
    {
        return Answer(theFolder, [&] { return myDataFolder; });
    }
    /// The author chooses in a window; if it is cancelled, the present link stays. Failure: the window cannot be
    /// opened.
    STDMETHODIMP ChooseLink(BSTR* myPresentLink, BSTR* theLink) override;

private:
    Site& mySite;
    Text myDataFolder;
    std::optional<Record> myRecord;
};

} // namespace qel::host

#include "build/services.h"

#include "build/linkWindow.h"
#include "com/failure.h"
#include "common/Failure.h"
#include "common/paths.h"
#include "site/PageText.h"
#include "text/encodings.h"

#include <charconv>

namespace qel
{

const char16_t* const ErrorSource = u"qelhost";

} // namespace qel

namespace qel::host
{

namespace
{

/// A folder in the form that the component expects.
Text FolderText(const std::filesystem::path& myFolder)
{
    const std::optional<Text> myText = FromUtf8Exactly(PortableTextOf(myFolder));
    if (!myText || myText->find(u'\\') != Text::npos)
    {
        throw Failure("the component cannot work in " + TextOf(myFolder) +
                      ": the path is not valid UTF-8 or contains \"\\\"; move the site");
    }
    return *myText + u"/";
}

/// The record that a link names by its uid; nothing if the text is not the uid of a record.
std::optional<Record> FindByText(Site& theSite, const std::string& myUID)
{
    int64_t myNumber = 0;
    std::from_chars(myUID.data(), myUID.data() + myUID.size(), myNumber);
    return std::to_string(myNumber) == myUID ? theSite.FindRecord(myNumber) : std::nullopt;
}

/// The result of an operation on the site; its failure becomes a device error for the component.
template <class Operation>
auto RunOnSite(Operation myOperation)
{
    try
    {
        return myOperation();
    }
    catch (const Failure& myFailure)
    {
        throw Error{ErrorNumber::DeviceError, FromUtf8(myFailure.what())};
    }
}

} // namespace

BuildService::BuildService(const Site& mySite) : myOutput(FolderText(mySite.BuildFolder())) {}

DatabaseService::DatabaseService(Site& theSite) : mySite(theSite), myDataFolder(FolderText(theSite.DataFolder())) {}

STDMETHODIMP DatabaseService::SeekUID(BSTR* myUID, int32_t* /*myFirst*/, int32_t* /*mySecond*/)
{
    return Accept(myUID, [&](const Text& myText)
                  { myRecord = RunOnSite([&] { return FindByText(mySite, ToUtf8(myText)); }); });
}

STDMETHODIMP DatabaseService::ChooseLink(BSTR* myPresentLink, BSTR* theLink)
{
    return AnswerTo(myPresentLink, theLink,
                    [&](BSTR myPresent)
                    {
                        const Text myPresentText = TextOfBstr(myPresent);
                        const LinkChoice myOffer =
                            OfferedLinks(RunOnSite([&] { return mySite.Records(); }), myPresentText);
                        LinkChoice theChoice = myOffer;
                        const bool myIsConfirmed = ShowLinkWindow(theChoice);
                        const Text myNewText = LinkOf(theChoice);
                        // A link that the author does not change keeps its exact text.
                        return myIsConfirmed && myNewText != LinkOf(myOffer) ? myNewText : myPresentText;
                    });
}

} // namespace qel::host

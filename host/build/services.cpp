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

/// A folder as the component is told of it.
Text FolderText(const std::filesystem::path& myFolder)
{
    const std::optional<Text> myText = FromUtf8Exactly(PortableTextOf(myFolder));
    if (!myText || myText->find(u'\\') != Text::npos)
    {
        throw Failure("the component cannot work in " + TextOf(myFolder) +
                      ": the path is not valid UTF-8 or holds \"\\\"; move the site");
    }
    return *myText + u"/";
}

/// The record that a link names by its uid; nothing for a text that is no uid or none of the site.
std::optional<Record> FindByText(Site& theSite, const std::string& myUID)
{
    int64_t myNumber = 0;
    std::from_chars(myUID.data(), myUID.data() + myUID.size(), myNumber);
    return std::to_string(myNumber) == myUID ? theSite.FindRecord(myNumber) : std::nullopt;
}

/// What an operation on the site gives; a failure goes to the component as one of a device.
template <class Operation>
auto AskedOfSite(Operation myOperation)
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
                  { myRecord = AskedOfSite([&] { return FindByText(mySite, ToUtf8(myText)); }); });
}

STDMETHODIMP DatabaseService::ChooseLink(BSTR* myPresentLink, BSTR* theLink)
{
    return AnswerTo(myPresentLink, theLink,
                    [&](BSTR myPresent)
                    {
                        const Text myPresentText = TextOfBstr(myPresent);
                        const LinkChoice myOffer =
                            OfferedLinks(AskedOfSite([&] { return mySite.Records(); }), myPresentText);
                        LinkChoice theChoice = myOffer;
                        const bool myIsConfirmed = ShowLinkWindow(theChoice);
                        const Text myNewText = LinkOf(theChoice);
                        // A link that the author leaves as it is stays so to the letter.
                        return myIsConfirmed && myNewText != LinkOf(myOffer) ? myNewText : myPresentText;
                    });
}

} // namespace qel::host

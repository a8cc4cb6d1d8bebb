#include "build/linkWindow.h"

#include "common/Failure.h"
#include "common/programFiles.h"
#include "common/SharedLibrary.h"
#include "text/encodings.h"
#include "text/errors.h"
#include "window/linkWindowModule.h"

namespace qel::host
{

namespace
{

[[noreturn]] void FailWithoutModule(const std::string& myReason)
{
    throw Error{ErrorNumber::FileNotFound, u"qelhost has no window to choose a link in: " + FromUtf8(myReason)};
}

LinkWindowEntry* LoadEntry()
{
    try
    {
        SharedLibrary myModule(WindowModuleFile());
        auto* const theEntry = myModule.Find<LinkWindowEntry*>(LinkWindowEntryName);
        if (theEntry == nullptr)
        {
            FailWithoutModule("the module beside it is of another version");
        }
        myModule.StayOpen(); // like the toolkit once it is loaded
        return theEntry;
    }
    catch (const Failure& myFailure)
    {
        FailWithoutModule(myFailure.what());
    }
}

} // namespace

bool ShowLinkWindow(LinkChoice& theChoice)
{
    static LinkWindowEntry* const theEntry = LoadEntry(); // tried again the next time if it fails
    Error theFailure{};
    const LinkWindowEnd theEnd = theEntry(theChoice, theFailure);
    if (theEnd == LinkWindowEnd::Failed)
    {
        throw theFailure;
    }
    return theEnd == LinkWindowEnd::Confirmed;
}

} // namespace qel::host

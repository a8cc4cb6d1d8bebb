#include "check/Check.h"

#include "check/OpenedComponent.h"
#include "com/Bstr.h"
#include "common/paths.h"
#include "common/SharedLibrary.h"

namespace qel::host
{

namespace
{

void LookUpRegistered(const CheckContext& /*myContext*/)
{
    CLSID myClass{};
    void* myObject = nullptr;
    if (SUCCEEDED(CLSIDFromProgID(ToOle(u"QelPluginAnimation.Main"), &myClass)))
    {
        ExpectResult("the registered component opens", S_OK,
                     CoCreateInstance(myClass, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &myObject));
        const std::filesystem::path myFile = FileOfAddress(*static_cast<void**>(myObject)); // one of its members
        Expect("its file is found", !myFile.empty());
        throw Outcome{CheckResult::Passed, "", TextOf(myFile)};
    }
}

} // namespace

const Check FindRegistered{"registered", "The registered component opens", LookUpRegistered, Surroundings::OfUser};

std::vector<Check> AllChecks()
{
    std::vector<Check> theChecks;
    for (const auto myGroup :
         {EntryChecks(), IdentityChecks(), MemberChecks(), SortChecks(), LateBindingChecks(), ScriptChecks(),
          ReadingChecks(), SummaryChecks(), PageChecks(), FileChecks(), ArchiveChecks(), HostChecks(), LeakChecks()})
    {
        theChecks.insert(theChecks.end(), myGroup.begin(), myGroup.end());
    }
    return theChecks;
}

} // namespace qel::host

// The class registry of this system, and what else differs between components of the two systems.
#include "check/system.h"

#include "com/Bstr.h"

namespace qel::host
{

const uint32_t TypeDescriptionCount = 0;

HRESULT CreateByName(const char16_t* myProgramName, REFIID myInterface, void** theObject)
{
    CLSID myClass{};
    const HRESULT theResult = CLSIDFromProgID(ToOle(myProgramName), &myClass);
    return FAILED(theResult) ? theResult
                             : CoCreateInstance(myClass, nullptr, CLSCTX_INPROC_SERVER, myInterface, theObject);
}

bool CodePageIsWestern()
{
    return true;
}

void MakeLink(const std::filesystem::path& myTarget, const std::filesystem::path& myLink)
{
    std::filesystem::create_symlink(myTarget, myLink);
}

} // namespace qel::host

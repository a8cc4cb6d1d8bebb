#include "commands/openInBrowser.h"

#include "common/Failure.h"
#include "common/paths.h"
#include "platform/windows/windowsHeaders.h"

#include <shellapi.h>

namespace qel::host
{

void OpenInBrowser(const std::filesystem::path& myFile)
{
    constexpr INT_PTR LastError = 32; // greater results mean success
    const std::filesystem::path myName = std::filesystem::absolute(myFile);
    const HINSTANCE myResult = ShellExecuteW(nullptr, L"open", myName.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    if (reinterpret_cast<INT_PTR>(myResult) <= LastError)
    {
        throw Failure("the pages are built, but no program is set to open pages; choose a default browser, or open " +
                      TextOf(myName) + " yourself");
    }
}

} // namespace qel::host

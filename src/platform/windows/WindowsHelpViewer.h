/// The system's viewer of compiled help.
#pragma once

#include "platform/HelpViewer.h"
#include "platform/windows/windowsHeaders.h"

#include <string>

namespace qel
{

/// The viewer's library is loaded at the first call. It is never unloaded, because its windows
/// outlive this object.
class WindowsHelpViewer final : public HelpViewer
{
public:
    /// The library is looked for in the system's folder alone, unless its path is absolute.
    explicit WindowsHelpViewer(std::wstring myLibraryFile = L"hhctrl.ocx") : myFile(std::move(myLibraryFile)) {}

    void ShowContext(TextView myHelpFile, int32_t myContext) override;

private:
    std::wstring myFile;
    HMODULE myLibrary = nullptr;
};

} // namespace qel

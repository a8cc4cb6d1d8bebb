/// The system's viewer of compiled help.
#pragma once

#include "platform/HelpViewer.h"
#include "platform/windows/windowsHeaders.h"

namespace qel
{

/// The viewer's library is loaded from the system's folder at the first call. It is never unloaded, because its windows
/// outlive this object.
class WindowsHelpViewer final : public HelpViewer
{
public:
    void ShowContext(TextView myHelpFile, int32_t myContext) override;

private:
    HMODULE myLibrary = nullptr;
};

} // namespace qel

/// A library in place of the system's help viewer: it records the last call. Its functions have the names and the
/// signature that programs look up.
#include "recordingHelpViewer.h"

#include "platform/windows/windowsHeaders.h"

namespace
{

qel::HelpCall TheLastCall;

} // namespace

extern "C" __declspec(dllexport) HWND WINAPI HtmlHelpA(HWND myCaller, LPCSTR myFile, UINT myCommand, DWORD_PTR myData)
{
    TheLastCall = {myCaller, myFile, myCommand, myData};
    return nullptr;
}

extern "C" __declspec(dllexport) const qel::HelpCall* LastHelpCall()
{
    return &TheLastCall;
}

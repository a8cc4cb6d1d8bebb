#include "platform/shared/SystemPlatform.h"
#include "platform/windows/componentFile.h"
#include "platform/windows/MissingWindow.h"
#include "platform/windows/wideText.h"
#include "platform/windows/WindowsFiles.h"
#include "platform/windows/WindowsHelpViewer.h"
#include "platform/windows/WindowsMessageQueue.h"

namespace qel
{
namespace
{

class WindowsPlatform final : public SystemPlatform
{
public:
    const Platform& Ports() const override { return myPorts; }
    FormMainWindowMaker& FormWindows() override { return myWindow; }
    std::filesystem::path ComponentFile() const override { return myComponentFile; }

private:
    WindowsFiles myFiles;
    WindowsMessageQueue myMessages;
    WindowsHelpViewer myHelp;
    MissingWindow myWindow;
    std::wstring myComponentFile = NativeComponentFile();
    Platform myPorts{
        myFiles, myMessages, myHelp, myWindow, myWindow, MakeImagingControl, TextOfWide(RealFolderOf(myComponentFile))};
};

} // namespace

std::unique_ptr<SystemPlatform> MakeSystemPlatform()
{
    return std::make_unique<WindowsPlatform>();
}

} // namespace qel

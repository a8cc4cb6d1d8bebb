#include "platform/shared/SystemFiles.h"
#include "platform/shared/SystemPlatform.h"
#include "platform/windows/componentFile.h"
#include "platform/windows/wideText.h"
#include "platform/windows/window/MultimediaService.h"
#include "platform/windows/window/WindowService.h"
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
    FormMainWindowMaker& FormWindows() override { return myWindows; }
    std::filesystem::path ComponentFile() const override { return myComponentFile; }

private:
    SystemFiles myFiles;
    WindowsMessageQueue myMessages;
    WindowsHelpViewer myHelp;
    WindowService myWindows;
    MultimediaService mySound;
    std::wstring myComponentFile = NativeComponentFile();
    Platform myPorts{
        myFiles, myMessages, myHelp, myWindows, mySound, MakeImagingControl, TextOfWide(RealFolderOf(myComponentFile))};
};

} // namespace

std::unique_ptr<SystemPlatform> MakeSystemPlatform()
{
    return std::make_unique<WindowsPlatform>();
}

} // namespace qel

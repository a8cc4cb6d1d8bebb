#include "platform/linux/componentFile.h"
#include "platform/linux/LinuxHelpViewer.h"
#include "platform/linux/nativePath.h"
#include "platform/linux/WindowModuleLoader.h"
#include "platform/shared/SystemFiles.h"
#include "platform/shared/SystemPlatform.h"

#include <algorithm>

namespace qel
{
namespace
{

/// The folder of a file. A path that the logic cannot express becomes the root, where nothing is found.
Text FolderOf(const std::string& myNativeFile)
{
    const Text myFile = LogicalPath(myNativeFile).value_or(Text());
    const size_t myEnd = myFile.rfind(u'\\');
    return myEnd == Text::npos ? u"\\" : myFile.substr(0, std::max<size_t>(myEnd, 1));
}

/// The file with its links resolved, or unchanged if that fails.
std::string RealFile(const std::string& myNativeFile)
{
    std::string theFile = RealPath(myNativeFile);
    return theFile.empty() ? myNativeFile : theFile;
}

class LinuxPlatform final : public SystemPlatform
{
public:
    const Platform& Ports() const override { return myPorts; }
    FormMainWindowMaker& FormWindows() override { return myWindowModule; }
    std::filesystem::path ComponentFile() const override { return myComponentFile; }

private:
    SystemFiles myFiles;
    LinuxHelpViewer myHelp;
    std::string myComponentFile = NativeComponentFile();
    std::string myRealFile = RealFile(myComponentFile);
    WindowModuleLoader myWindowModule{myRealFile.substr(0, myRealFile.rfind('/') + 1)};
    Platform myPorts{
        myFiles, myWindowModule, myHelp, myWindowModule, myWindowModule, MakeImagingControl, FolderOf(myRealFile)};
};

} // namespace

std::unique_ptr<SystemPlatform> MakeSystemPlatform()
{
    return std::make_unique<LinuxPlatform>();
}

} // namespace qel

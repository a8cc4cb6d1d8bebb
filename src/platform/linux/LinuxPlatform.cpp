#include "platform/linux/ComponentFile.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/LinuxHelpViewer.h"
#include "platform/linux/LinuxWindows.h"
#include "platform/linux/NativePath.h"
#include "platform/Platform.h"

#include <algorithm>

namespace qel
{
namespace
{

/// The folder of a file. One that the logic cannot express is taken for the root: nothing is found there.
Text FolderOf(const std::string& myNativeFile)
{
    const Text myFile = LogicalPath(myNativeFile).value_or(Text());
    const size_t myEnd = myFile.rfind(u'\\');
    return myEnd == Text::npos ? u"\\" : myFile.substr(0, std::max<size_t>(myEnd, 1));
}

class LinuxPlatform final : public SystemPlatform
{
public:
    const Platform& Ports() const override { return myPorts; }
    std::string ComponentFile() const override { return myComponentFile; }

private:
    LinuxFiles myFiles;
    LinuxHelpViewer myHelp;
    std::string myComponentFile = NativeComponentFile();
    LinuxWindows myWindows{myComponentFile.substr(0, myComponentFile.rfind('/') + 1)};
    Platform myPorts{myFiles, myWindows, myHelp, MakeImagingControl, FolderOf(myComponentFile), myWindows};
};

} // namespace

std::unique_ptr<SystemPlatform> MakeSystemPlatform()
{
    return std::make_unique<LinuxPlatform>();
}

} // namespace qel

#include "common/programFiles.h"

#include "common/SharedLibrary.h"

namespace qel::host
{

std::filesystem::path ProgramFile()
{
    return std::filesystem::canonical(FileOfAddress(reinterpret_cast<const void*>(&ProgramFile)));
}

std::filesystem::path ComponentBesideProgram()
{
    return ProgramFile().parent_path() / "QelPluginAnimation.dll";
}

std::filesystem::path WindowModuleFile()
{
    return ProgramFile().parent_path() / "qelhostWindow.dll";
}

} // namespace qel::host

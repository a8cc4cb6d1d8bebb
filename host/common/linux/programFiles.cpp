#include "common/programFiles.h"

namespace qel::host
{

std::filesystem::path ProgramFile()
{
    return std::filesystem::read_symlink("/proc/self/exe");
}

std::filesystem::path ComponentBesideProgram()
{
    return ProgramFile().parent_path() / "QelPluginAnimation.so";
}

std::filesystem::path WindowModuleFile()
{
    return ProgramFile().parent_path() / "qelhostWindow.so";
}

} // namespace qel::host

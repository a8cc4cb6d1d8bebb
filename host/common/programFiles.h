/// The files of the program itself: where it lies, and what lies beside it.
#pragma once

#include <filesystem>

namespace qel::host
{

/// The program's own file, absolute and with links resolved.
std::filesystem::path ProgramFile();

/// The component's file beside the program, whether or not it is there.
std::filesystem::path ComponentBesideProgram();

/// The program's window module beside it, whether or not it is there.
std::filesystem::path WindowModuleFile();

} // namespace qel::host

/// The program's own file, and the files beside it.
#pragma once

#include <filesystem>

namespace qel::host
{

/// The program's own file, absolute and with links resolved.
std::filesystem::path ProgramFile();

/// The component's file beside the program, whether or not it exists.
std::filesystem::path ComponentBesideProgram();

/// The program's window module beside it, whether or not it exists.
std::filesystem::path WindowModuleFile();

} // namespace qel::host

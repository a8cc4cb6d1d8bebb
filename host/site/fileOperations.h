/// Operations on files that the standard library leaves to the system, or does on each in another way.
///
/// `theError` is clear after a success, and otherwise says what the system reports.
#pragma once

#include <cstdint>
#include <filesystem>
#include <system_error>
#include <vector>

namespace qel::host
{

/// The kind of file at a path, without following a link; `not_found` without an error when nothing is there. A link is
/// whatever leads to another path: a symbolic link, and on Windows a junction too.
std::filesystem::file_type EntryType(const std::filesystem::path& myPath, std::error_code& theError);

/// The names of the entries of a folder, in any order; those before it failed, if it did.
std::vector<std::filesystem::path> EntryNames(const std::filesystem::path& myFolder, std::error_code& theError);

/// The absolute path of a folder that exists, with all links resolved and as its names are written on the disk.
std::filesystem::path RealFolderPath(const std::filesystem::path& myFolder, std::error_code& theError);

/// Copies the bytes of a plain file, so that the copy can be changed and deleted whatever attributes the source has.
void CopyContent(const std::filesystem::path& mySource, const std::filesystem::path& myTarget,
                 std::error_code& theError);

/// Gives a file another name on its disk, in the place of a file that has it.
void RenameEntry(const std::filesystem::path& myFile, const std::filesystem::path& myTarget, std::error_code& theError);

/// Waits until the content of a file is on the disk, where a power failure cannot take it away.
void FlushFile(const std::filesystem::path& myFile, std::error_code& theError);

/// The same for the names in a folder. Windows writes them in their order without being asked.
void FlushFolder(const std::filesystem::path& myFolder, std::error_code& theError);

/// How many bytes this user can still write to the disk of a folder.
uintmax_t FreeSpace(const std::filesystem::path& myFolder, std::error_code& theError);

/// True for an entry that the system's own programs do not show, by its name or its attributes.
bool IsHidden(const std::filesystem::path& myPath);

/// True when the system keeps names that Windows cannot hold, and names that differ in case alone.
extern const bool HoldsAllNames;

} // namespace qel::host

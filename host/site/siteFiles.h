/// Files as the commands need them: read whole, written so that a reader never sees half of one, and their names.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace qel::host
{

namespace fs = std::filesystem;

/// The bytes of a file; "-" is the standard input. Failure: it cannot be read.
std::string ReadWholeFile(const fs::path& mySource);

/// Writes a file under another name beside the target and then gives it the target's name, so that the target is there
/// whole or as it was. A link of that name is replaced and not followed. Failure: it cannot be written.
void WriteWholeFile(const fs::path& myTarget, std::string_view myBytes);

/// The same with the bytes of another plain file. Failure: as above, or the source is not a file that can be read.
void CopyWholeFile(const fs::path& mySource, const fs::path& myTarget);

/// The names in a folder; none when there is no such folder. Failure: it cannot be read.
std::vector<std::string> NamesInFolder(const fs::path& myFolder);

/// What keeps a text from being a file name that an address in a page can carry as it stands, such as `it holds "/"`;
/// the empty text when nothing does.
std::string NameProblem(std::string_view myName);

/// The name with "_" for each character that keeps it from being one.
std::string SafeFileName(std::string_view myName);

} // namespace qel::host

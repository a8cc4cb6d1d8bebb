/// Files as the commands need them: read whole, written so that a reader never sees half of one, and their names.
///
/// Every failure is a Failure that names the file and says in plain words why and what to do next.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace qel::host
{

namespace fs = std::filesystem;

/// The most bytes that a page or a script may have.
constexpr uint64_t LongestText = 16ULL << 20;

/// Fails with what could not be done and the system's reason.
[[noreturn]] void FailWithSystemError(const std::string& myWhat, std::error_code myError);

/// The bytes of a plain file or a pipe; "-" is the standard input. Failure: it cannot be read, or is longer than
/// `myLimit` bytes; a plain file that is too long is refused before it is read.
std::string ReadWholeFile(const fs::path& mySource, uint64_t myLimit = UINT64_MAX);

/// When a file is on the disk, where a power failure cannot take it away: some time later, or when the call returns.
enum class OnDisk
{
    Later,
    Now
};

/// Writes a file under another name beside the target and then gives it the target's name, so that the target is there
/// whole or as it was; after a power failure too, if it is on the disk `Now`. A link of that name is replaced and not
/// followed. Failure: it cannot be written.
void WriteWholeFile(const fs::path& myTarget, std::string_view myBytes, OnDisk myTime);

/// The same with the bytes of another plain file. Failure: as above, or the source is not a file that can be read.
void CopyWholeFile(const fs::path& mySource, const fs::path& myTarget, OnDisk myTime);

/// The kind of file at a path, without following a link. Failure: the system does not say, for example without
/// permission.
fs::file_type TypeOfEntry(const fs::path& myPath);

/// True when both are plain files of the same bytes.
bool HaveSameContent(const fs::path& myOne, const fs::path& myOther);

/// Makes a folder, and those that it is to be in. Failure: it cannot be made.
void MakeFolder(const fs::path& myFolder);

/// The name beside a target under which this program writes what gets the target's name once it is whole.
/// RemoveUnfinishedFiles knows such names.
fs::path UnfinishedName(const fs::path& myTarget);

/// Removes a file or link; nothing happens when there is none. Failure: it cannot be removed.
void RemoveFile(const fs::path& myFile);

/// Gives a file another name in its folder, in the place of a file that has it. It and the name are on the disk then.
/// Failure: it cannot be renamed.
void RenameFile(const fs::path& myFile, const fs::path& myTarget);

/// Whose unfinished files are removed.
enum class Unfinished
{
    OfEndedPrograms, ///< other programs may be writing into the folder
    OfAllPrograms
};

/// Removes from a folder the files that a program which was killed could not give their names. Failure: one of them
/// cannot be removed.
void RemoveUnfinishedFiles(const fs::path& myFolder, Unfinished myKind);

/// The names in a folder, sorted; none when there is no such folder. Failure: it cannot be read.
std::vector<std::string> NamesInFolder(const fs::path& myFolder);

/// The reason why a text cannot be a file name of this system that appears unchanged in an address of a page, such as
/// `it contains "/"`; the empty text for a usable name.
std::string NameProblem(std::string_view myName);

/// The reason why Windows cannot hold a file name, such as "it ends in a full stop"; the empty text if it can.
std::string WindowsNameProblem(std::string_view myName);

/// The warning for a file name that this system can store and Windows cannot. Empty for any other name.
std::string WindowsNameWarning(std::string_view myName);

/// The name with "_" for each character that keeps it from being one. It may still be empty or too long.
std::string SafeFileName(std::string_view myName);

} // namespace qel::host

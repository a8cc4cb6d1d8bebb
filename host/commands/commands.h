/// The commands of qelhost: each group adds its own to the command line.
///
/// A command runs while the command line is parsed, on the calling thread, and throws Failure when it fails.
#pragma once

#include "commands/json.h"
#include "site/Site.h"
#include "site/UserLock.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace qel::host
{

/// The arguments of the command line. A program runs one command, so all commands share one record.
struct Arguments
{
    std::optional<std::filesystem::path> Plugin;
    std::filesystem::path Site;
    std::filesystem::path File;
    std::string Page;
    int64_t Id = 0;
    int64_t Position = 0;
    std::string Kind;
    std::optional<std::string> Name;
    std::optional<std::string> Title;
    std::optional<std::string> OtherPage;
    std::optional<std::string> Place;
    std::optional<std::string> Address;
    std::optional<std::filesystem::path> OptionalFile;
    std::optional<std::filesystem::path> Archive;
    bool WithModules = false;
    std::filesystem::path Folder;
    bool Force = false;
    bool KeepErrors = false;
    bool NoRefresh = false;
    std::vector<std::string> Checks;
    double Seconds = 10;
    bool List = false;
    bool Json = false;
};

// What they add must not outlive the application or the arguments.
void AddSiteCommands(CLI::App& theApplication, Arguments& theArguments);
void AddPageCommands(CLI::App& theApplication, Arguments& theArguments);
void AddRecordCommands(CLI::App& theApplication, Arguments& theArguments);
void AddModuleCommands(CLI::App& theApplication, Arguments& theArguments);
void AddArchiveCommands(CLI::App& theApplication, Arguments& theArguments);
void AddComponentCommands(CLI::App& theApplication, Arguments& theArguments);
void AddCheckCommands(CLI::App& theApplication, Arguments& theArguments);

/// Adds a command that works on a site, which is its first argument.
CLI::App* AddSiteCommand(CLI::App& theGroup, const std::string& myName, const std::string& myHelp,
                         Arguments& theArguments);

/// Adds an option or argument that is a path. The paths outlive the application.
CLI::Option* AddPath(CLI::App& theCommand, const std::string& myName, std::filesystem::path& thePath,
                     const std::string& myHelp);
CLI::Option* AddPath(CLI::App& theCommand, const std::string& myName, std::optional<std::filesystem::path>& thePath,
                     const std::string& myHelp);

/// Adds a required argument that is a whole number, such as an id or a position.
CLI::Option* AddNumber(CLI::App& theCommand, const std::string& myName, int64_t& theNumber, const std::string& myHelp);

/// Adds a group of commands, one of which is required.
CLI::App* AddGroup(CLI::App& theApplication, const std::string& myName, const std::string& myHelp);

/// Makes sure that a file can be read as a design archive. Failure: it cannot.
void DemandArchive(const std::filesystem::path& myFile);

/// Warns on the standard error if the author has given a name that this system can store and Windows cannot.
void WarnOfName(const std::string& myName);

/// Takes the user's lock for a command that changes modules or builds, and undoes the changes of a program that ended
/// while a dialog was open, which is reported on the standard error.
UserLock LockForWriting(Site& theSite);

/// Writes rows to the standard output with aligned columns; the first row is the heading.
void PrintTable(const std::vector<std::vector<std::string>>& myRows);

/// Adds the command that lists what a group is about; it takes --json.
CLI::App* AddListCommand(CLI::App& theGroup, const std::string& myHelp, Arguments& theArguments);

/// Writes a list to the standard output: the rows as a table or, if the arguments say so, the objects as JSON.
void PrintList(const std::vector<std::vector<std::string>>& myRows, const std::vector<JsonMembers>& myObjects,
               const Arguments& myArguments);

/// True when what is shown on the standard output may contain escapes: it is a terminal, and $NO_COLOR is not set.
bool WantsEscapes();

} // namespace qel::host

/// What the site knows of a module's script: the files and params that it names.
///
/// A script is read as the component writes it, tags with their values in double quotes. What somebody wrote otherwise
/// is not found.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qel::host
{

/// The value of the param of that name, such as `link`; the empty text where there is none.
std::string ScriptParam(std::string_view myScript, std::string_view myName);

/// The truth value of the param of that name, such as `showimage`, as the component reads it; true where there is none.
bool ScriptSwitch(std::string_view myScript, std::string_view myName);

/// The first file that the script names, the module's archive; the empty text where there is none.
std::string ScriptFile(std::string_view myScript);

/// The uid in a link such as "UID:3"; none for any other link, such as "UID:03".
std::optional<int64_t> LinkedRecord(std::string_view myLink);

/// True where the script names the record anywhere, however it was written.
bool NamesRecord(std::string_view myScript, int64_t myUid);

} // namespace qel::host

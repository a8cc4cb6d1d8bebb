/// Paths in texts of UTF-8. Each system has an encoding of its own for file names: a path is made of a text, and shown
/// as one, by these functions alone.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace qel::host
{

/// The path that a text in UTF-8 names. On a system whose names are bytes, any bytes are a name.
std::filesystem::path PathOf(std::string_view myText);

/// The path as the system writes it, such as `C:\sites\mine`. On a system whose names are bytes, these bytes.
std::string TextOf(const std::filesystem::path& myPath);

/// The same with "/" between folders, on all systems.
std::string PortableTextOf(const std::filesystem::path& myPath);

} // namespace qel::host

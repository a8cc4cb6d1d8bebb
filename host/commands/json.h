/// JSON as the commands write it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace qel::host
{

/// A text in quotation marks, its special characters escaped. Bytes that are not UTF-8 become U+FFFD.
std::string JsonText(std::string_view myText);

/// A value that is JSON already.
struct Json
{
    std::string Text;
};

/// The members of an object, in the order in which they are written.
using JsonMembers = std::vector<std::pair<const char*, std::variant<int64_t, std::string, Json>>>;

std::string JsonObject(const JsonMembers& myMembers);

/// An array of objects, one to a line.
std::string JsonArray(const std::vector<JsonMembers>& myObjects);

} // namespace qel::host

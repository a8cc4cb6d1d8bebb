#include "commands/json.h"

#include "text/encodings.h"

#include <array>
#include <cstdio>

namespace qel::host
{

std::string JsonText(std::string_view myText)
{
    std::string theText = "\"";
    for (const char myByte : ToUtf8(FromUtf8(myText)))
    {
        const auto myCode = static_cast<unsigned char>(myByte);
        if (myCode < 0x20)
        {
            std::array<char, 8> myEscape{};
            std::snprintf(myEscape.data(), myEscape.size(), "\\u%04x", myCode);
            theText += myEscape.data();
            continue;
        }
        if (myByte == '"' || myByte == '\\')
        {
            theText += '\\';
        }
        theText += myByte;
    }
    return theText + '"';
}

namespace
{

struct JsonWriter
{
    std::string operator()(int64_t myNumber) const { return std::to_string(myNumber); }
    std::string operator()(const std::string& myText) const { return JsonText(myText); }
    std::string operator()(const Json& myJson) const { return myJson.Text; }
};

} // namespace

std::string JsonObject(const JsonMembers& myMembers)
{
    std::string theText = "{";
    for (const auto& [myName, myValue] : myMembers)
    {
        theText += (theText.size() > 1 ? ", " : "") + JsonText(myName) + ": ";
        theText += std::visit(JsonWriter(), myValue);
    }
    return theText + "}";
}

std::string JsonArray(const std::vector<JsonMembers>& myObjects)
{
    std::string theText = "[";
    for (const JsonMembers& myObject : myObjects)
    {
        theText += (theText.size() > 1 ? ",\n" : "\n") + JsonObject(myObject);
    }
    return theText + (myObjects.empty() ? "]" : "\n]");
}

} // namespace qel::host

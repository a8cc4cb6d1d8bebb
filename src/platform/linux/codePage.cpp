#include "platform/codePage.h"

#include "text/encodings.h"

namespace qel
{

std::optional<std::string> ToAnsi(TextView myText)
{
    return ToWindows1252(myText);
}

Text FromAnsi(std::string_view myBytes)
{
    return FromWindows1252(myBytes);
}

} // namespace qel

#include "common/printable.h"

#include <algorithm>

namespace qel::host
{

std::string PrintableLines(std::string_view myText)
{
    std::string theText;
    for (std::size_t i = 0; i < myText.size(); ++i)
    {
        const auto Code = [&](std::size_t myIndex)
        {
            return static_cast<unsigned char>(myText[myIndex]);
        };
        const bool myIsHigh = Code(i) == 0xC2 && i + 1 < myText.size() && Code(i + 1) >= 0x80 && Code(i + 1) < 0xA0;
        const bool myIsControl = myIsHigh || (Code(i) < 0x20 && myText[i] != '\n') || Code(i) == 0x7F;
        theText += myIsControl ? '?' : myText[i];
        i += myIsHigh ? 1 : 0;
    }
    return theText;
}

std::string Printable(std::string_view myText)
{
    std::string theText = PrintableLines(myText);
    std::replace(theText.begin(), theText.end(), '\n', '?');
    return theText;
}

} // namespace qel::host

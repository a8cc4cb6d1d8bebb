#include "site/markup.h"

#include "common/printable.h"

#include <algorithm>
#include <array>

namespace qel::host
{

namespace
{

struct MarkupWord
{
    std::string_view Name;
    std::string_view Escape; ///< what a terminal gets
    std::string_view Plain;  ///< what stands for it in plain text
    bool HasCaption;
};

constexpr std::array Words{
    MarkupWord{"b", "\033[1m", "", false},
    MarkupWord{"/b", "\033[22m", "", false},
    MarkupWord{"warning", "\u26A0 ", "\u26A0 ", false},
    MarkupWord{"callback", "\033[4m", "", true},
    MarkupWord{"help", "\033[4m", "", true},
};
constexpr std::string_view EndOfCaption = "\033[24m";

const MarkupWord* FindWord(std::string_view myTag)
{
    const std::string_view myName = myTag.substr(0, myTag.find(' '));
    for (const MarkupWord& myWord : Words)
    {
        if (myWord.Name == myName)
        {
            return &myWord;
        }
    }
    return nullptr;
}

std::string_view CaptionOf(std::string_view myTag)
{
    constexpr std::string_view Attribute = " caption=\"";
    const std::size_t myStart = myTag.find(Attribute);
    if (myStart == std::string_view::npos)
    {
        return {};
    }
    const std::string_view myRest = myTag.substr(myStart + Attribute.size());
    return myRest.substr(0, myRest.find('"'));
}

} // namespace

std::string RenderedMarkup(std::string_view myText, bool myWithEscapes)
{
    std::string theText;
    while (!myText.empty())
    {
        const std::size_t myEnd = myText.front() == '<' ? myText.find('>') : std::string_view::npos;
        const std::string_view myTag = myEnd == std::string_view::npos ? "" : myText.substr(1, myEnd - 1);
        if (const MarkupWord* const myWord = FindWord(myTag))
        {
            theText += myWithEscapes ? myWord->Escape : myWord->Plain;
            theText += PrintableLines(CaptionOf(myTag));
            theText += myWord->HasCaption && myWithEscapes ? EndOfCaption : "";
            myText.remove_prefix(myEnd + 1);
        }
        else
        {
            const std::size_t myNext = myText.find('<', 1);
            theText += PrintableLines(myText.substr(0, myNext));
            myText.remove_prefix(myNext == std::string_view::npos ? myText.size() : myNext);
        }
    }
    return theText;
}

} // namespace qel::host

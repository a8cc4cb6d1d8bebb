/// Filling the templates of the page, against a loop written by hand that finds and appends the same replacements in
/// the same order.
#include "compare.h"
#include "resources/stringTable.h"
#include "text/text.h"

#include <array>
#include <span>

namespace
{

using namespace qel;
using namespace qel::bench;

struct Replacement
{
    TextView Old;
    TextView New;
};

/// As the page text fills them: first line ends, then the placeholders, each in the whole text so far.
constexpr std::array ImageReplacements = {
    Replacement{u"\n", u"\r\n"},
    Replacement{u"%1", u"17"},
    Replacement{u"%2", u"<a href=\"http://www.example.org/tienda.asp?seccion=12\">"},
    Replacement{u"%7", u"</a>"},
    Replacement{u"%4", u"350"},
    Replacement{u"%5", u"250"},
    Replacement{u"%3", u"../images/qelspr17.gif"},
};
constexpr std::array TuneReplacements = {
    Replacement{u"\n", u"\r\n"},
    Replacement{u"%1", u"17"},
    Replacement{u"%2", u"../media/qelmid17.mid"},
};

Text Filled(int32_t myTemplate, std::span<const Replacement> myReplacements)
{
    Text theResult(LoadResString(myTemplate));
    for (const Replacement& myReplacement : myReplacements)
    {
        theResult = ReplaceAll(theResult, myReplacement.Old, myReplacement.New);
    }
    return theResult;
}

Text FilledByHand(int32_t myTemplate, std::span<const Replacement> myReplacements)
{
    Text theResult(LoadResString(myTemplate));
    Text myNext;
    for (const Replacement& myReplacement : myReplacements)
    {
        myNext.clear();
        size_t myPosition = 0;
        size_t myFound = theResult.find(myReplacement.Old);
        while (myFound != Text::npos)
        {
            myNext.append(theResult, myPosition, myFound - myPosition);
            myNext.append(myReplacement.New);
            myPosition = myFound + myReplacement.Old.size();
            myFound = theResult.find(myReplacement.Old, myPosition);
        }
        myNext.append(theResult, myPosition, Text::npos);
        theResult.swap(myNext);
    }
    return theResult;
}

/// Fills both templates a thousand times.
template <class Filler>
void FillPages(Filler myFiller)
{
    for (int i = 0; i < 1000; ++i)
    {
        Keep(myFiller(StringId::PageImage, ImageReplacements));
        Keep(myFiller(StringId::PageMIDI, TuneReplacements));
    }
}

} // namespace

int main(int argc, char** argv)
{
    const Bench myBench(argc, argv);
    Require(Filled(StringId::PageImage, ImageReplacements) == FilledByHand(StringId::PageImage, ImageReplacements),
            "the same picture text");
    Require(Filled(StringId::PageMIDI, TuneReplacements) == FilledByHand(StringId::PageMIDI, TuneReplacements),
            "the same tune text");
    myBench.Compare("templates: 1,000 pages against a loop by hand", 0.7,
                    {[]
                     {
                         FillPages(Filled);
                     }},
                    {[]
                     {
                         FillPages(FilledByHand);
                     }});
}

#include "tags/pluginFunctions.h"

#include "platform/Files.h"
#include "platform/HelpViewer.h"
#include "text/succeeds.h"

#include <array>

namespace qel
{
namespace
{

constexpr TextView BlankValue = u"<blank>";

TextView WithoutOneAtEnd(TextView myText, char16_t myCharacter)
{
    return myText.substr(0, myText.size() - (myText.ends_with(myCharacter) ? 1 : 0));
}

TextView WithoutOneAtStart(TextView myText, char16_t myCharacter)
{
    return myText.substr(myText.starts_with(myCharacter) ? 1 : 0);
}

} // namespace

Text MakeClosingTag(TextView myTagName)
{
    return JoinTexts({u"</", myTagName, u">"});
}

Text MakeTag(TextView myTagName, std::span<const TextView> myPairs)
{
    Text theResult = JoinTexts({u"<", myTagName});
    for (size_t i = 0; i + 1 < myPairs.size(); i += 2)
    {
        const TextView myValue = myPairs[i + 1];
        if (!myValue.empty())
        {
            theResult.append(u" ").append(myPairs[i]).append(u"=\"");
            theResult.append(myValue == BlankValue ? TextView() : myValue).append(u"\"");
        }
    }
    theResult.append(u">");
    return theResult;
}

Text MakeAnchor(TextView myHref, TextView myOnClick, TextView myClass, TextView myTarget)
{
    return MakeTag(
        u"a", std::array<TextView, 8>{u"href", myHref, u"onclick", myOnClick, u"target", myTarget, u"class", myClass});
}

Text MakeScriptTag()
{
    return MakeTag(u"script", std::array<TextView, 2>{u"type", u"text/javascript"});
}

bool TextToBoolean(TextView myText)
{
    const TextView myTrimmed = TrimBlanks(myText);
    return !myTrimmed.empty() && myTrimmed != u"0";
}

Text BooleanToText(bool myValue)
{
    return myValue ? u"1" : u"0";
}

Text ConcatUrl(TextView myFirst, TextView mySecond)
{
    myFirst = WithoutOneAtEnd(WithoutOneAtEnd(myFirst, u'/'), u'\\');
    mySecond = WithoutOneAtStart(WithoutOneAtStart(mySecond, u'/'), u'\\');
    return JoinTexts({myFirst, u"/", mySecond});
}

bool FileIsReadable(Files& myFiles, TextView myFilename)
{
    return Succeeds(
        [&]
        {
            myFiles.LookExactly(myFilename);
            myFiles.OpenShared(myFilename);
        });
}

void DeleteCaseVariants(Files& myFiles, TextView myFilename)
{
    const size_t myStart = myFilename.find_last_of(u"\\/") + 1;
    Succeeds(
        [&]
        {
            for (const Text& myName : myFiles.List(myFilename, Listing::PlainFiles))
            {
                if (myName != myFilename.substr(myStart))
                {
                    myFiles.Delete(JoinTexts({myFilename.substr(0, myStart), myName}));
                }
            }
        });
}

bool CopyFileOnce(Files& myFiles, TextView mySource, TextView myTarget)
{
    return FileIsReadable(myFiles, myTarget) || Succeeds([&] { myFiles.Copy(mySource, myTarget); });
}

void ShowHelpTopic(HelpViewer& myViewer, TextView myHelpFile, int32_t myID)
{
    myViewer.ShowContext(myHelpFile, myID);
}

} // namespace qel

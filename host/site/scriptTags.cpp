#include "site/scriptTags.h"

#include "site/PageText.h"

#include <algorithm>
#include <charconv>

namespace qel::host
{

namespace
{

/// The value of an attribute of a tag.
std::string_view Attribute(std::string_view myTag, std::string_view myName)
{
    const std::string myOpening = " " + std::string(myName) + "=\"";
    const std::size_t myStart = myTag.find(myOpening);
    if (myStart == std::string_view::npos)
    {
        return {};
    }
    const std::string_view myRest = myTag.substr(myStart + myOpening.size());
    return myRest.substr(0, myRest.find('"'));
}

/// Takes the next tag of a kind from the head of a script; the empty text when there is none.
std::string_view TakeTag(std::string_view& theScript, std::string_view myKind)
{
    theScript.remove_prefix(std::min(theScript.find("<pg." + std::string(myKind) + " "), theScript.size()));
    const std::string_view theTag = theScript.substr(0, theScript.find('>'));
    theScript.remove_prefix(theTag.size());
    return theTag;
}

/// The value of the last param of that name, as the component reads it; none where there is no such param.
std::optional<std::string> LastParam(std::string_view myScript, std::string_view myName)
{
    std::optional<std::string> theValue;
    for (std::string_view myTag; !(myTag = TakeTag(myScript, "param")).empty();)
    {
        if (Attribute(myTag, "name") == myName)
        {
            theValue = UnescapedFromHtml(Attribute(myTag, "value"));
        }
    }
    return theValue;
}

} // namespace

std::string ScriptParam(std::string_view myScript, std::string_view myName)
{
    return LastParam(myScript, myName).value_or("");
}

bool ScriptSwitch(std::string_view myScript, std::string_view myName)
{
    std::string myValue = LastParam(myScript, myName).value_or("1");
    std::erase(myValue, ' ');
    return !myValue.empty() && myValue != "0";
}

std::string ScriptFile(std::string_view myScript)
{
    return UnescapedFromHtml(Attribute(TakeTag(myScript, "file"), "filename"));
}

std::optional<int64_t> LinkedRecord(std::string_view myLink)
{
    constexpr std::string_view Kind = "UID:";
    int64_t theUid = 0;
    if (!myLink.starts_with(Kind))
    {
        return {};
    }
    myLink.remove_prefix(Kind.size());
    std::from_chars(myLink.data(), myLink.data() + myLink.size(), theUid);
    return std::to_string(theUid) == myLink ? std::optional(theUid) : std::nullopt;
}

bool NamesRecord(std::string_view myScript, int64_t myUid)
{
    const std::string myLink = "UID:" + std::to_string(myUid);
    std::size_t myStart = 0;
    while ((myStart = myScript.find(myLink, myStart)) != std::string_view::npos)
    {
        myStart += myLink.size();
        if (myStart == myScript.size() || myScript[myStart] < '0' || myScript[myStart] > '9')
        {
            return true;
        }
    }
    return false;
}

} // namespace qel::host

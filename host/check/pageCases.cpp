#include "check/pageCases.h"

#include "text/encodings.h"

#include <algorithm>

namespace qel::host
{

namespace
{

constexpr LinkCase Cases[] = {
    {u"URL:http://x/?a=1", 0, false, u"<a href=\"http://x/?a=1\">", u""},
    {u"URL:", 0, false, u"<a>", u""},
    {u"url:x", 0, false, u"<a>", u""},
    {u"URL:ERROR", 0, false, LinkFails, u""},
    {u"", 0, false, u"", u""},
    {u"UID:4711", 0, false, LinkFails, u"SeekUID EOF RecordType "},
    {u"UID:4711", 1, true, LinkFails, u"SeekUID EOF "},
    {u"UID:4711", 1, false, u"<a href=\"otra.html\">", u"SeekUID EOF RecordType RecordURL "},
    {u"UID:4711", 2, false, u"<a href=\"otra.html\">", u"SeekUID EOF RecordType RecordURL "},
    {u"UID:4711", 3, false, u"<a href=\"otra.html\">", u"SeekUID EOF RecordType RecordURL "},
    {u"UID:4711", 4, false, u"<a href=\"images/nota.pdf\">",
     u"SeekUID EOF RecordType DataFolder RecordFilename ImageFolder RecordFilename ImageURL RecordFilename "},
    {u"UID:4711", 5, false, u"<a href=\"files/nota.pdf\">",
     u"SeekUID EOF RecordType DataFolder RecordFilename FileFolder RecordFilename FileURL RecordFilename "},
    {u"UID:4711", 6, false, u"<a href=\"otra.html\">", u"SeekUID EOF RecordType RecordURL "},
    {u"UID:4711", 7, false, u"<a>", u"SeekUID EOF RecordType "},
};

} // namespace

std::span<const LinkCase> LinkCases()
{
    return Cases;
}

std::string NameOf(const LinkCase& myCase)
{
    return "link \"" + ToUtf8(myCase.Link) + "\" with a record of kind " + std::to_string(myCase.Kind) +
           (myCase.AtEnd ? " that is not found" : "");
}

Text OutputOf(const LinkCase& myCase, ServedPlugin& theServed)
{
    theServed.State.Kind = myCase.Kind;
    theServed.State.AtEnd = myCase.AtEnd;
    theServed.State.Calls.clear();
    return theServed.Output(LinkedScript(myCase.Link));
}

Text CallOrder(const LinkCase& myCase)
{
    Text theCalls = Text(CallsForPeriod).append(CallsForPicture).append(myCase.Calls);
    return myCase.Tag == LinkFails ? theCalls : theCalls.append(CallsForStaging).append(CallsForTune);
}

const LinkCase& LongestCase()
{
    return *std::ranges::find(Cases, 5, &LinkCase::Kind);
}

int64_t CallCount(TextView myCalls)
{
    return std::ranges::count(myCalls, u' ');
}

Text Joined(const std::vector<std::string>& myCalls)
{
    Text theText;
    for (const std::string& myCall : myCalls)
    {
        theText += FromUtf8(myCall) + u" ";
    }
    return theText;
}

} // namespace qel::host

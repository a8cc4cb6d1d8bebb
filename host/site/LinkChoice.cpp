#include "site/LinkChoice.h"

#include "common/printable.h"
#include "site/PageText.h"
#include "text/encodings.h"

#include <algorithm>

namespace qel::host
{

namespace
{

// The two forms of link texts.
constexpr TextView AddressMark = u"URL:";
constexpr TextView RecordMark = u"UID:";

LinkRow RowOf(const Record& myRecord)
{
    const std::string myName = myRecord.Title.empty() ? "record " + std::to_string(myRecord.Uid) : myRecord.Title;
    return {myRecord.Uid, FromUtf8(KindName(myRecord.Kind)), FromUtf8(Printable(myName)),
            FromUtf8(Printable(RecordTarget(myRecord)))};
}

std::optional<std::size_t> FindRow(const std::vector<LinkRow>& myRows, TextView myUid)
{
    const auto myRow = std::ranges::find(myRows, myUid, [](const LinkRow& r) { return NumberText(r.Uid); });
    return myRow == myRows.end() ? std::nullopt : std::optional(static_cast<std::size_t>(myRow - myRows.begin()));
}

/// A text that fits on a line.
Text Shortened(TextView myText)
{
    constexpr std::size_t Longest = 60;
    return myText.size() <= Longest ? Text(myText) : JoinTexts({myText.substr(0, Longest), u"…"});
}

} // namespace

LinkChoice OfferedLinks(const std::vector<Record>& myRecords, TextView myPresentLink)
{
    LinkChoice theOffer;
    std::ranges::transform(myRecords, std::back_inserter(theOffer.Rows), RowOf);
    if (myPresentLink.starts_with(AddressMark))
    {
        theOffer.Address = FromUtf8(UnescapedFromHtml(ToUtf8(myPresentLink.substr(AddressMark.size()))));
    }
    else if (myPresentLink.starts_with(RecordMark))
    {
        theOffer.Row = FindRow(theOffer.Rows, myPresentLink.substr(RecordMark.size()));
    }
    if (!myPresentLink.empty() && !theOffer.Row && theOffer.Address.empty())
    {
        theOffer.Note =
            u"The present link, \"" + FromUtf8(Printable(ToUtf8(Shortened(myPresentLink)))) + u"\", leads nowhere.";
    }
    else if (theOffer.Rows.empty())
    {
        theOffer.Note = u"This site has no records yet; qelhost record add makes one.";
    }
    return theOffer;
}

Text LinkOf(const LinkChoice& myChoice)
{
    if (myChoice.Row)
    {
        return JoinTexts({RecordMark, NumberText(myChoice.Rows.at(*myChoice.Row).Uid)});
    }
    return myChoice.Address.empty() ? Text()
                                    : JoinTexts({AddressMark, FromUtf8(EscapedForHtml(ToUtf8(myChoice.Address)))});
}

} // namespace qel::host

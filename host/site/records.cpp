#include "site/records.h"

#include "common/Failure.h"
#include "site/PageText.h"
#include "text/encodings.h"

#include <array>

namespace qel::host
{

namespace
{

/// What a kind of record accepts.
struct KindFacts
{
    std::string_view Name;
    bool Page;
    bool Address;
    bool File;
    std::string_view Needs;
};

constexpr std::array Kinds{
    KindFacts{"none", false, false, false, "nothing but a title"},
    KindFacts{"page", true, true, false, "--page or --address"},
    KindFacts{"section", true, true, false, "--page, --address or both, such as --page index.html --address \"#news\""},
    KindFacts{"address", false, true, false, "--address"},
    KindFacts{"picture", false, false, true, "--file"},
    KindFacts{"file", false, false, true, "--file"},
    KindFacts{"mail", false, true, false, "--address"},
};

const KindFacts& FactsOf(RecordKind myKind)
{
    return Kinds.at(static_cast<std::size_t>(myKind));
}

[[noreturn]] void FailFor(RecordKind myKind)
{
    throw UsageFailure("a record of the kind " + std::string(KindName(myKind)) + " takes " +
                       std::string(FactsOf(myKind).Needs));
}

} // namespace

RecordKind ParseKind(std::string_view myText)
{
    std::string myNames;
    for (std::size_t myNumber = 0; myNumber < Kinds.size(); ++myNumber)
    {
        if (myText == Kinds[myNumber].Name || myText == std::to_string(myNumber))
        {
            return static_cast<RecordKind>(myNumber);
        }
        myNames += (myNumber == 0 ? "" : ", ") + std::to_string(myNumber) + " " + std::string(Kinds[myNumber].Name);
    }
    throw UsageFailure("there is no kind \"" + std::string(myText) + "\"; the kinds are " + myNames);
}

std::string_view KindName(RecordKind myKind)
{
    return FactsOf(myKind).Name;
}

bool HasFile(RecordKind myKind)
{
    return FactsOf(myKind).File;
}

void DemandSuited(RecordKind myKind, const RecordChange& myChange)
{
    const KindFacts& myFacts = FactsOf(myKind);
    if ((myChange.Page && !myFacts.Page) || (myChange.Address && !myFacts.Address) || (myChange.File && !myFacts.File))
    {
        FailFor(myKind);
    }
    for (const auto& myText : {myChange.Title, myChange.Address})
    {
        if (myText && !IsUtf8(*myText))
        {
            throw UsageFailure("a title or address is not valid UTF-8; check the terminal's encoding");
        }
    }
}

void DemandComplete(const Record& myRecord)
{
    const bool myIsEmpty = myRecord.Page.empty() && myRecord.Address.empty() && myRecord.Filename.empty();
    if (myIsEmpty && myRecord.Kind != RecordKind::None)
    {
        FailFor(myRecord.Kind);
    }
}

std::string RecordAddress(const Record& myRecord)
{
    if (myRecord.Kind == RecordKind::Mail && !myRecord.Address.starts_with("mailto:"))
    {
        return "mailto:" + myRecord.Address;
    }
    return EncodedForAddress(myRecord.Page) + myRecord.Address;
}

std::string RecordTarget(const Record& myRecord)
{
    const bool myIsOnPage = !myRecord.Page.empty();
    return HasFile(myRecord.Kind) ? myRecord.Filename
           : myIsOnPage           ? myRecord.Page + myRecord.Address
                                  : RecordAddress(myRecord);
}

} // namespace qel::host

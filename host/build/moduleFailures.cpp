#include "build/moduleFailures.h"

#include "site/scriptTags.h"
#include "site/siteFiles.h"
#include "text/encodings.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace qel::host
{

std::string ErrorNumberOf(std::string_view myReason, bool myIsOutputEmpty)
{
    constexpr std::string_view myDigits = "0123456789";
    constexpr std::string_view myOpening = " \"";
    std::size_t myStart = 0;
    while ((myStart = myReason.find(myOpening, myStart)) != std::string_view::npos)
    {
        myStart += myOpening.size();
        const std::size_t myFirst = myStart + (myReason.substr(myStart).starts_with('-') ? 1 : 0);
        const std::size_t myEnd = std::min(myReason.find_first_not_of(myDigits, myFirst), myReason.size());
        if (myEnd > myFirst && myReason.substr(myEnd).starts_with(": "))
        {
            return std::string(myReason.substr(myStart, myEnd - myStart));
        }
    }
    return myIsOutputEmpty ? "720" : "730";
}

std::string ErrorNumberOf(HRESULT myResult)
{
    constexpr uint32_t myOwnErrors = 0x800A0000;
    const auto myBits = static_cast<uint32_t>(myResult);
    if ((myBits & 0xFFFF0000) == myOwnErrors)
    {
        return std::to_string(myBits & 0xFFFF);
    }
    std::array<char, 16> myNumber{};
    std::snprintf(myNumber.data(), myNumber.size(), "0x%08X", myBits);
    return myNumber.data();
}

Text FailureComment(int64_t myModule, const std::string& myErrorNumber)
{
    return FromUtf8("<!-- qelhost: module " + std::to_string(myModule) + " is left out, error " + myErrorNumber +
                    " -->");
}

namespace
{

bool IsMissing(const fs::path& myFile)
{
    std::error_code myIgnored; // a name that no file can have is missing too
    return !fs::exists(fs::symlink_status(myFile, myIgnored));
}

/// The folder and name of a motif or tune.
std::string ShippedFile(const std::string& myScript, const char* myName, const char* myFolder)
{
    const std::string myFile = ScriptParam(myScript, myName);
    return myFile.empty() ? std::string() : ScriptParam(myScript, myFolder) + "/" + myFile;
}

} // namespace

std::string LinkProblem(Site& theSite, const Module& myModule)
{
    const std::string myLink = ScriptParam(myModule.Script, "link");
    const auto myUid = LinkedRecord(myLink);
    const auto myRecord = myUid ? theSite.FindRecord(*myUid) : std::nullopt;
    if (!myRecord)
    {
        return myLink.starts_with("UID:")
                   ? "its link names the record " + myLink +
                         ", which the site does not have; choose another with qelhost module edit"
                   : std::string();
    }
    const std::string myName = "record " + std::to_string(myRecord->Uid);
    if (myRecord->Kind == RecordKind::None)
    {
        return "its link names " + myName + ", which leads nowhere; choose another with qelhost module edit";
    }
    if (HasFile(myRecord->Kind) && IsMissing(theSite.DataFolder() / myRecord->Filename))
    {
        return "the file data/" + myRecord->Filename + " of " + myName +
               " is missing; give it again with qelhost record set";
    }
    return {};
}

std::string FailureDetails(Site& theSite, const Module& myModule)
{
    const std::string myArchive = ScriptFile(myModule.Script);
    const std::string myMotif = ShippedFile(myModule.Script, "image", "imagefolder");
    const std::string myTune = ShippedFile(myModule.Script, "midi", "midifolder");
    std::string theDetails;
    const auto Append = [&](const std::string& myText)
    {
        theDetails += (theDetails.empty() || myText.empty() ? "" : "; ") + myText;
    };
    Append(LinkProblem(theSite, myModule));
    if (!myArchive.empty() && IsMissing(theSite.DataFolder() / myArchive))
    {
        Append("its archive data/" + myArchive + " is missing; give it again with qelhost module archive");
    }
    if (!theDetails.empty())
    {
        return theDetails;
    }
    Append(myMotif.empty() ? "choose a motif with qelhost module edit" : "its motif is " + myMotif);
    Append(myTune.empty() ? "" : "its tune is " + myTune);
    return theDetails;
}

} // namespace qel::host

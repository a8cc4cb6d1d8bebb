#include "build/moduleFailures.h"

#include "common/paths.h"
#include "site/scriptTags.h"
#include "site/siteFiles.h"
#include "text/encodings.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

namespace qel::host
{

namespace
{

// The numbers of the two reasons that name none.
constexpr const char* NoMotifChosen = "720";
constexpr const char* LinkIsBroken = "730";

} // namespace

std::string ErrorNumberOf(std::string_view myReason, bool myIsOutputEmpty)
{
    constexpr std::string_view Digits = "0123456789";
    constexpr std::string_view Opening = " \"";
    std::size_t myStart = 0;
    while ((myStart = myReason.find(Opening, myStart)) != std::string_view::npos)
    {
        myStart += Opening.size();
        const std::size_t myFirst = myStart + (myReason.substr(myStart).starts_with('-') ? 1 : 0);
        const std::size_t myEnd = std::min(myReason.find_first_not_of(Digits, myFirst), myReason.size());
        if (myEnd > myFirst && myReason.substr(myEnd).starts_with(": "))
        {
            return std::string(myReason.substr(myStart, myEnd - myStart));
        }
    }
    return myIsOutputEmpty ? NoMotifChosen : LinkIsBroken;
}

std::string ErrorNumberOf(HRESULT myResult)
{
    constexpr uint32_t OwnErrors = 0x800A0000;
    const auto myBits = static_cast<uint32_t>(myResult);
    if ((myBits & 0xFFFF0000) == OwnErrors)
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

/// A motif or tune that a module names.
struct NamedFile
{
    std::string Kind;
    std::string Folder; ///< of the library, or the one of imported files
    std::string Name;   ///< empty: none is chosen
};

bool IsImported(const NamedFile& myFile)
{
    return myFile.Folder == "(USER)";
}

fs::path PathInLibrary(const NamedFile& myFile)
{
    return PathOf(myFile.Folder) / PathOf(myFile.Name);
}

/// True when a file can be found as the component finds it, without regard to case.
bool IsInLibrary(const fs::path& myLibrary, const NamedFile& myFile)
{
    std::error_code myIgnored; // what cannot be read is not found
    if (fs::exists(myLibrary / PathInLibrary(myFile), myIgnored))
    {
        return true;
    }
    const Text myWanted = LowerCase(FromUtf8(TextOf(PathInLibrary(myFile))));
    return std::ranges::any_of(
        fs::recursive_directory_iterator(myLibrary, fs::directory_options::skip_permission_denied, myIgnored),
        [&](const fs::directory_entry& myEntry)
        {
            const fs::path myPath = myEntry.path().lexically_relative(myLibrary);
            return LowerCase(FromUtf8(TextOf(myPath))) == myWanted;
        });
}

/// The motif and the tune that a page needs, in the order in which it uses them.
std::vector<NamedFile> NeededFiles(const std::string& myScript)
{
    std::vector<NamedFile> theFiles;
    const auto Add = [&](const char* mySwitch, const char* myKind, const char* myName, const char* myFolder)
    {
        if (ScriptSwitch(myScript, mySwitch))
        {
            theFiles.push_back({myKind, ScriptParam(myScript, myFolder), ScriptParam(myScript, myName)});
        }
    };
    Add("showimage", "motif", "image", "imagefolder");
    Add("playmidi", "tune", "midi", "midifolder");
    return theFiles;
}

std::string MissingChoice(const NamedFile& myFile)
{
    return "no " + myFile.Kind + " is chosen; choose one with qelhost module edit";
}

/// What is wrong with the files that a page needs, or else their names.
std::string FileDetails(const std::vector<NamedFile>& myFiles, const fs::path& myLibrary)
{
    std::string theNames;
    std::string myImported; // whether the archive has them is not known
    for (const NamedFile& myFile : myFiles)
    {
        if (myFile.Name.empty())
        {
            return myImported + MissingChoice(myFile);
        }
        const std::string myText = "its " + myFile.Kind + " is " + myFile.Folder + "/" + myFile.Name;
        if (!IsImported(myFile) && !IsInLibrary(myLibrary, myFile))
        {
            return myImported + myText;
        }
        myImported += IsImported(myFile) ? myText + "; " : "";
        theNames += (theNames.empty() ? "" : "; ") + myText;
    }
    return theNames;
}

} // namespace

std::string MissingChoice(const std::string& myScript)
{
    const std::vector<NamedFile> myFiles = NeededFiles(myScript);
    const auto myMissing = std::ranges::find_if(myFiles, &std::string::empty, &NamedFile::Name);
    return myMissing == myFiles.end() ? std::string() : MissingChoice(*myMissing);
}

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
    if (HasFile(myRecord->Kind) && IsMissing(theSite.DataFolder() / PathOf(myRecord->Filename)))
    {
        return "the file data/" + myRecord->Filename + " of " + myName +
               " is missing; give it again with qelhost record set";
    }
    return {};
}

std::string FailureDetails(Site& theSite, const Module& myModule, const std::string& myErrorNumber,
                           const fs::path& myLibrary)
{
    if (myErrorNumber == NoMotifChosen)
    {
        return "choose a motif with qelhost module edit";
    }
    if (myErrorNumber == LinkIsBroken)
    {
        const std::string theProblem = LinkProblem(theSite, myModule);
        return theProblem.empty() ? "its link is " + ScriptParam(myModule.Script, "link") : theProblem;
    }
    const std::vector<NamedFile> myFiles = NeededFiles(myModule.Script);
    const std::string myArchive = ScriptFile(myModule.Script);
    if (!myArchive.empty() && std::ranges::any_of(myFiles, IsImported) &&
        IsMissing(theSite.DataFolder() / PathOf(myArchive)))
    {
        return "its archive data/" + myArchive + " is missing; give it again with qelhost module archive";
    }
    return FileDetails(myFiles, myLibrary);
}

} // namespace qel::host

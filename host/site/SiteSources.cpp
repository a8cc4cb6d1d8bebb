// The files that pages came from. A page remembers its file, relative to the site where the file lies inside, so that
// the whole can be moved, and a hash of the file's content; an empty hash says that the file was found missing.
#include "common/Failure.h"
#include "common/paths.h"
#include "site/fileOperations.h"
#include "site/PageText.h"
#include "site/Site.h"
#include "site/siteFiles.h"

#include <array>
#include <charconv>

namespace qel::host
{

namespace
{

/// The 64-bit FNV-1a hash in hexadecimal. It shows that an author has changed a file; it does not resist somebody who
/// searches for two files with the same hash.
std::string HashOf(std::string_view myContent)
{
    uint64_t myHash = 0xCBF29CE484222325;
    for (const char myByte : myContent)
    {
        myHash = (myHash ^ static_cast<unsigned char>(myByte)) * 0x100000001B3;
    }
    std::array<char, 16> myDigits{};
    const auto myEnd = std::to_chars(myDigits.data(), myDigits.data() + myDigits.size(), myHash, 16);
    return {myDigits.data(), myEnd.ptr};
}

/// An absolute path whose folders are no links; its last name may be one, which a build follows again.
fs::path RealPath(const fs::path& myFile)
{
    std::error_code myError;
    const fs::path myAbsolute = fs::absolute(myFile, myError);
    const fs::path myFolder = RealFolderPath(myAbsolute.parent_path(), myError);
    return myError ? myAbsolute : myFolder / myAbsolute.filename();
}

} // namespace

PageInput ReadPage(const fs::path& myFile)
{
    std::error_code myIgnored;
    const bool myIsPlain = myFile != "-" && fs::is_regular_file(myFile, myIgnored);
    return {ReadWholeFile(myFile, LongestText), myIsPlain ? std::optional(RealPath(myFile)) : std::nullopt};
}

void Site::StoreContent(int64_t myPage, const PageInput& myInput)
{
    DemandPageContent(myInput.Content);
    myConnection.Run("UPDATE page SET content = ? WHERE id = ?", {Blob{myInput.Content}, myPage});
    StoreSource(myPage, myInput);
}

void Site::StoreSource(int64_t myPage, const PageInput& myInput)
{
    if (!myInput.Source)
    {
        myConnection.Run("UPDATE page SET source = NULL, source_hash = NULL WHERE id = ?", {myPage});
        return;
    }
    const fs::path myRelative = myInput.Source->lexically_relative(myFolder);
    const bool myIsInside = !myRelative.empty() && *myRelative.begin() != "..";
    const std::string mySource = PortableTextOf(myIsInside ? myRelative : *myInput.Source);
    myConnection.Run("UPDATE page SET source = ?, source_hash = ? WHERE id = ?",
                     {mySource, HashOf(myInput.Content), myPage});
}

std::vector<SourceNews> Site::RefreshPages(const std::optional<std::string>& myOnlyPage)
{
    struct Origin
    {
        int64_t Page;
        std::string Name;
        std::string Source;
        std::string Hash;
    };
    std::vector<Origin> myOrigins;
    const int64_t myOnly = myOnlyPage ? PageId(*myOnlyPage) : 0;
    {
        Statement myPages(myConnection,
                          "SELECT id, name, source, source_hash FROM page"
                          " WHERE source IS NOT NULL AND ?1 IN (0, id) ORDER BY position",
                          {myOnly});
        while (myPages.Next())
        {
            myOrigins.push_back({myPages.Number(0), myPages.Text(1), myPages.Text(2), myPages.Text(3)});
        }
    }
    std::vector<SourceNews> theNews;
    for (const Origin& myOrigin : myOrigins)
    {
        if (auto myNews = RefreshPage(myOrigin.Page, myOrigin.Name, myOrigin.Source, myOrigin.Hash))
        {
            theNews.push_back(*myNews);
        }
    }
    return theNews;
}

std::optional<SourceNews> Site::RefreshPage(int64_t myPage, const std::string& myName, const std::string& mySource,
                                            const std::string& myOldHash)
try
{
    const fs::path myFile = myFolder / PathOf(mySource); // an absolute path stays as it is
    std::error_code myIgnored;
    const fs::file_type myType = fs::status(myFile, myIgnored).type();
    if (myType == fs::file_type::not_found)
    {
        if (myOldHash.empty())
        {
            return {};
        }
        myConnection.Run("UPDATE page SET source_hash = '' WHERE id = ?", {myPage});
        return SourceNews{myName,
                          "its file " + mySource + " is gone, and the page is built as it was read last; give it " +
                              "another file with qelhost page set",
                          false};
    }
    if (myType != fs::file_type::regular && myType != fs::file_type::none)
    {
        throw Failure("it is not a plain file; give another one with qelhost page set");
    }
    const std::string myContent = ReadWholeFile(myFile, LongestText);
    const std::string myHash = HashOf(myContent);
    if (myHash == myOldHash)
    {
        return {};
    }
    Transaction myTransaction(myConnection, Transaction::Kind::Writing);
    if (myConnection.Number("SELECT 1 FROM page WHERE id = ? AND source = ?", {myPage, mySource}) == 0)
    {
        return {}; // the page has been set from elsewhere meanwhile
    }
    const bool myIsNew = PageContent(myPage) != myContent;
    StoreContent(myPage, {myContent, myFile});
    myTransaction.Commit();
    return myIsNew ? std::optional(SourceNews{myName, "taken from " + mySource + " again", false}) : std::nullopt;
}
catch (const Failure& myFailure)
{
    return SourceNews{
        myName, "its file " + mySource + " is not used, and the page is built as it was read last: " + myFailure.what(),
        true};
}

} // namespace qel::host

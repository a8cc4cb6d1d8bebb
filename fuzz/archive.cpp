/// Archives: whatever the file contains, nothing is written outside the folder; packing and unpacking gives the same
/// files.
#include "archive/classArchive.h"
#include "fuzz.h"
#include "platform/shared/SystemPlatform.h"
#include "TemporaryFolder.h"
#include "text/encodings.h"

#include <fuzzer/FuzzedDataProvider.h>
#include <map>

namespace qel
{
namespace
{

namespace fs = std::filesystem;

Files& SystemFiles()
{
    static const std::unique_ptr<SystemPlatform> mySystem = MakeSystemPlatform();
    return mySystem->Ports().files;
}

size_t CountBelow(const fs::path& myFolder)
{
    const fs::recursive_directory_iterator myEntries(myFolder);
    return static_cast<size_t>(std::distance(begin(myEntries), end(myEntries)));
}

void Fill(classArchive& theArchive, const TemporaryFolder& myFolder, TextView myBase, TextView myFile)
{
    theArchive.BaseFolder(myFolder.Logical(myBase));
    theArchive.ArchiveFilename(myFolder.Logical(myFile));
}

/// An archive from an untrusted source. In the folder there are a link that leads out of it, and a subfolder.
void UnPackAnything(std::string_view myBytes)
{
    const TemporaryFolder myFolder;
    fs::create_directories(myFolder.Native("in/base/sub"));
    fs::create_directory(myFolder.Native("out"));
    fs::create_directory_symlink(myFolder.Native("out"), myFolder.Native("in/base/link"));
    fs::create_symlink(myFolder.Native("out/file"), myFolder.Native("in/base/sub/link"));
    myFolder.Write("x.dat", myBytes);
    classArchive myArchive(SystemFiles());
    Fill(myArchive, myFolder, u"in\\base", u"x.dat");
    const bool myWasUnpacked = myArchive.UnPackArchive();
    Demand(CountBelow(myFolder.Native("out")) == 0, "no link leads out");
    fs::remove_all(myFolder.Native("in/base"));
    Demand(CountBelow(myFolder.Native()) == 3, "nothing is written outside the folder");
    const bool myWasRead = myArchive.ReadArchive();
    Demand(myWasRead || !myWasUnpacked, "what can be unpacked can be read");
    Demand(myArchive.TotalSize() <= static_cast<double>(myBytes.size()), "no more comes out than went in");
}

using Tree = std::map<std::string, std::string>;

/// Plain names of up to three parts, all different without regard to case, and contents.
Tree MadeUpTree(FuzzedDataProvider& theBytes)
{
    static constexpr std::string_view Characters[] = {"a", "B", "z", "0", "_", "-", ".", " ", "ñ", "Á", "€", "(", "~"};
    Tree theTree;
    Tree myLowered;
    for (int i = theBytes.ConsumeIntegralInRange(0, 6); i > 0; --i)
    {
        std::string myName;
        for (int myParts = theBytes.ConsumeIntegralInRange(1, 3); myParts > 0; --myParts)
        {
            myName += "/x"; // neither hidden nor a way up
            for (int myLength = theBytes.ConsumeIntegralInRange(0, 3); myLength > 0; --myLength)
            {
                myName += theBytes.PickValueInArray(Characters);
            }
        }
        theTree.emplace(myName.substr(1), theBytes.ConsumeRandomLengthString());
    }
    return theTree;
}

std::string Lowered(const std::string& myName)
{
    return ToUtf8(LowerCase(FromUtf8(myName)));
}

/// Creates the files, except those whose names conflict with others, and returns what exists then.
Tree Made(const Tree& myWanted, const TemporaryFolder& myFolder)
{
    Tree theTree;
    std::map<std::string, std::string> mySpellings; // of each folder, by its lower case
    for (const auto& [myName, myContent] : myWanted)
    {
        bool myIsFree = true;
        for (size_t myEnd = myName.find('/'); myIsFree; myEnd = myName.find('/', myEnd + 1))
        {
            const std::string myPart = myName.substr(0, myEnd);
            const bool myIsFile = myEnd == std::string::npos;
            const auto [mySpelling, myIsNew] = mySpellings.emplace(Lowered(myPart), myPart);
            myIsFree = myIsNew || (!myIsFile && mySpelling->second == myPart && theTree.count(myPart) == 0);
            if (myIsFile)
            {
                break;
            }
        }
        if (myIsFree)
        {
            myFolder.Write("from/" + myName, myContent);
            theTree.emplace(myName, myContent);
        }
    }
    return theTree;
}

void PackAndUnPack(FuzzedDataProvider& theBytes)
{
    const TemporaryFolder myFolder;
    fs::create_directory(myFolder.Native("from"));
    const bool mySmall = theBytes.ConsumeBool();
    const Tree myTree = Made(MadeUpTree(theBytes), myFolder);
    classArchive myArchive(SystemFiles());
    Fill(myArchive, myFolder, u"from", u"x.dat");
    myArchive.SmallFilenames(mySmall);
    Demand(myArchive.PackArchive(), "plain names can be packed");
    Fill(myArchive, myFolder, u"to", u"x.dat");
    Demand(myArchive.UnPackArchive(), "what was packed can be unpacked");
    size_t myCount = 0;
    if (fs::exists(myFolder.Native("to")))
    {
        for (const auto& myEntry : fs::recursive_directory_iterator(myFolder.Native("to")))
        {
            myCount += myEntry.is_regular_file() ? 1 : 0;
        }
    }
    Demand(myCount == myTree.size(), "as many files come out");
    for (const auto& [myName, myContent] : myTree)
    {
        const std::string myUnpacked = "to/" + (mySmall ? Lowered(myName) : myName);
        Demand(fs::is_regular_file(myFolder / myUnpacked), "each file comes out");
        Demand(myFolder.Read(myUnpacked) == myContent, "each file comes out as it was");
    }
}

} // namespace
} // namespace qel

/// The first byte decides whether the rest is an archive or files to pack.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* myBytes, size_t mySize)
{
    using namespace qel;
    if (mySize > 0 && myBytes[0] == 'p')
    {
        FuzzedDataProvider theBytes(myBytes + 1, mySize - 1);
        PackAndUnPack(theBytes);
    }
    else
    {
        UnPackAnything(Characters(myBytes, mySize));
    }
    return 0;
}

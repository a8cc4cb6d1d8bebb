// Packing and unpacking design archives against libarchive and tar, without a filter, on the same files: 2,000 files of
// 8 KB, and one of 1 GiB.
#include "archive/classArchive.h"
#include "compare.h"
#include "platform/shared/SystemPlatform.h"
#include "text/encodings.h"

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <map>

namespace
{

namespace fs = std::filesystem;
using namespace qel;

/// What both sides work on.
struct Case
{
    std::string Name;
    fs::path Folder; ///< contains in, ours, peer, and the archives
    double PackTarget;
    double UnpackTarget;
};

Text Logical(const fs::path& myPath)
{
    return FromUtf8(myPath.string());
}

void MakeFiles(const fs::path& myFolder, int myCount, size_t mySize)
{
    fs::create_directories(myFolder);
    std::vector<char> myBytes(std::min<size_t>(mySize, size_t{1} << 20));
    uint32_t mySeed = 1;
    for (char& myByte : myBytes)
    {
        mySeed = mySeed * 1664525 + 1013904223;
        myByte = static_cast<char>(mySeed >> 24);
    }
    for (int i = 0; i < myCount; ++i)
    {
        std::ofstream myFile(myFolder / ("file" + std::to_string(i) + ".gif"), std::ios::binary);
        for (size_t myDone = 0; myDone < mySize; myDone += myBytes.size())
        {
            myFile.write(myBytes.data(), static_cast<std::streamsize>(std::min(myBytes.size(), mySize - myDone)));
        }
    }
}

bool SameFiles(const fs::path& myFirst, const fs::path& mySecond)
{
    const std::string myCommand = "diff -r '" + myFirst.string() + "' '" + mySecond.string() + "'";
    return std::system(myCommand.c_str()) == 0;
}

void PackOurs(Files& myFiles, const Case& myCase)
{
    classArchive myArchive(myFiles);
    myArchive.BaseFolder(Logical(myCase.Folder / "in"));
    myArchive.ArchiveFilename(Logical(myCase.Folder / "ours.dat"));
    bench::Require(myArchive.PackArchive(), "our packing succeeds");
}

void UnpackOurs(Files& myFiles, const Case& myCase)
{
    classArchive myArchive(myFiles);
    myArchive.BaseFolder(Logical(myCase.Folder / "ours"));
    myArchive.ArchiveFilename(Logical(myCase.Folder / "ours.dat"));
    bench::Require(myArchive.UnPackArchive(), "our unpacking succeeds");
}

void Tar(const std::vector<std::string>& myArguments)
{
    const pid_t myChild = fork();
    if (myChild == 0)
    {
        std::vector<char*> myPointers{const_cast<char*>("tar")};
        for (const std::string& myArgument : myArguments)
        {
            myPointers.push_back(const_cast<char*>(myArgument.c_str()));
        }
        myPointers.push_back(nullptr);
        execvp("tar", myPointers.data());
        _exit(127);
    }
    int myStatus = 0;
    waitpid(myChild, &myStatus, 0);
    bench::Require(myStatus == 0, "tar succeeds");
}

void PackWithLibrary(const Case& myCase)
{
    archive* myDisk = archive_read_disk_new();
    archive* myOutput = archive_write_new();
    archive_write_set_format_ustar(myOutput);
    archive_write_add_filter_none(myOutput);
    archive_write_open_filename(myOutput, (myCase.Folder / "peer.tar").c_str());
    archive_read_disk_open(myDisk, (myCase.Folder / "in").c_str());
    archive_entry* myEntry = archive_entry_new();
    while (archive_read_next_header2(myDisk, myEntry) == ARCHIVE_OK)
    {
        archive_read_disk_descend(myDisk);
        archive_entry_set_pathname(myEntry, fs::path(archive_entry_pathname(myEntry)).filename().c_str());
        archive_write_header(myOutput, myEntry);
        const void* myBlock = nullptr;
        size_t mySize = 0;
        la_int64_t myOffset = 0;
        while (archive_entry_filetype(myEntry) == AE_IFREG &&
               archive_read_data_block(myDisk, &myBlock, &mySize, &myOffset) == ARCHIVE_OK)
        {
            archive_write_data(myOutput, myBlock, mySize);
        }
        archive_entry_clear(myEntry);
    }
    archive_entry_free(myEntry);
    archive_read_free(myDisk);
    bench::Require(archive_write_free(myOutput) == ARCHIVE_OK, "the library packs");
}

void UnpackWithLibrary(const Case& myCase)
{
    archive* myInput = archive_read_new();
    archive_read_support_format_tar(myInput);
    archive_read_open_filename(myInput, (myCase.Folder / "peer.tar").c_str(), 65536);
    archive* myDisk = archive_write_disk_new();
    archive_entry* myEntry = nullptr;
    while (archive_read_next_header(myInput, &myEntry) == ARCHIVE_OK)
    {
        archive_entry_set_pathname(myEntry, (myCase.Folder / "peer" / archive_entry_pathname(myEntry)).c_str());
        archive_write_header(myDisk, myEntry);
        const void* myBlock = nullptr;
        size_t mySize = 0;
        la_int64_t myOffset = 0;
        while (archive_read_data_block(myInput, &myBlock, &mySize, &myOffset) == ARCHIVE_OK)
        {
            archive_write_data_block(myDisk, myBlock, mySize, myOffset);
        }
        archive_write_finish_entry(myDisk);
    }
    archive_write_free(myDisk);
    archive_read_free(myInput);
}

void Compare(const bench::Bench& myBench, Files& myFiles, const Case& myCase)
{
    const fs::path& myFolder = myCase.Folder;
    // The speed of memory depends on its location in the machine. Before each timing everything that either side has
    // written is deleted, so that both write to the same memory: the system reuses the memory that was freed last.
    const auto Clears = [&]
    {
        for (const char* const myName : {"ours", "peer", "ours.dat", "peer.tar"})
        {
            fs::remove_all(myFolder / myName);
        }
    };
    const std::string myTar = (myFolder / "peer.tar").string();
    const std::string myInput = (myFolder / "in").string();
    const std::string myPeer = (myFolder / "peer").string();
    const auto Packs = [&]
    {
        PackOurs(myFiles, myCase);
    };
    const auto Unpacks = [&]
    {
        UnpackOurs(myFiles, myCase);
    };

    myBench.Compare("pack " + myCase.Name + " / libarchive", myCase.PackTarget, {Packs, Clears},
                    {[&] { PackWithLibrary(myCase); }, Clears});
    myBench.Compare("pack " + myCase.Name + " / tar", myCase.PackTarget, {Packs, Clears},
                    {[&] {
                         Tar({"-cf", myTar, "-C", myInput, "."});
                     },
                     Clears});
    const auto MakesOurs = [&]
    {
        Clears();
        Packs();
        fs::create_directory(myFolder / "ours");
    };
    const auto MakesPeers = [&]
    {
        Clears();
        Tar({"-cf", myTar, "-C", myInput, "."});
        fs::create_directory(myFolder / "peer");
    };
    MakesOurs();
    Unpacks();
    bench::Require(SameFiles(myInput, myFolder / "ours"), "our files come back");
    MakesPeers();
    UnpackWithLibrary(myCase);
    bench::Require(SameFiles(myInput, myPeer), "the library's files come back");
    myBench.Compare("unpack " + myCase.Name + " / libarchive", myCase.UnpackTarget, {Unpacks, MakesOurs},
                    {[&] { UnpackWithLibrary(myCase); }, MakesPeers});
    myBench.Compare("unpack " + myCase.Name + " / tar", myCase.UnpackTarget, {Unpacks, MakesOurs},
                    {[&] {
                         Tar({"-xf", myTar, "-C", myPeer});
                     },
                     MakesPeers});
}

/// The peak memory of a process that packs and unpacks once, in MiB.
double PeakMemory(const Case& myCase)
{
    const rusage myUsage = bench::RunInChild(
        [&]
        {
            const auto mySystem = MakeSystemPlatform();
            fs::create_directories(myCase.Folder / "ours");
            PackOurs(mySystem->Ports().files, myCase);
            UnpackOurs(mySystem->Ports().files, myCase);
        });
    return static_cast<double>(myUsage.ru_maxrss) / 1024;
}

} // namespace

int main(int myCount, char** myArguments)
{
    const bench::Bench myBench(myCount, myArguments);
    const TemporaryFolder myFolder(bench::WorkPlace());
    const Case mySmall{"2,000 files of 8 KB", myFolder / "small", 0.9, 0.9};
    const Case myLarge{"one file of 1 GiB", myFolder / "large", 1.0, 1.2};
    MakeFiles(mySmall.Folder / "in", 2000, 8192);
    MakeFiles(myLarge.Folder / "in", 1, size_t{1} << 30);
    myBench.Record("peak memory, " + mySmall.Name, PeakMemory(mySmall), "MiB");
    myBench.Record("peak memory, " + myLarge.Name, PeakMemory(myLarge), "MiB");
    const auto mySystem = MakeSystemPlatform();
    Compare(myBench, mySystem->Ports().files, mySmall);
    Compare(myBench, mySystem->Ports().files, myLarge);
}

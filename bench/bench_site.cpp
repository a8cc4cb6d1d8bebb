// A site of 1,000 pages built by qelhost, against a plain program that reads the same sources for changes, writes the
// same pages and copies the same files; and how long opening the component takes. Arguments: STAGE, then those of every
// comparison.
#include "openComponent.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <string_view>
#include <tuple>

namespace
{

namespace fs = std::filesystem;
using namespace qel;

constexpr int Pages = 1000;

void Run(const std::string& myCommand)
{
    bench::Require(std::system((myCommand + " >/dev/null").c_str()) == 0, myCommand);
}

void Write(const fs::path& myFile, const std::string& myText)
{
    std::ofstream(myFile, std::ios::binary) << myText;
}

/// A page of some 4 KB with a place for its module.
std::string PageText(int myNumber)
{
    std::string theText = "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>" + std::to_string(myNumber) +
                          "</title></head><body>\n";
    for (int i = 0; i < 40; ++i)
    {
        theText += "<p>Un párrafo de la página, con palabras bastantes para llenar una línea entera de texto.</p>\n";
    }
    return theText + "<!-- qel:modules --></body></html>\n";
}

void MakeSite(const std::string& myHost, const fs::path& myFolder)
{
    const std::string mySite = "'" + (myFolder / "site").string() + "'";
    const fs::path myScript = myFolder / "script";
    Write(myScript,
          "<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">\r\n"
          "<pg.param name=\"image\" value=\"Globo.gif\">\r\n<pg.param name=\"imagefolder\" value=\"Fiestas\">\r\n"
          "<pg.param name=\"midi\" value=\"Vals.mid\">\r\n<pg.param name=\"midifolder\" value=\"Fiestas\">\r\n");
    Run(myHost + " init " + mySite);
    for (int i = 0; i < Pages; ++i)
    {
        const std::string myName = "page" + std::to_string(i) + ".html";
        Write(myFolder / myName, PageText(i));
        Run(myHost + " page add " + mySite + " '" + (myFolder / myName).string() + "'");
        Run(myHost + " module add " + mySite + " " + myName + " --script '" + myScript.string() + "'");
    }
}

std::string WholeFile(const fs::path& myFile)
{
    std::ifstream myStream(myFile, std::ios::binary);
    return {std::istreambuf_iterator<char>(myStream), {}};
}

/// The work of the plain program, in one file, as the host has it in its database: each page with its text, and each
/// file with its source, after a line with its name, the length of the text and the hash of a page's source.
void WriteWork(const fs::path& myFile, const fs::path& myBuild, const fs::path& myLibrary)
{
    const fs::path mySources = myFile.parent_path();
    std::ofstream myWork(myFile, std::ios::binary);
    for (const auto& myEntry : fs::recursive_directory_iterator(myBuild))
    {
        const fs::path myName = myEntry.path().lexically_relative(myBuild);
        const fs::path myEnding = myName.extension();
        if (!myEntry.is_regular_file())
        {
            continue;
        }
        std::string myText;
        if (myEnding == ".gif" || myEnding == ".mid")
        {
            myText = myLibrary / (myEnding == ".gif" ? "Globo.gif" : "Vals.mid");
        }
        else
        {
            myText = WholeFile(myEntry.path());
        }
        myWork << myName.string() << ' ' << myText.size() << ' '
               << std::hash<std::string>()(WholeFile(mySources / myName)) << '\n'
               << myText;
    }
}

void ReadSource(const fs::path& myFile, std::string& theText)
{
    const int mySource = open(myFile.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat myStatus = {};
    bench::Require(fstat(mySource, &myStatus) == 0, "a source");
    theText.resize(static_cast<size_t>(myStatus.st_size));
    bench::Require(read(mySource, theText.data(), theText.size()) == myStatus.st_size, "a whole source");
    close(mySource);
}

/// The plain program.
void Do(const fs::path& myFile, const fs::path& myTarget)
{
    for (const char* myFolder : {"images", "media", "files"})
    {
        fs::create_directories(myTarget / myFolder);
    }
    std::ifstream myWork(myFile, std::ios::binary);
    std::string myText;
    std::string mySource;
    for (auto [myName, mySize, myHash] = std::tuple<std::string, size_t, size_t>();
         myWork >> myName >> mySize >> myHash;)
    {
        myText.resize(mySize);
        myWork.get();
        myWork.read(myText.data(), static_cast<std::streamsize>(mySize));
        if (myName.ends_with(".gif") || myName.ends_with(".mid"))
        {
            fs::copy_file(myText, myTarget / myName, fs::copy_options::overwrite_existing);
            continue;
        }
        if (myName != ".qelhost") // the host's list of what it wrote
        {
            ReadSource(myFile.parent_path() / myName, mySource);
            bench::Require(std::hash<std::string>()(mySource) == myHash, "a source has not changed");
        }
        const int myPage = open((myTarget / myName).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        bench::Require(write(myPage, myText.data(), mySize) == static_cast<ssize_t>(mySize), "a page");
        close(myPage);
    }
}

/// Opens the component in this process, reads one text, and returns the time that this took, in milliseconds.
double TimeToOpen(const fs::path& myFile)
{
    const auto myStart = std::chrono::steady_clock::now();
    BSTR myText = nullptr;
    bench::Require(bench::OpenComponent(myFile).get_TextSettings(&myText) == S_OK, "it gives its text");
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - myStart).count();
}

/// The same in a new process.
double OpenInAProcess(const fs::path& myFile)
{
    int myEnds[2] = {};
    bench::Require(pipe(myEnds) == 0, "a pipe");
    const pid_t myChild = fork();
    if (myChild == 0)
    {
        const double myTime = TimeToOpen(myFile);
        _exit(write(myEnds[1], &myTime, sizeof myTime) == sizeof myTime ? 0 : 1);
    }
    double theTime = 0;
    bench::Require(read(myEnds[0], &theTime, sizeof theTime) == sizeof theTime, "the child's time");
    close(myEnds[0]);
    close(myEnds[1]);
    waitpid(myChild, nullptr, 0);
    return theTime;
}

} // namespace

int main(int myCount, char** myArguments)
{
    if (myCount == 4 && std::string_view(myArguments[1]) == "--plain")
    {
        Do(myArguments[2], myArguments[3]);
        return 0;
    }
    bench::Require(myCount > 1, "usage: bench_site STAGE [--json] [--runs N]");
    const bench::Bench myBench(myCount - 1, myArguments + 1);
    const TemporaryFolder myFolder(bench::WorkPlace());
    const fs::path myStage = myFolder / "stage";
    fs::copy(myArguments[1], myStage, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    fs::create_directory(myFolder / "tmp");
    fs::permissions(myFolder / "tmp", fs::perms::owner_all);
    setenv("TMPDIR", (myFolder / "tmp").c_str(), 1);

    const fs::path myComponent = myStage / "QelPluginAnimation.so";
    std::vector<double> myTimes;
    for (int i = 0; i < 21; ++i)
    {
        myTimes.push_back(OpenInAProcess(myComponent));
    }
    myBench.Record("opening the component and reading a text", bench::Median(myTimes), "ms", 3);

    const std::string myHost = "'" + (myStage / "qelhost").string() + "' --plugin '" + myComponent.string() + "'";
    MakeSite(myHost, myFolder.Native());
    const fs::path myBuild = myFolder / "site/build";
    const std::string myCommand = myHost + " build '" + (myFolder / "site").string() + "'";
    Run(myCommand);
    WriteWork(myFolder / "work", myBuild, myStage / "QelPluginAnimationDesigns/Fiestas");
    const fs::path myPlain = myFolder / "plain";
    const std::string myPlainCommand = "'" + fs::read_symlink("/proc/self/exe").string() + "' --plain '" +
                                       (myFolder / "work").string() + "' '" + myPlain.string() + "'";
    Run(myPlainCommand);
    Run("diff -r '" + myBuild.string() + "' '" + myPlain.string() + "'");
    myBench.Compare("a site of 1,000 pages by qelhost / a plain program", 2.0,
                    {[&] { Run(myCommand); },
                     [&]
                     {
                         fs::remove_all(myBuild);
                     }},
                    {[&] { Run(myPlainCommand); },
                     [&]
                     {
                         fs::remove_all(myPlain);
                     }});
}

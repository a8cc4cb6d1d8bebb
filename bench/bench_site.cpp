// A site of 1,000 pages built by qelhost, against a plain program that reads the same sources for changes, writes the
// same pages and copies the same files; and how long opening the component takes. Arguments: STAGE, then those of every
// comparison.
#include "openComponent.h"

#include <fcntl.h>
#include <sqlite3.h>
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

std::string Quoted(const fs::path& myPath)
{
    return "'" + myPath.string() + "'";
}

void Run(const std::string& myCommand)
{
    bench::Require(std::system((myCommand + " >/dev/null").c_str()) == 0, myCommand);
}

void Write(const fs::path& myFile, const std::string& myText)
{
    std::ofstream(myFile, std::ios::binary) << myText;
}

/// A page of some 4 KB with a place for its module.
std::string PageText()
{
    std::string theText = "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>Una</title></head><body>\n";
    for (int i = 0; i < 40; ++i)
    {
        theText += "<p>Un párrafo de la página, con palabras bastantes para llenar una línea entera de texto.</p>\n";
    }
    return theText + "<!-- qel:modules --></body></html>\n";
}

/// Makes a site with so many pages of one module each, and the sources of the pages beside it. The host adds the first
/// page; the others are copies in its database.
void MakeSite(const std::string& myHost, const fs::path& myFolder, int myPages)
{
    fs::create_directory(myFolder);
    const fs::path mySite = myFolder / "site";
    const fs::path myScript = myFolder / "script";
    Write(myScript,
          "<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">\r\n"
          "<pg.param name=\"image\" value=\"Globo.gif\">\r\n<pg.param name=\"imagefolder\" value=\"Fiestas\">\r\n"
          "<pg.param name=\"midi\" value=\"Vals.mid\">\r\n<pg.param name=\"midifolder\" value=\"Fiestas\">\r\n");
    for (int i = 1; i <= myPages; ++i)
    {
        Write(myFolder / ("page" + std::to_string(i) + ".html"), PageText());
    }
    Run(myHost + " init " + Quoted(mySite));
    Run(myHost + " page add " + Quoted(mySite) + " " + Quoted(myFolder / "page1.html"));
    Run(myHost + " module add " + Quoted(mySite) + " page1.html --script " + Quoted(myScript));

    const std::string myNumbers =
        "WITH RECURSIVE number(n) AS (SELECT 2 UNION ALL SELECT n + 1 FROM number WHERE n < " +
        std::to_string(myPages) + ") ";
    const std::string myCopies = myNumbers +
                                 "INSERT INTO page (id, name, title, position, content, source, source_hash) SELECT n, "
                                 "'page' || n || '.html', title, "
                                 "n, content, replace(source, 'page1.html', 'page' || n || '.html'), source_hash FROM "
                                 "page, number WHERE id = 1;" +
                                 myNumbers +
                                 "INSERT INTO module (id, page, place, position, script) SELECT n, n, place, position, "
                                 "script FROM module, number "
                                 "WHERE id = 1;";
    sqlite3* myDatabase = nullptr;
    bench::Require(sqlite3_open((mySite / "site.db").c_str(), &myDatabase) == SQLITE_OK, "the site's database");
    bench::Require(sqlite3_exec(myDatabase, myCopies.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, myCopies);
    sqlite3_close(myDatabase);
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
    myBench.Record("opening the component and reading a text", bench::Median(myTimes), "ms", 0.5);

    const std::string myHost = Quoted(myStage / "qelhost") + " --plugin " + Quoted(myComponent);
    const auto myBuilds = [&](const fs::path& mySite)
    {
        return bench::Side{[=] { Run(myHost + " build " + Quoted(mySite)); },
                           [=]
                           {
                               fs::remove_all(mySite / "build");
                           }};
    };
    const fs::path mySmall = myFolder / "1000";
    const fs::path myLarge = myFolder / "8000";
    MakeSite(myHost, mySmall, 1000);
    MakeSite(myHost, myLarge, 8000);
    const bench::Side myOurs = myBuilds(mySmall / "site");
    myOurs.Run();
    WriteWork(mySmall / "work", mySmall / "site/build", myStage / "QelPluginAnimationDesigns/Fiestas");
    const fs::path myPlain = mySmall / "plain";
    const std::string myPlainCommand =
        Quoted(fs::read_symlink("/proc/self/exe")) + " --plain " + Quoted(mySmall / "work") + " " + Quoted(myPlain);
    Run(myPlainCommand);
    Run("diff -r " + Quoted(mySmall / "site/build") + " " + Quoted(myPlain));
    myBench.Compare("a site of 1,000 pages by qelhost / a plain program", 1.6, myOurs,
                    {[&] { Run(myPlainCommand); },
                     [&]
                     {
                         fs::remove_all(myPlain);
                     }});
    myBench.Compare("a site of 8,000 pages / one of 1,000", 8.5, myBuilds(myLarge / "site"), myOurs);
}

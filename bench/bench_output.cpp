/// The page text of modules with a picture of 350 by 250, against the codec's own decode and one copy of the file. Two
/// modules alternate, each with a file of its own, because a motif that is already decoded would not be decoded again.
#include "ball.h"
#include "compare.h"
#include "imaging/GifPicture.h"
#include "imaging/paletteReduction.h"
#include "module/FormMain.h"
#include "platform/shared/SystemPlatform.h"
#include "TestHost.h"
#include "text/encodings.h"

#include <array>
#include <deque>
#include <fcntl.h>
#include <fstream>
#include <gif_lib.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace qel;
using namespace qel::bench;

constexpr int32_t Width = 350;
constexpr int32_t Height = 250;
constexpr size_t Repetitions = 50;

void WriteFile(const std::filesystem::path& myFile, const std::vector<uint8_t>& myBytes)
{
    std::ofstream(myFile, std::ios::binary)
        .write(reinterpret_cast<const char*>(myBytes.data()), static_cast<std::streamsize>(myBytes.size()));
}

std::string ReadFile(const std::filesystem::path& myFile)
{
    std::ifstream myStream(myFile, std::ios::binary);
    return {std::istreambuf_iterator<char>(myStream), {}};
}

/// Decodes every image of a file with the codec's own reader and returns the size of the screen.
std::pair<int, int> Decode(const std::filesystem::path& myFile)
{
    GifFileType* const myGif = DGifOpenFileName(myFile.c_str(), nullptr);
    Require(myGif != nullptr && DGifSlurp(myGif) == GIF_OK, "the codec decodes the picture");
    const std::pair theSize(myGif->SWidth, myGif->SHeight);
    DGifCloseFile(myGif, nullptr);
    return theSize;
}

void Copy(const std::filesystem::path& mySource, const std::filesystem::path& myTarget)
{
    const int myInput = open(mySource.c_str(), O_RDONLY);
    const int myOutput = open(myTarget.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    struct stat myFacts = {};
    Require(fstat(myInput, &myFacts) == 0, "a file to copy");
    for (off_t myLeft = myFacts.st_size; myLeft > 0;)
    {
        const ssize_t myCopied = copy_file_range(myInput, nullptr, myOutput, nullptr, static_cast<size_t>(myLeft), 0);
        Require(myCopied > 0, "a copy by the kernel");
        myLeft -= myCopied;
    }
    close(myInput);
    close(myOutput);
}

} // namespace

int main(int argc, char** argv)
{
    const Bench myBench(argc, argv);
    const TemporaryFolder myFolder(WorkPlace());
    setenv("TMPDIR", myFolder.Native().c_str(), 1);
    std::filesystem::create_directories(myFolder / "designs/Fiestas");
    std::filesystem::create_directories(myFolder / "ours");
    std::filesystem::create_directories(myFolder / "peer");
    constexpr std::array myNames = {"Globo1.gif", "Globo2.gif"};
    for (const char* const myName : myNames)
    {
        WriteFile(myFolder / "designs/Fiestas" / myName, WriteGif(*ReduceToPalette(Ball(Width, Height), false)));
    }
    const std::filesystem::path myPicture = myFolder / "designs/Fiestas" / myNames[0];

    const std::unique_ptr<SystemPlatform> mySystem = MakeSystemPlatform();
    const localConstants myConstants{myFolder.Logical(u"designs\\"), {}};
    FormLead myLead(mySystem->Ports());
    TestHost myHost;
    myHost.UniqueName = u"17";
    myHost.BuildInto(myFolder.Logical(u"ours\\"));
    std::deque<FormMain> myForms;
    for (const char* const myName : myNames)
    {
        FormMain& myForm = myForms.emplace_back(mySystem->Ports(), myConstants, myLead);
        myForm.myBuildHelper = std::make_unique<TestHostServices>(myHost);
        myForm.Script(u"<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">\r\n"
                      u"<pg.param name=\"image\" value=\"" +
                      FromUtf8(myName) +
                      u"\">\r\n<pg.param name=\"imagefolder\" value=\"Fiestas\">\r\n"
                      u"<pg.param name=\"playmidi\" value=\"0\">\r\n");
    }

    const Text myPage = myForms.front().Output();
    Copy(myPicture, myFolder / "peer/qelspr17.gif");
    Require(myPage.find(u"width=\"350\" height=\"250\"") != Text::npos, "the page tells the picture's size");
    Require(Decode(myPicture) == std::pair<int, int>(Width, Height), "the codec reports the same size");
    Require(ReadFile(myFolder / "ours/qelspr17.gif") == ReadFile(myFolder / "peer/qelspr17.gif"), "the same copy");

    const auto RunOurs = [&]
    {
        for (size_t i = 0; i < Repetitions; ++i)
        {
            Keep(myForms[i % myForms.size()].Output());
        }
    };
    const auto RunPeer = [&]
    {
        for (size_t i = 0; i < Repetitions; ++i)
        {
            const std::filesystem::path myTurn = myFolder / "designs/Fiestas" / myNames[i % myNames.size()];
            Decode(myTurn);
            Copy(myTurn, myFolder / "peer/qelspr17.gif");
        }
    };
    myBench.Compare("output: 50 pages with a picture against giflib and a copy", 1.05, {RunOurs}, {RunPeer});
}

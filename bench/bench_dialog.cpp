// How long the settings dialog takes with a library of 200 folders of 500 motifs: from the call to a painted window,
// and from a key in the list of motifs to a painted preview. Arguments: STAGE, then those of every comparison.
#include "ball.h"
#include "imaging/GifPicture.h"
#include "imaging/paletteReduction.h"
#include "openComponent.h"

#include <cinttypes>
#include <fstream>
#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>

namespace
{

namespace fs = std::filesystem;
using namespace qel;

using Clock = std::chrono::steady_clock;
constexpr int Runs = 21;

double Milliseconds(Clock::duration myTime)
{
    return std::chrono::duration<double, std::milli>(myTime).count();
}

/// A component's folder with such a library. All motifs of a folder are one file.
void MakeStage(const fs::path& mySource, const fs::path& myTarget)
{
    for (const char* myFile : {"QelPluginAnimation.so", "QelPluginAnimationWindow.so", "libqelcom.so.1"})
    {
        fs::copy_file(mySource / myFile, myTarget / myFile);
    }
    const std::vector<uint8_t> myGif = WriteGif(*ReduceToPalette(bench::Ball(350, 350), false));
    for (int i = 100; i < 300; ++i)
    {
        const fs::path myFolder = myTarget / "QelPluginAnimationDesigns" / ("Temas " + std::to_string(i));
        fs::create_directories(myFolder);
        std::ofstream(myFolder / "Motivo 100.gif", std::ios::binary)
            .write(reinterpret_cast<const char*>(myGif.data()), static_cast<std::streamsize>(myGif.size()));
        for (int j = 101; j < 600; ++j)
        {
            fs::create_hard_link(myFolder / "Motivo 100.gif", myFolder / ("Motivo " + std::to_string(j) + ".gif"));
        }
    }
}

/// Runs once, after the preview and everything painted together with it has been painted.
std::function<void()> theNextStep;

class PreviewWatcher : public QObject
{
protected:
    bool eventFilter(QObject* myObject, QEvent* myEvent) override
    {
        if (myEvent->type() == QEvent::Paint && myObject->objectName() == "picPreview" && theNextStep)
        {
            QMetaObject::invokeMethod(qApp, std::exchange(theNextStep, nullptr), Qt::QueuedConnection);
        }
        return false;
    }
};

/// The application object is the component's own.
void Watch()
{
    qApp->installEventFilter(new PreviewWatcher);
}
Q_COREAPP_STARTUP_FUNCTION(Watch)

template <class Widget>
Widget& Control(const char* myName)
{
    return *QApplication::activeModalWidget()->findChild<Widget*>(myName);
}

void Cancel()
{
    bench::Require(Control<QListWidget>("lstImage").count() == 500, "a full list");
    bench::Require(!Control<QLabel>("picPreview").pixmap().isNull(), "a picture in the preview");
    Control<QAbstractButton>("cmdCancel").click();
}

void CallBack(QelPlugin& myPlugin)
{
    int32_t myLink = 0;
    VARIANT_BOOL theAnswer = VARIANT_TRUE;
    bench::Require(myPlugin.CallBack(&myLink, &theAnswer) == S_OK && theAnswer == VARIANT_FALSE, "a cancelled dialog");
}

/// Opens the dialog and returns when it was painted.
Clock::time_point Open(QelPlugin& myPlugin)
{
    Clock::time_point theEnd;
    theNextStep = [&]
    {
        theEnd = Clock::now();
        Cancel();
    };
    CallBack(myPlugin);
    return theEnd;
}

/// The same in a new process, from its start.
double OpenInAProcess(const fs::path& myStage)
{
    const std::string myCommand = "/proc/" + std::to_string(getpid()) + "/exe --once '" + myStage.string() + "'";
    const auto myStart = Clock::now();
    FILE* const myOutput = popen(myCommand.c_str(), "r");
    int64_t myEnd = 0;
    bench::Require(myOutput != nullptr && std::fscanf(myOutput, "%" SCNd64, &myEnd) == 1 && pclose(myOutput) == 0,
                   "the time of another process");
    return Milliseconds(Clock::time_point(Clock::duration(myEnd)) - myStart);
}

/// Selects one motif after the other with a key, and records the time of each.
void TakeNextMotif(std::vector<double>& theTimes)
{
    auto& myList = Control<QListWidget>("lstImage");
    const int myRow = myList.currentRow();
    const auto myStart = Clock::now();
    theNextStep = [&theTimes, myStart]
    {
        theTimes.push_back(Milliseconds(Clock::now() - myStart));
        theTimes.size() < Runs ? TakeNextMotif(theTimes) : Cancel();
    };
    QKeyEvent myKey(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
    QCoreApplication::sendEvent(&myList, &myKey);
    bench::Require(myList.currentRow() == myRow + 1, "the next motif");
}

template <class Operation>
double MedianOf(Operation myOperation)
{
    std::vector<double> myTimes(Runs);
    std::ranges::generate(myTimes, myOperation);
    return bench::Median(myTimes);
}

} // namespace

int main(int myCount, char** myArguments)
{
    bench::Require(myCount > 1, "usage: bench_dialog STAGE [--json]");
    if (myCount == 3 && std::string_view(myArguments[1]) == "--once")
    {
        std::printf("%" PRId64 "\n",
                    int64_t{Open(bench::OpenComponent(fs::path(myArguments[2]) / "QelPluginAnimation.so"))
                                .time_since_epoch()
                                .count()});
        return 0;
    }
    const bench::Bench myBench(myCount - 1, myArguments + 1);
    const TemporaryFolder myFolder(bench::WorkPlace());
    MakeStage(fs::absolute(myArguments[1]), myFolder.Native());
    fs::create_directory(myFolder / "tmp");
    fs::permissions(myFolder / "tmp", fs::perms::owner_all);
    setenv("TMPDIR", (myFolder / "tmp").c_str(), 1);
    setenv("XDG_RUNTIME_DIR", (myFolder / "tmp").c_str(), 1);
    setenv("XDG_CONFIG_HOME", myFolder.Native().c_str(), 1);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);

    OpenInAProcess(myFolder.Native());
    myBench.Record("dialog of 200 folders of 500 motifs, from a process's start",
                   MedianOf([&] { return OpenInAProcess(myFolder.Native()); }), "ms", 50);
    QelPlugin& myPlugin = bench::OpenComponent(myFolder / "QelPluginAnimation.so");
    Open(myPlugin);
    const auto OpenAgain = [&]
    {
        const auto myStart = Clock::now();
        return Milliseconds(Open(myPlugin) - myStart);
    };
    myBench.Record("the same, opened again in one process", MedianOf(OpenAgain), "ms", 50);
    std::vector<double> myTimes;
    theNextStep = [&]
    {
        TakeNextMotif(myTimes);
    };
    CallBack(myPlugin);
    myBench.Record("dialog: from a selection to a preview of a 350 by 350 GIF", bench::Median(myTimes), "ms", 20);
}

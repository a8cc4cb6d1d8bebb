#include "platform/linux/toolkit/Application.h"

#include "platform/linux/Descriptor.h"
#include "text/errors.h"

#include <algorithm>
#include <clocale>
#include <cstring>
#include <memory>
#include <mutex>
#include <QApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QThread>
#include <QTranslator>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <xcb/xcb.h>

namespace qel
{
namespace
{

/// True when the toolkit's part for a display system lies in one of the folders that it looks into.
bool IsInstalled(const QString& mySystem)
{
    QStringList myFolders = qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH").split(':', Qt::SkipEmptyParts);
    for (const QString& myFolder : QCoreApplication::libraryPaths())
    {
        myFolders << myFolder + "/platforms";
    }
    // There are several for the one system that is told apart by how it draws.
    const QString myFile = "libq" + mySystem.toLower() + (mySystem == "wayland" ? "*.so" : ".so");
    return std::ranges::any_of(myFolders, [&](const QString& myFolder)
                               { return !QDir(myFolder).entryList({myFile}, QDir::Files).isEmpty(); });
}

bool XDisplayAnswers()
{
    struct Closer
    {
        void operator()(xcb_connection_t* myConnection) const { xcb_disconnect(myConnection); }
    };
    const std::unique_ptr<xcb_connection_t, Closer> myConnection(xcb_connect(nullptr, nullptr));
    return xcb_connection_has_error(myConnection.get()) == 0;
}

/// True when the compositor's socket takes a connection.
bool WaylandDisplayAnswers()
{
    const QString mySocket =
        QDir(qEnvironmentVariable("XDG_RUNTIME_DIR")).absoluteFilePath(qEnvironmentVariable("WAYLAND_DISPLAY"));
    const std::string myPath = mySocket.toStdString();
    sockaddr_un myAddress = {};
    if (!qEnvironmentVariableIsSet("WAYLAND_DISPLAY") || myPath.size() >= sizeof myAddress.sun_path)
    {
        return false;
    }
    myAddress.sun_family = AF_UNIX;
    std::memcpy(static_cast<char*>(myAddress.sun_path), myPath.c_str(), myPath.size() + 1);
    const Descriptor myClient(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    return connect(myClient.Handle(), reinterpret_cast<const sockaddr*>(&myAddress), sizeof myAddress) == 0;
}

/// Without a display the toolkit ends the process, so it is asked for beforehand. The toolkit goes through the same
/// list of display systems and takes the first that works; one that needs no display at all always does.
bool DisplayAnswers()
{
    const QString mySet = qEnvironmentVariable("QT_QPA_PLATFORM");
    for (const QString& myChoice : (mySet.isEmpty() ? QString("wayland;xcb") : mySet).split(';'))
    {
        const QString mySystem = myChoice.section(':', 0, 0); // what follows are its options
        if (!IsInstalled(mySystem))
        {
            continue;
        }
        if (mySystem.startsWith("xcb")       ? XDisplayAnswers()
            : mySystem.startsWith("wayland") ? WaylandDisplayAnswers()
                                             : true)
        {
            return true;
        }
    }
    return false;
}

/// The toolkit sets the process's locale to the user's, which a host may not expect of a component.
class LocaleKeeper
{
public:
    LocaleKeeper() : myLocale(std::setlocale(LC_ALL, nullptr)) {}
    ~LocaleKeeper() { std::setlocale(LC_ALL, myLocale.c_str()); }
    LocaleKeeper(const LocaleKeeper&) = delete;
    LocaleKeeper& operator=(const LocaleKeeper&) = delete;

private:
    std::string myLocale;
};

/// The toolkit's own texts in Spanish; null where they are not installed. Kept, as the application object is.
QTranslator* ToolkitTranslator()
{
    static QTranslator* const theTexts = []() -> QTranslator*
    {
        auto myTexts = std::make_unique<QTranslator>();
        return myTexts->load("qtbase_es", QLibraryInfo::path(QLibraryInfo::TranslationsPath)) ? myTexts.release()
                                                                                              : nullptr;
    }();
    return theTexts;
}

/// True when the application object is the one that MakeApplication has made.
bool theApplicationIsOurs = false;

void MakeApplication()
{
    static int theCount = 1;
    static char theName[] = "QelPluginAnimation";
    static char* theArguments[] = {theName, nullptr};

    const LocaleKeeper myKeeper;
    // Never deleted: no moment before the end of the process is known to be safe for that.
    [[maybe_unused]] static const auto* const theApplication = new QApplication(theCount, theArguments);
    QApplication::setStyle("Fusion");
    QApplication::setQuitOnLastWindowClosed(false);
    QCoreApplication::installTranslator(ToolkitTranslator());
    theApplicationIsOurs = true;
}

} // namespace

SpanishTexts::SpanishTexts() : myTexts(theApplicationIsOurs ? nullptr : ToolkitTranslator())
{
    QCoreApplication::installTranslator(myTexts);
}

SpanishTexts::~SpanishTexts()
{
    QCoreApplication::removeTranslator(myTexts);
}

void DemandApplication()
{
    static std::mutex theMutex;
    const std::scoped_lock myLock(theMutex);
    const QCoreApplication* const myApplication = QCoreApplication::instance();
    if (myApplication == nullptr)
    {
        if (!DisplayAnswers())
        {
            throw Error{ErrorNumber::DeviceError, u"No se puede abrir la ventana porque no hay ninguna pantalla"};
        }
        MakeApplication();
    }
    else if (myApplication->thread() != QThread::currentThread())
    {
        throw Error{ErrorNumber::InvalidArgument, u"No se puede abrir la ventana porque otro hilo es el dueño de las "
                                                  u"ventanas de este programa"};
    }
    else if (!myApplication->inherits("QApplication"))
    {
        throw Error{ErrorNumber::InvalidArgument,
                    u"No se puede abrir la ventana porque este programa se ha iniciado sin ventanas"};
    }
}

void ProcessPendingEvents() noexcept
{
    const QCoreApplication* const myApplication = QCoreApplication::instance();
    if (myApplication != nullptr && myApplication->thread() == QThread::currentThread())
    {
        QCoreApplication::processEvents();
    }
}

} // namespace qel

#include "platform/linux/toolkit/application.h"

#include "platform/linux/Descriptor.h"
#include "text/errors.h"
#include "text/ScopeGuard.h"

#include <algorithm>
#include <clocale>
#include <cstring>
#include <memory>
#include <mutex>
#include <QApplication>
#include <QDir>
#include <QThread>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <xcb/xcb.h>

namespace qel
{
namespace
{

/// True when the toolkit's plug-in for a display system is in one of the folders that it searches.
bool IsInstalled(const QString& mySystem)
{
    QStringList myFolders = qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH").split(':', Qt::SkipEmptyParts);
    for (const QString& myFolder : QCoreApplication::libraryPaths())
    {
        myFolders << myFolder + "/platforms";
    }
    // There are several files for Wayland, one for each rendering method.
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

/// True when the compositor's socket accepts a connection.
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

/// True when the toolkit will find a display. Without one it ends the process, so this is checked first. The toolkit
/// tries the same list of display systems in order and uses the first that works; one that needs no display always
/// works.
bool DisplayAnswers()
{
    const QString mySet = qEnvironmentVariable("QT_QPA_PLATFORM");
    for (const QString& myChoice : (mySet.isEmpty() ? QString("wayland;xcb") : mySet).split(';'))
    {
        const QString mySystem = myChoice.section(':', 0, 0); // the rest are its options
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

void MakeApplication()
{
    static int theCount = 1;
    static char theName[] = "QelPluginAnimation";
    static char* theArguments[] = {theName, nullptr};

    // The toolkit sets the process's locale to the user's, which a host may not expect of a component.
    const ScopeGuard myGuard([myLocale = std::string(std::setlocale(LC_ALL, nullptr))]
                             { std::setlocale(LC_ALL, myLocale.c_str()); });
    // Never deleted: it is unknown when that would be safe before the end of the process.
    [[maybe_unused]] static const auto* const theApplication = new QApplication(theCount, theArguments);
    QApplication::setStyle("Fusion");
    QApplication::setQuitOnLastWindowClosed(false);
}

} // namespace

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

// glyphmill-app: Glyphmill in the tray. `glyphmill` starts it with its own arguments; a second
// start hands its request to the first over D-Bus and ends.
#include "app/ApplicationDelegate.h"
#include "app/ServiceFilter.h"
#include "app/SingleInstance.h"
#include "app/TerminationSignals.h"
#include "app/menu/AppIcons.h"
#include "cli/AppCommandLine.h"
#include "cli/Failure.h"
#include "platform/linux/LinuxPlatform.h"

#include <QApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QTimer>

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>

using namespace glyphmill;
using cli::ExitStatus;

namespace {

int report(ExitStatus status, const QString &message) {
    std::fprintf(stderr, "glyphmill: %s\n", qUtf8Printable(message));
    return static_cast<int>(status);
}

void note(const QString &message) {
    std::fprintf(stderr, "glyphmill: %s\n", qUtf8Printable(message));
}

bool isWaylandSession() {
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           qEnvironmentVariable("XDG_SESSION_TYPE") == QLatin1String("wayland");
}

// Whether Qt will find a display to put the tray icon on; without one QApplication would abort.
bool hasDisplay() {
    const QString platform = qEnvironmentVariable("QT_QPA_PLATFORM");
    if (!platform.isEmpty() && !platform.startsWith(QLatin1String("xcb")) &&
        !platform.startsWith(QLatin1String("wayland")))
        return true; // offscreen and the like need nothing
    if (!qEnvironmentVariableIsEmpty("DISPLAY"))
        return true;
    if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return false;
    const QDir platforms(QLibraryInfo::path(QLibraryInfo::PluginsPath) + QLatin1String("/platforms"));
    return !platforms.entryList({QStringLiteral("libqwayland*")}).isEmpty();
}

int noDisplay() {
    return report(
        ExitStatus::unavailable,
        QStringLiteral("no display to run Glyphmill on; set DISPLAY, or use glyphmill transform and "
                       "glyphmill service, which need none"));
}

int forward(QDBusConnection &bus, const appCommands::Request &request) {
    if (auto failure = singleInstance::forwardRequest(bus, request))
        return report(ExitStatus::unavailable, *failure);
    return 0;
}

int runApplication(const appCommands::Request &request) {
    installLinuxPlatformServices();
    QApplication::setQuitOnLastWindowClosed(false);
    if (isWaylandSession() && QGuiApplication::platformName() != QLatin1String("offscreen"))
        note(QStringLiteral("global hot keys need an X11 session; bind desktop shortcuts "
                            "to glyphmill commands instead (see glyphmill --help)"));

    ApplicationDelegate delegate;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !delegate.exportOnBus(bus)) {
        note(QStringLiteral("no D-Bus session bus; Services and glyphmill commands will "
                            "not reach this instance"));
    } else {
        switch (singleInstance::claimServiceName(bus)) {
        case singleInstance::Claim::owned:
            break;
        case singleInstance::Claim::heldByAnother:
            // Another one started at the same moment and won.
            delegate.withdrawFromBus(bus);
            return forward(bus, request);
        case singleInstance::Claim::failed:
            note(QStringLiteral("could not claim the name %1 on the session bus")
                     .arg(QStringLiteral("org.glyphmill.Glyphmill")));
            break;
        }
    }

    QObject::connect(qApp, &QCoreApplication::aboutToQuit, &delegate,
                     [&delegate] { delegate.applicationWillTerminate(); });
    QObject::connect(qApp, &QGuiApplication::applicationStateChanged, &delegate,
                     [&delegate](Qt::ApplicationState state) {
                         if (state == Qt::ApplicationActive)
                             delegate.applicationDidBecomeActive();
                     });
    quitOnTerminationSignals();
    delegate.applicationDidFinishLaunching();
    if (request.command != appCommands::Command::launch) {
        // The request that started us runs once launching is over, like a forwarded one.
        QTimer::singleShot(0, &delegate, [&delegate, request] {
            if (auto failure = delegate.commands().run(request))
                report(ExitStatus::unavailable, QString::fromStdString(*failure));
        });
    }
    const int status = QApplication::exec();
    delegate.applicationWillTerminate();
    return status;
}

// Text recognition runs on OpenMP, which reads its thread limit once, while the libraries load,
// and on a small machine is several times slower with a thread per core. So the limit has to be
// in the environment the process starts with: without it, start again with it.
void startWithOneRecognitionThread(char **argv) {
    if (std::getenv("OMP_THREAD_LIMIT"))
        return;
    ::setenv("OMP_THREAD_LIMIT", "1", 1);
    ::execv("/proc/self/exe", argv);
    // Still here: run as we are, only slower.
}

} // namespace

int main(int argc, char **argv) {
    startWithOneRecognitionThread(argv);
    std::signal(SIGPIPE, SIG_IGN);
    const appCommands::Parsed parsed = appCommands::parse(
        std::span<const char *const>(argv + 1, static_cast<std::size_t>(argc > 0 ? argc - 1 : 0)));
    if (parsed.wantsHelp || parsed.wantsVersion) {
        std::fputs("glyphmill-app is started by glyphmill; see glyphmill --help\n", stdout);
        return 0;
    }
    if (!parsed.request)
        return report(ExitStatus::usage, QString::fromStdString(parsed.mistake));
    const appCommands::Request request = *parsed.request;

    if (request.command == appCommands::Command::service) {
        QCoreApplication application(argc, argv);
        return runServiceFilter(request.serviceKind);
    }
    if (request.command == appCommands::Command::quit || !hasDisplay()) {
        // Neither needs a display of its own: a running instance does the work, or nothing does.
        QCoreApplication application(argc, argv);
        QDBusConnection bus = QDBusConnection::sessionBus();
        const bool running = bus.isConnected() && singleInstance::isRunning(bus);
        if (running)
            return forward(bus, request);
        return request.command == appCommands::Command::quit ? 0 : noDisplay();
    }
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Glyphmill"));
    QApplication::setDesktopFileName(QStringLiteral("glyphmill"));
    // The prompts show the application icon.
    QApplication::setWindowIcon(appIcons::applicationIcon());
    return runApplication(request);
}

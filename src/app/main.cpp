// glyphmill-app: Glyphmill in the tray. `glyphmill` starts it with its own arguments. Without a
// command it becomes the tray application, unless one runs already. A command is handed to the
// running one over D-Bus, which is first started on its own when none runs; the command ends
// with what the application answered.
#include "app/ApplicationDelegate.h"
#include "app/DBusNames.h"
#include "app/ServiceFilter.h"
#include "app/SingleInstance.h"
#include "app/TerminationSignals.h"
#include "cli/AppCommandLine.h"
#include "cli/Failure.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/QtKeyTranslation.h"
#include "ui/AppIcons.h"
#include "ui/ShortcutRecorder.h"

#include <QApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QTimer>

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
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

// Starting takes well under a second; a loaded machine or a sanitizer build is slower.
constexpr auto startDeadline = std::chrono::seconds(20);

int forward(QDBusConnection &bus, const appCommands::Request &request) {
    const singleInstance::Answer answer = singleInstance::forwardRequest(bus, request);
    switch (answer.kind) {
    case singleInstance::Answer::Kind::done:
        return 0;
    case singleInstance::Answer::Kind::declined:
        return report(ExitStatus::notDone, answer.message);
    case singleInstance::Answer::Kind::failed:
        break;
    }
    return report(ExitStatus::unavailable, answer.message);
}

// Starts this program without a command, as the tray application in a session of its own and
// away from our terminal and pipes, so that it outlives us and whoever waits for our output does
// not wait for it. Its process id, or -1.
pid_t startTrayApplication() {
    const int devNull = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    if (devNull < 0)
        return -1;
    static char programName[] = "glyphmill-app";
    char *const arguments[] = {programName, nullptr};
    const pid_t child = ::fork();
    if (child == 0) {
        // Only calls that are safe between fork and exec.
        ::setsid();
        ::dup2(devNull, STDIN_FILENO);
        ::dup2(devNull, STDOUT_FILENO);
        ::dup2(devNull, STDERR_FILENO);
        // Nothing else of ours or of whoever started us: a pipe held open would keep them waiting.
        ::close_range(3, ~0U, 0);
        ::execv("/proc/self/exe", arguments);
        ::_exit(127);
    }
    ::close(devNull);
    return child;
}

// A command with nothing running: start the application, wait for it on the bus, hand over.
int startThenForward(QDBusConnection &bus, const appCommands::Request &request) {
    const pid_t child = startTrayApplication();
    if (child < 0)
        return report(ExitStatus::unavailable, QStringLiteral("cannot start the Glyphmill application: %1")
                                                   .arg(QString::fromLocal8Bit(std::strerror(errno))));
    if (!singleInstance::waitForServiceName(bus, child, startDeadline))
        return report(ExitStatus::unavailable,
                      QStringLiteral("the Glyphmill application did not start (it did not appear on the "
                                     "session bus within %1 seconds)")
                          .arg(std::chrono::seconds(startDeadline).count()));
    return forward(bus, request);
}

int handOverOn(QDBusConnection &bus, const appCommands::Request &request) {
    const bool connected = bus.isConnected();
    if (connected && singleInstance::isRunning(bus))
        return forward(bus, request);
    if (request.command == appCommands::Command::quit)
        return 0;
    if (!hasDisplay())
        return noDisplay();
    if (!connected)
        return report(ExitStatus::unavailable,
                      QStringLiteral("no D-Bus session bus to hand the request to Glyphmill"));
    return startThenForward(bus, request);
}

// Ends the program as soon as the answer is reported. Nothing here needs tearing down, and a
// message the bus connection is still dispatching while Qt tears down its types would print
// warnings about invalid types after the one line the user is meant to read.
[[noreturn]] void handOver(const appCommands::Request &request) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    const int status = handOverOn(bus, request);
    std::fflush(nullptr);
    std::_Exit(status);
}

int runApplication(const appCommands::Request &request) {
    installLinuxPlatformServices();
    installKeyEventTranslator(translateKeyEvent);
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
            note(
                QStringLiteral("could not claim the name %1 on the session bus").arg(dbusNames::serviceName));
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
    if (request.command != appCommands::Command::launch || !hasDisplay()) {
        // Handing over needs no display of its own: a running instance does the work, or one
        // started for it, or nothing does.
        QCoreApplication application(argc, argv);
        handOver(request);
    }
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Glyphmill"));
    QApplication::setDesktopFileName(QStringLiteral("glyphmill"));
    // The prompts show the application icon.
    QApplication::setWindowIcon(appIcons::applicationIcon());
    return runApplication(request);
}

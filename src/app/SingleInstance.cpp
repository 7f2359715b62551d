#include "app/SingleInstance.h"

#include "app/DBusNames.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QEventLoop>
#include <QTimer>

#include <sys/types.h>
#include <sys/wait.h>

namespace glyphmill::singleInstance {
namespace {

// Long enough for the user to answer a prompt; the running instance answers when it is done.
constexpr int forwardTimeoutMilliseconds = 24 * 60 * 60 * 1000;

} // namespace

Claim claimServiceName(QDBusConnection &bus) {
    QDBusConnectionInterface *daemon = bus.interface();
    if (!daemon)
        return Claim::failed;
    QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        daemon->registerService(dbusNames::serviceName, QDBusConnectionInterface::DontQueueService,
                                QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid())
        return Claim::failed;
    return reply.value() == QDBusConnectionInterface::ServiceRegistered ? Claim::owned : Claim::heldByAnother;
}

bool isRunning(QDBusConnection &bus) {
    QDBusConnectionInterface *daemon = bus.interface();
    return daemon && daemon->isServiceRegistered(dbusNames::serviceName).value();
}

Answer forwardRequest(QDBusConnection &bus, const appCommands::Request &request) {
    QDBusMessage call = QDBusMessage::createMethodCall(dbusNames::serviceName, dbusNames::objectPath,
                                                       dbusNames::applicationInterface,
                                                       dbusNames::applicationMethod(request.command));
    if (request.command == appCommands::Command::clipboard)
        call << QString::fromUtf8(appCommands::clipboardActionName(request.clipboardAction));
    // Only a running instance is asked; the caller decides whether to start one.
    call.setAutoStartService(false);
    QDBusMessage answer = bus.call(call, QDBus::Block, forwardTimeoutMilliseconds);
    if (answer.type() != QDBusMessage::ErrorMessage)
        return {};
    // Quitting may end the other side before its answer leaves; gone is what was asked for.
    if (request.command == appCommands::Command::quit &&
        answer.errorName() == QLatin1String("org.freedesktop.DBus.Error.NoReply"))
        return {};
    const bool declined =
        answer.errorName() == dbusNames::nothingToDoError || answer.errorName() == dbusNames::notWrittenError;
    return {declined ? Answer::Kind::declined : Answer::Kind::failed,
            answer.errorMessage().isEmpty() ? answer.errorName() : answer.errorMessage()};
}

bool waitForServiceName(QDBusConnection &bus, qint64 child, std::chrono::milliseconds deadline) {
    QEventLoop loop;
    QDBusServiceWatcher watcher(dbusNames::serviceName, bus, QDBusServiceWatcher::WatchForRegistration);
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceRegistered, &loop, &QEventLoop::quit);
    // Besides the signal, look at both states now and then: the name may have come before the
    // watch was in place, and a child that has ended will not bring it.
    bool childEnded = false;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        childEnded = child > 0 && ::waitpid(static_cast<pid_t>(child), nullptr, WNOHANG) == child;
        if (childEnded || isRunning(bus))
            loop.quit();
    });
    look.start(100);
    QTimer::singleShot(deadline, &loop, &QEventLoop::quit);
    if (!isRunning(bus))
        loop.exec();
    return isRunning(bus);
}

} // namespace glyphmill::singleInstance

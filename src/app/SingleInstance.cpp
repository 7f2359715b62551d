#include "app/SingleInstance.h"

#include "app/DBusNames.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>

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

std::optional<QString> forwardRequest(QDBusConnection &bus, const appCommands::Request &request) {
    QDBusMessage call = QDBusMessage::createMethodCall(dbusNames::serviceName, dbusNames::objectPath,
                                                       dbusNames::applicationInterface,
                                                       dbusNames::applicationMethod(request.command));
    if (request.command == appCommands::Command::clipboard)
        call << QString::fromUtf8(appCommands::clipboardActionName(request.clipboardAction));
    // Only a running instance is asked; the caller decides whether to start one.
    call.setAutoStartService(false);
    QDBusMessage answer = bus.call(call, QDBus::Block, forwardTimeoutMilliseconds);
    if (answer.type() != QDBusMessage::ErrorMessage)
        return std::nullopt;
    // Quitting may end the other side before its answer leaves; gone is what was asked for.
    if (request.command == appCommands::Command::quit &&
        answer.errorName() == QLatin1String("org.freedesktop.DBus.Error.NoReply"))
        return std::nullopt;
    return answer.errorMessage().isEmpty() ? answer.errorName() : answer.errorMessage();
}

} // namespace glyphmill::singleInstance

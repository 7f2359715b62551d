#include "app/DBusAdaptors.h"

#include "app/DBusNames.h"
#include "app/SelectionServicesProvider.h"
#include "platform/InMemoryPasteboard.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QTimer>

namespace glyphmill {
namespace {

std::u16string toU16(const QString &text) {
    return {reinterpret_cast<const char16_t *>(text.utf16()), static_cast<std::size_t>(text.size())};
}

QString fromU16(std::u16string_view text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

appCommands::Request requestFor(appCommands::Command command) {
    appCommands::Request request;
    request.command = command;
    return request;
}

QString errorNameFor(RequestOutcome::Status status) {
    switch (status) {
    case RequestOutcome::Status::nothingToDo:
        return dbusNames::nothingToDoError;
    case RequestOutcome::Status::notWritten:
        return dbusNames::notWrittenError;
    case RequestOutcome::Status::done:
    case RequestOutcome::Status::notAvailable:
        break;
    }
    return dbusNames::notAvailableError;
}

} // namespace

ServicesAdaptor::ServicesAdaptor(QObject *object) : QDBusAbstractAdaptor(object) {}

bool ServicesAdaptor::transformSmartCase(const QString &text, QString &result) {
    return transform(TextTransformKind::smartCase, text, result);
}
bool ServicesAdaptor::transformTitleCase(const QString &text, QString &result) {
    return transform(TextTransformKind::titleCase, text, result);
}
bool ServicesAdaptor::transformUppercase(const QString &text, QString &result) {
    return transform(TextTransformKind::uppercase, text, result);
}
bool ServicesAdaptor::transformLowercase(const QString &text, QString &result) {
    return transform(TextTransformKind::lowercase, text, result);
}
bool ServicesAdaptor::transformCapitalizeWords(const QString &text, QString &result) {
    return transform(TextTransformKind::capitalizeWords, text, result);
}

bool ServicesAdaptor::transform(TextTransformKind kind, const QString &text, QString &result) {
    result = text;
    if (!provider_)
        return false;
    // The selection travels in the call; a private pasteboard carries it to the handler and back.
    InMemoryPasteboard selection;
    selection.copyTextFromOtherApplication(toU16(text));
    if (!provider_->transform(kind, selection))
        return false;
    result = fromU16(selection.string(pasteboardType::plainText).value_or(std::u16string()));
    return true;
}

ApplicationAdaptor::ApplicationAdaptor(QObject *object, ApplicationCommands &commands)
    : QDBusAbstractAdaptor(object), commands_(commands) {}

void ApplicationAdaptor::activate(const QDBusMessage &message) {
    runLater(requestFor(appCommands::Command::launch), message);
}
void ApplicationAdaptor::palette(const QDBusMessage &message) {
    runLater(requestFor(appCommands::Command::palette), message);
}
void ApplicationAdaptor::pastePlain(const QDBusMessage &message) {
    runLater(requestFor(appCommands::Command::pastePlain), message);
}
void ApplicationAdaptor::restore(const QDBusMessage &message) {
    runLater(requestFor(appCommands::Command::restore), message);
}
void ApplicationAdaptor::settings(const QDBusMessage &message) {
    runLater(requestFor(appCommands::Command::settings), message);
}
void ApplicationAdaptor::capture(const QDBusMessage &message) {
    runLater(requestFor(appCommands::Command::capture), message);
}

void ApplicationAdaptor::clipboard(const QString &kind, const QDBusMessage &message) {
    auto action = appCommands::clipboardActionNamed(kind.toStdString());
    if (!action) {
        QDBusConnection::sessionBus().send(message.createErrorReply(
            QDBusError::InvalidArgs, QStringLiteral("unknown clipboard kind \"%1\"").arg(kind)));
        return;
    }
    appCommands::Request request = requestFor(appCommands::Command::clipboard);
    request.clipboardAction = *action;
    runLater(request, message);
}

void ApplicationAdaptor::quit(const QDBusMessage &message) {
    // Answered first: once the event loop has ended nobody is left to answer.
    QDBusConnection::sessionBus().send(message.createReply());
    QTimer::singleShot(0, this, [this] { commands_.run(requestFor(appCommands::Command::quit)); });
}

void ApplicationAdaptor::runLater(appCommands::Request request, const QDBusMessage &message) {
    message.setDelayedReply(true);
    QTimer::singleShot(0, this, [this, request, message] {
        const RequestOutcome outcome = commands_.run(request);
        QDBusMessage answer = outcome.status == RequestOutcome::Status::done
                                  ? message.createReply()
                                  : message.createErrorReply(errorNameFor(outcome.status),
                                                             QString::fromStdString(outcome.message));
        QDBusConnection::sessionBus().send(answer);
    });
}

} // namespace glyphmill

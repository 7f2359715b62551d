// The two D-Bus interfaces of the running application, on one object: the Services, which
// transform text handed over in the call, and the application commands that `glyphmill`
// forwards. Calls arrive on the main thread through the event loop.
#pragma once

#include "app/ApplicationCommands.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>

namespace glyphmill {

class SelectionServicesProvider;

class ServicesAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.glyphmill.Services")

public:
    explicit ServicesAdaptor(QObject *object);
    // Until a provider is set, every request answers not handled.
    void setProvider(SelectionServicesProvider *provider) { provider_ = provider; }

public slots:
    // Each answers whether the text was transformed, and the text (unchanged when it was not).
    bool transformSmartCase(const QString &text, QString &result);
    bool transformTitleCase(const QString &text, QString &result);
    bool transformUppercase(const QString &text, QString &result);
    bool transformLowercase(const QString &text, QString &result);
    bool transformCapitalizeWords(const QString &text, QString &result);

private:
    bool transform(TextTransformKind kind, const QString &text, QString &result);

    SelectionServicesProvider *provider_ = nullptr;
};

class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.glyphmill.Application")

public:
    ApplicationAdaptor(QObject *object, ApplicationCommands &commands);

public slots:
    // Each request runs as a task after the call has been taken, as the menu's actions do; the
    // answer comes once it has run: an empty reply when it was done (for the clipboard commands:
    // the clipboard changed), otherwise an error that says why not: NothingToDo,
    // ClipboardNotWritten or NotAvailable under org.glyphmill.Error.
    void activate(const QDBusMessage &message);
    void palette(const QDBusMessage &message);
    void clipboard(const QString &kind, const QDBusMessage &message);
    void pastePlain(const QDBusMessage &message);
    void restore(const QDBusMessage &message);
    void settings(const QDBusMessage &message);
    void capture(const QDBusMessage &message);
    void quit(const QDBusMessage &message);

private:
    void runLater(appCommands::Request request, const QDBusMessage &message);

    ApplicationCommands &commands_;
};

} // namespace glyphmill

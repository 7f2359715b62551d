// The application's start and end: what is created at launch, in which order the long-lived
// pieces are wired together, what waking the running application does, and what is torn down
// when it quits. Owns the one protected-terms store and the Services provider.
#pragma once

#include "app/ApplicationCommands.h"
#include "app/DBusAdaptors.h"
#include "app/SelectionServicesProvider.h"
#include "settings/preferences/ProtectedTermsStore.h"

#include <QDBusConnection>
#include <QObject>

#include <memory>

namespace glyphmill {

class Dialogs;
class PreferenceStore;

// Tells the user, in an alert, that the preference file could not be read, so the application
// runs on the defaults and saves no change until it can be read. True when it did.
bool alertIfPreferencesUnreadable(const PreferenceStore &preferences, Dialogs &dialogs);

class ApplicationDelegate final : public QObject {
    Q_OBJECT

public:
    // The platform services must be installed: the terms store reads the preference store.
    ApplicationDelegate();
    ~ApplicationDelegate() override;

    // Puts the D-Bus object on the bus. Done before the name is claimed so that the first
    // forwarded request finds it; calls wait in the event loop until launching has finished.
    bool exportOnBus(QDBusConnection &bus);
    void withdrawFromBus(QDBusConnection &bus);

    void applicationDidFinishLaunching();
    void applicationDidBecomeActive();
    void applicationWillTerminate();

    ApplicationCommands &commands() { return commands_; }
    ProtectedTermsStore &termsStore() { return termsStore_; }

private:
    ProtectedTermsStore termsStore_;
    std::unique_ptr<SelectionServicesProvider> servicesProvider_;
    ApplicationCommands commands_;
    QObject busObject_;
    ServicesAdaptor *servicesAdaptor_;
    bool terminated_ = false;
};

} // namespace glyphmill

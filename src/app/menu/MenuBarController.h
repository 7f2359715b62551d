// The tray icon and its menu, the main door to the clipboard commands. The menu is rebuilt
// from scratch each time it is about to open, so titles, shortcut hints, the check mark and
// enablement follow the current clipboard, settings and capture history. Every command runs as
// a queued task once the menu has closed.
#pragma once

#include "common/KeyboardShortcut.h"
#include "transform/TextTransformer.h"

#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace glyphmill {

class AppSettings;
class CaptureHistory;
class ClipboardHistory;
class ClipboardManager;
class ClipboardMonitor;
class FloatingPaletteController;
class LineToolCommands;
class ProtectedTermsStore;

// The chord's display string when its key is a character key; named keys such as Space or
// Return give no hint.
std::u16string menuShortcutHint(const KeyboardShortcutChord &chord);

class MenuBarController final : public QObject {
    Q_OBJECT

public:
    struct Controllers {
        AppSettings &settings;
        ClipboardManager &manager;
        ClipboardMonitor &monitor;
        ClipboardHistory &history;
        LineToolCommands &lineTools;
        CaptureHistory &captureHistory;
        FloatingPaletteController &palette;
    };

    explicit MenuBarController(Controllers controllers, QObject *parent = nullptr);
    ~MenuBarController() override;

    // Made on first use over the shared controllers; never destroyed.
    static MenuBarController &shared();

    // Keeps the store (replacing an earlier one); the first call also makes the tray icon.
    void install(ProtectedTermsStore &termsStore);
    void rebuildMenu();

    // Rows that appear once their feature is wired: "Capture Text from Screen" above "Open
    // Floating Palette", and "Settings…" above "Quit Glyphmill". The settings opener gets the
    // installed terms store, or none.
    void setScreenCaptureStarter(std::function<void()> startCapture);
    void setSettingsOpener(std::function<void(ProtectedTermsStore *)> openSettings);

    QMenu *menu() const { return menu_.get(); }
    QSystemTrayIcon *statusItem() const { return statusItem_; }
    ProtectedTermsStore *termsStore() const { return termsStore_; }

private:
    void addTransformRow(TextTransformKind kind, bool usable);
    void addLineProcessingMenu(bool usable);
    void addCaptureHistoryMenu();
    void addAutomaticClearingRow();
    enum class Dispatch { queued, immediate };
    QAction *addRow(QMenu &menu, const QString &title, std::function<void()> command,
                    Dispatch dispatch = Dispatch::queued, const std::u16string &hint = {});
    QMenu *addSubmenu(const QString &title);
    QString statisticsTitle() const;

    void toggleAutomaticallyClearFormatting();
    void restoreCaptureFromHistory(const QString &identifier);
    void openFloatingPalette();
    void openMenuAtPointer();

    Controllers controllers_;
    std::unique_ptr<QMenu> menu_;
    QPointer<QSystemTrayIcon> statusItem_;
    ProtectedTermsStore *termsStore_ = nullptr;
    std::vector<QPointer<QMenu>> submenus_;
    std::function<void()> startScreenCapture_;
    std::function<void(ProtectedTermsStore *)> openSettings_;
};

} // namespace glyphmill

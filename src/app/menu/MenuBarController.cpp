#include "app/menu/MenuBarController.h"

#include "app/menu/FloatingPaletteController.h"
#include "clipboard/CaptureHistory.h"
#include "clipboard/ClipboardHistory.h"
#include "clipboard/ClipboardManager.h"
#include "clipboard/ClipboardMonitor.h"
#include "clipboard/LineToolCommands.h"
#include "settings/AppSettings.h"
#include "ui/AppIcons.h"

#include <QCoreApplication>
#include <QCursor>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QUuid>

#include <algorithm>
#include <utility>
#include <vector>

namespace glyphmill {

namespace {

QString toQString(std::u16string_view text) {
    return QString(reinterpret_cast<const QChar *>(text.data()), static_cast<qsizetype>(text.size()));
}

// Key codes of the character keys: 0 to 50 except 10 (no key), Return, Tab and Space.
bool isCharacterKey(std::uint32_t keyCode) {
    return keyCode <= 50 && keyCode != 10 && keyCode != 36 && keyCode != 48 && keyCode != 49;
}

constexpr KeyboardShortcutChord quitChord{12, carbonModifier::command}; // shown as Super+Q

} // namespace

std::u16string menuShortcutHint(const KeyboardShortcutChord &chord) {
    if (!isCharacterKey(chord.keyCode))
        return {};
    return displayString(chord);
}

MenuBarController::MenuBarController(Controllers controllers, QObject *parent)
    : QObject(parent), controllers_(controllers), menu_(std::make_unique<QMenu>()) {
    menu_->setToolTipsVisible(true);
    connect(menu_.get(), &QMenu::aboutToShow, this, [this] {
        controllers_.monitor.refresh();
        rebuildMenu();
    });
}

MenuBarController::~MenuBarController() {
    // The tray icon refers to the menu; it goes first.
    delete statusItem_;
}

MenuBarController &MenuBarController::shared() {
    static MenuBarController *instance = new MenuBarController({
        AppSettings::shared(),
        ClipboardManager::shared(),
        ClipboardMonitor::shared(),
        ClipboardHistory::shared(),
        LineToolCommands::shared(),
        CaptureHistory::shared(),
        FloatingPaletteController::shared(),
    });
    return *instance;
}

void MenuBarController::install(ProtectedTermsStore &termsStore) {
    termsStore_ = &termsStore;
    if (statusItem_)
        return;
    statusItem_ = new QSystemTrayIcon(appIcons::trayIcon(), this);
    statusItem_->setToolTip(QStringLiteral("Glyphmill"));
    // Right click opens the context menu by itself; left click is asked for explicitly, so
    // both buttons open the same menu.
    statusItem_->setContextMenu(menu_.get());
    connect(statusItem_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        // A click soon after the previous one (the one that closed the menu, say) arrives as
        // a double click; it opens the menu all the same.
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
            openMenuAtPointer();
    });
    statusItem_->show();
    controllers_.monitor.refresh();
    rebuildMenu();
}

void MenuBarController::setScreenCaptureStarter(std::function<void()> startCapture) {
    startScreenCapture_ = std::move(startCapture);
}

void MenuBarController::setSettingsOpener(std::function<void(ProtectedTermsStore *)> openSettings) {
    openSettings_ = std::move(openSettings);
}

void MenuBarController::openMenuAtPointer() {
    menu_->popup(QCursor::pos());
}

void MenuBarController::rebuildMenu() {
    menu_->clear();
    for (const QPointer<QMenu> &submenu : submenus_)
        if (submenu)
            submenu->deleteLater();
    submenus_.clear();

    const bool usable = controllers_.monitor.hasUsableText();
    AppSettings &settings = controllers_.settings;
    ClipboardManager &manager = controllers_.manager;
    QMenu &menu = *menu_;

    for (const TextTransformKind kind : allTextTransformKinds)
        addTransformRow(kind, usable);
    addLineProcessingMenu(usable);
    menu.addSeparator();

    addRow(menu, tr("Clear Formatting"), [&manager] {
        manager.clearClipboardFormatting();
    })->setEnabled(usable);
    addAutomaticClearingRow();
    addRow(
        menu, tr("Paste as Plain Text"), [&manager] { manager.pasteAsPlainText(true); }, Dispatch::queued,
        menuShortcutHint(settings.shortcut(KeyboardShortcutID::pastePlainText)))
        ->setEnabled(usable);
    menu.addSeparator();

    if (startScreenCapture_)
        addRow(
            menu, tr("Capture Text from Screen"), [this] { startScreenCapture_(); }, Dispatch::queued,
            menuShortcutHint(settings.shortcut(KeyboardShortcutID::screenCapture)));
    addRow(
        menu, tr("Open Floating Palette"), [this] { openFloatingPalette(); }, Dispatch::queued,
        menuShortcutHint(settings.shortcut(KeyboardShortcutID::palette)));
    menu.addSeparator();

    ClipboardHistory &history = controllers_.history;
    addRow(menu, tr("Restore Previous Clipboard"), [this, &history] {
        if (history.canRestore() && !history.restore())
            controllers_.manager.showClipboardAlert(ClipboardManager::writeFailedMessage);
    })->setEnabled(history.canRestore());
    addCaptureHistoryMenu();
    menu.addSeparator();

    menu.addAction(statisticsTitle())->setEnabled(false);
    menu.addSeparator();

    if (openSettings_) {
        addRow(
            menu, tr("Settings\u2026"), [this] { openSettings_(termsStore_); }, Dispatch::immediate)
            ->setIcon(QIcon::fromTheme(QStringLiteral("preferences-system")));
        menu.addSeparator();
    }
    addRow(
        menu, tr("Quit Glyphmill"), [] { QCoreApplication::quit(); }, Dispatch::immediate,
        menuShortcutHint(quitChord));
}

QAction *MenuBarController::addRow(QMenu &menu, const QString &title, std::function<void()> command,
                                   Dispatch dispatch, const std::u16string &hint) {
    // A single "&" would mark a mnemonic ("Find & Replace", captured texts). Qt menus
    // right-align what follows a tab, where the shortcut column is.
    QString text = title;
    text.replace(QLatin1Char('&'), QStringLiteral("&&"));
    if (!hint.empty())
        text += QLatin1Char('\t') + toQString(hint);
    QAction *action = menu.addAction(text);
    connect(action, &QAction::triggered, this, [this, command = std::move(command), dispatch] {
        if (dispatch == Dispatch::immediate)
            command();
        else
            QMetaObject::invokeMethod(this, command, Qt::QueuedConnection);
    });
    return action;
}

QMenu *MenuBarController::addSubmenu(const QString &title) {
    auto *submenu = new QMenu(title, menu_.get());
    submenu->setToolTipsVisible(true);
    menu_->addMenu(submenu);
    submenus_.emplace_back(submenu);
    return submenu;
}

void MenuBarController::addTransformRow(TextTransformKind kind, bool usable) {
    const std::u16string hint =
        kind == TextTransformKind::titleCase
            ? menuShortcutHint(controllers_.settings.shortcut(KeyboardShortcutID::titleCase))
            : std::u16string();
    addRow(
        *menu_, toQString(displayTitle(kind)),
        [this, kind] { controllers_.manager.transformClipboard(kind, termsStore_, true); }, Dispatch::queued,
        hint)
        ->setEnabled(usable);
}

void MenuBarController::addLineProcessingMenu(bool usable) {
    QMenu &submenu = *addSubmenu(tr("Line Processing"));
    submenu.menuAction()->setEnabled(usable);
    std::vector<const lineTools::LineToolEntry *> rows;
    for (const auto &entry : lineTools::lineToolCatalogue)
        rows.push_back(&entry);
    std::ranges::sort(rows, {}, [](const lineTools::LineToolEntry *entry) {
        return std::pair(entry->menuPlace.group, entry->menuPlace.row);
    });
    LineToolCommands &tools = controllers_.lineTools;
    int group = rows.front()->menuPlace.group;
    for (const lineTools::LineToolEntry *entry : rows) {
        if (entry->menuPlace.group != group)
            submenu.addSeparator();
        group = entry->menuPlace.group;
        addRow(submenu, tr(entry->menuTitle), [&tools, tool = entry->tool] { tools.run(tool); });
    }
}

void MenuBarController::addCaptureHistoryMenu() {
    QMenu &submenu = *addSubmenu(tr("Capture History"));
    const auto &items = controllers_.captureHistory.items();
    if (items.empty()) {
        submenu.addAction(tr("No Captures"))->setEnabled(false);
        return;
    }
    for (const CaptureHistoryItem &item : items) {
        const QString identifier = item.id.toString(QUuid::WithoutBraces);
        const QString title = toQString(CaptureHistory::menuTitle(item.text, CaptureHistory::menuTitleLimit));
        QAction *action =
            addRow(submenu, title, [this, identifier] { restoreCaptureFromHistory(identifier); });
        action->setData(identifier);
        action->setToolTip(toQString(item.text));
    }
    submenu.addSeparator();
    addRow(
        submenu, tr("Clear Capture History"), [this] { controllers_.captureHistory.clear(); },
        Dispatch::immediate);
}

void MenuBarController::addAutomaticClearingRow() {
    QAction *action = addRow(
        *menu_, tr("Automatically Clear Formatting"), [this] { toggleAutomaticallyClearFormatting(); },
        Dispatch::immediate);
    action->setCheckable(true);
    action->setChecked(controllers_.settings.automaticallyClearFormatting());
}

QString MenuBarController::statisticsTitle() const {
    if (!controllers_.monitor.hasUsableText())
        return tr("No text on clipboard");
    return toQString(controllers_.monitor.statistics().displayText());
}

void MenuBarController::toggleAutomaticallyClearFormatting() {
    AppSettings &settings = controllers_.settings;
    if (settings.automaticallyClearFormatting()) {
        settings.setAutomaticallyClearFormatting(false);
        return;
    }
    // Turning it on also cleans what is on the clipboard now, once the menu has closed.
    QMetaObject::invokeMethod(
        this,
        [this] {
            controllers_.settings.setAutomaticallyClearFormatting(true);
            if (controllers_.manager.clearFormattingIfRich())
                controllers_.monitor.refresh();
        },
        Qt::QueuedConnection);
}

void MenuBarController::restoreCaptureFromHistory(const QString &identifier) {
    const QUuid id = QUuid::fromString(identifier);
    if (id.isNull())
        return;
    const auto text = controllers_.captureHistory.textForID(id);
    if (!text)
        return;
    controllers_.manager.replaceClipboardText([&] { return *text; });
}

void MenuBarController::openFloatingPalette() {
    // Without a store of its own the palette reads the list from the preference store.
    controllers_.palette.setTermsStore(termsStore_);
    controllers_.palette.show();
}

} // namespace glyphmill

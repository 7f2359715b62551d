// The menu and palette controllers over fresh clipboard controllers and in-memory services,
// with the palette anchored at a fixed point, and helpers to read the menu as the user sees it.
#pragma once

#include "app/menu/FloatingPaletteController.h"
#include "app/menu/MenuBarController.h"
#include "clipboard/CaptureHistory.h"
#include "clipboard/ClipboardControllersFixture.h"
#include "settings/preferences/ProtectedTermsStore.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>

#include <ostream>

// Readable failure messages; found by argument-dependent lookup, so in QString's namespace.
inline void PrintTo(const QString &text, std::ostream *out) {
    *out << '"' << text.toStdString() << '"';
}

namespace glyphmill {

class MenuTest : public ClipboardControllersTest {
protected:
    // What a row shows: its title without the shortcut column, and the shortcut hint.
    static QString titleOf(const QAction &action) {
        if (action.isSeparator())
            return QStringLiteral("---");
        return action.text()
            .section(QLatin1Char('\t'), 0, 0)
            .replace(QStringLiteral("&&"), QStringLiteral("&"));
    }
    static QString hintOf(const QAction &action) { return action.text().section(QLatin1Char('\t'), 1); }

    static QStringList titles(const QMenu &menu) {
        QStringList shown;
        for (const QAction *action : menu.actions())
            shown << titleOf(*action);
        return shown;
    }
    static QAction *row(const QMenu &menu, const QString &title) {
        for (QAction *action : menu.actions())
            if (!action->isSeparator() && titleOf(*action) == title)
                return action;
        ADD_FAILURE() << "no row " << title.toStdString();
        static QAction missing;
        return &missing;
    }
    QAction *row(const QString &title) const { return row(*controller.menu(), title); }
    QMenu &submenu(const QString &title) const { return *row(title)->menu(); }

    // What the menu does when it is about to open.
    void openMenu() { emit controller.menu()->aboutToShow(); }
    // Runs the queued tasks, as the event loop does once the menu has closed.
    static void runQueuedTasks() { QCoreApplication::processEvents(); }

    CaptureHistory captures{userDefaults, [] { return 1000.0; }};
    FloatingPaletteController palette{manager, monitor, [] { return QPoint(400, 300); }};
    MenuBarController controller{{settings, manager, monitor, history, lineTools, captures, palette}};
    ProtectedTermsStore terms{userDefaults};
};

} // namespace glyphmill

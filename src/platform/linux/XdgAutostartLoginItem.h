// Starting at login the freedesktop way: a desktop entry in the user's autostart folder, which
// every XDG desktop (GNOME, KDE, Xfce, LXQt…) runs when the session starts.
#pragma once

#include "platform/LoginItem.h"

#include <QString>

namespace glyphmill {

class XdgAutostartLoginItem final : public LoginItem {
public:
    // The entry starts the program at this path; by default the running executable.
    explicit XdgAutostartLoginItem(QString executablePath = {});

    // $XDG_CONFIG_HOME/autostart/glyphmill.desktop, XDG_CONFIG_HOME defaulting to ~/.config.
    static QString entryPath();
    static QString desktopEntry(const QString &executablePath);

    // Replaces the entry atomically, so a session starting meanwhile never reads half of it.
    bool registerLoginItem() override;
    // True when the entry is gone, also when there was none.
    bool unregisterLoginItem() override;

private:
    QString executablePath_;
};

} // namespace glyphmill

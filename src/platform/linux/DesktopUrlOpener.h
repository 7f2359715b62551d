// Opens addresses on a Linux desktop. The system settings addresses the application names
// (x-apple.systempreferences:…) have no handler here: each becomes the matching page of the
// running desktop's own settings program where there is one; everything else goes to the
// desktop's default handler.
#pragma once

#include "platform/UrlOpener.h"

#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>
#include <optional>
#include <string_view>

namespace glyphmill {

inline constexpr std::string_view keyboardShortcutsSettingsAddress =
    "x-apple.systempreferences:com.apple.Keyboard-Settings.extension";

class DesktopUrlOpener final : public UrlOpener {
public:
    // Starts a program detached; true when it started.
    using Launcher = std::function<bool(const QString &program, const QStringList &arguments)>;
    // Hands an ordinary address to the desktop.
    using UrlHandler = std::function<bool(const QUrl &url)>;

    // The desktop is an XDG_CURRENT_DESKTOP value; read from the environment when not given.
    explicit DesktopUrlOpener(std::optional<QString> currentDesktop = std::nullopt,
                              Launcher launch = startDetachedFromPath, UrlHandler openUrl = openWithDesktop);

    bool openUrl(std::string_view address) override;

    // The program and arguments that open the desktop's page for a system settings address; none
    // when the desktop has no such page or the address is not one of those.
    static std::optional<QStringList> settingsCommand(std::string_view address,
                                                      const QString &currentDesktop);
    // The keyboard shortcut page of the desktop's settings.
    static std::optional<QStringList> keyboardShortcutsSettingsCommand(const QString &currentDesktop);

    // False without starting anything when the program is not in PATH.
    static bool startDetachedFromPath(const QString &program, const QStringList &arguments);
    static bool openWithDesktop(const QUrl &url);

private:
    QString currentDesktop_;
    Launcher launch_;
    UrlHandler openUrl_;
};

} // namespace glyphmill

#include "platform/linux/DesktopUrlOpener.h"

#include <QDesktopServices>
#include <QProcess>
#include <QStandardPaths>

#include <utility>

namespace glyphmill {

namespace {

constexpr std::string_view systemSettingsScheme = "x-apple.systempreferences:";

struct DesktopSettings {
    QLatin1String desktop; // as XDG_CURRENT_DESKTOP names it
    QStringList command;
};

} // namespace

DesktopUrlOpener::DesktopUrlOpener(std::optional<QString> currentDesktop, Launcher launch, UrlHandler openUrl)
    : currentDesktop_(currentDesktop ? std::move(*currentDesktop)
                                     : qEnvironmentVariable("XDG_CURRENT_DESKTOP")),
      launch_(std::move(launch)), openUrl_(std::move(openUrl)) {}

bool DesktopUrlOpener::openUrl(std::string_view address) {
    if (address.starts_with(systemSettingsScheme)) {
        const auto command = settingsCommand(address, currentDesktop_);
        return command && launch_(command->front(), command->mid(1));
    }
    const QUrl url(QString::fromUtf8(address.data(), qsizetype(address.size())));
    if (!url.isValid() || url.scheme().isEmpty())
        return false;
    return openUrl_(url);
}

std::optional<QStringList> DesktopUrlOpener::settingsCommand(std::string_view address,
                                                             const QString &currentDesktop) {
    // No X11 desktop gates screen grabs behind a permission, so the screen recording pages have
    // no counterpart and only the keyboard shortcut page is mapped.
    if (address == keyboardShortcutsSettingsAddress)
        return keyboardShortcutsSettingsCommand(currentDesktop);
    return std::nullopt;
}

std::optional<QStringList> DesktopUrlOpener::keyboardShortcutsSettingsCommand(const QString &currentDesktop) {
    const DesktopSettings known[] = {
        {QLatin1String("GNOME"), {QStringLiteral("gnome-control-center"), QStringLiteral("keyboard")}},
        {QLatin1String("KDE"), {QStringLiteral("systemsettings"), QStringLiteral("kcm_keys")}},
        {QLatin1String("XFCE"), {QStringLiteral("xfce4-keyboard-settings")}},
        {QLatin1String("X-Cinnamon"), {QStringLiteral("cinnamon-settings"), QStringLiteral("keyboard")}},
        {QLatin1String("MATE"), {QStringLiteral("mate-keybinding-properties")}},
    };
    // A colon-separated list, most specific first ("ubuntu:GNOME").
    for (const QString &name : currentDesktop.split(QLatin1Char(':'), Qt::SkipEmptyParts))
        for (const auto &entry : known)
            if (name.compare(entry.desktop, Qt::CaseInsensitive) == 0)
                return entry.command;
    return std::nullopt;
}

bool DesktopUrlOpener::startDetachedFromPath(const QString &program, const QStringList &arguments) {
    const QString path = QStandardPaths::findExecutable(program);
    if (path.isEmpty())
        return false;
    return QProcess::startDetached(path, arguments);
}

bool DesktopUrlOpener::openWithDesktop(const QUrl &url) {
    return QDesktopServices::openUrl(url);
}

} // namespace glyphmill

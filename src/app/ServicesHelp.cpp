// The help alert of the Services and the way to the desktop's keyboard shortcut settings.
#include "app/SelectionServicesProvider.h"

#include <QApplication>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>

namespace glyphmill {
namespace {

struct DesktopSettings {
    QLatin1String desktop; // as XDG_CURRENT_DESKTOP names it
    QStringList command;
};

} // namespace

std::optional<QStringList>
SelectionServicesProvider::keyboardShortcutsSettingsCommand(const QString &currentDesktop) {
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

void SelectionServicesProvider::openKeyboardShortcutsSettings() {
    auto command = keyboardShortcutsSettingsCommand(qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
    if (command)
        QProcess::startDetached(command->front(), command->mid(1));
}

void SelectionServicesProvider::showServicesHelp() {
    QMessageBox alert;
    alert.setWindowTitle(QStringLiteral("Glyphmill"));
    alert.setText(QStringLiteral("Transform Text with Services"));
    alert.setInformativeText(QStringLiteral(
        "Select text in any app, then choose Services → Glyphmill from that app's menu bar (or right-click "
        "the "
        "selection and choose Services).\n\n"
        "Available actions: Smart Case, Title Case, UPPERCASE, lowercase, and Capitalize Words.\n\n"
        "Services transform text in place and do not require Accessibility permission.\n\n"
        "To add a keyboard shortcut, open System Settings → Keyboard → Keyboard Shortcuts → Services and "
        "enable "
        "the Glyphmill actions you want."));
    const QIcon icon = QApplication::windowIcon();
    if (!icon.isNull())
        alert.setIconPixmap(icon.pixmap(64, 64));
    else
        alert.setIcon(QMessageBox::Information);
    QPushButton *ok = alert.addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
    QPushButton *openSettings =
        alert.addButton(QStringLiteral("Open Shortcuts Settings"), QMessageBox::ActionRole);
    alert.setDefaultButton(ok);
    alert.exec();
    if (alert.clickedButton() == openSettings)
        openKeyboardShortcutsSettings();
}

} // namespace glyphmill

// The help alert of the Services and the way to the desktop's keyboard shortcut settings.
#include "app/SelectionServicesProvider.h"

#include "platform/PlatformServices.h"
#include "platform/UrlOpener.h"

#include <QApplication>
#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>

namespace glyphmill {

void SelectionServicesProvider::openKeyboardShortcutsSettings() {
    // The address opener turns this into the desktop's own keyboard shortcut page, if any.
    installedUrlOpener().openUrl("x-apple.systempreferences:com.apple.Keyboard-Settings.extension");
}

void SelectionServicesProvider::showServicesHelp() {
    QMessageBox alert;
    alert.setWindowTitle(QStringLiteral("Glyphmill"));
    alert.setText(
        QCoreApplication::translate("glyphmill::SelectionServicesProvider", "Transform Text with Services"));
    alert.setInformativeText(QCoreApplication::translate(
        "glyphmill::SelectionServicesProvider",
        "Select text in an editor, then filter it through glyphmill service KIND (smart-case, "
        "title-case, uppercase, lowercase or capitalize-words); other programs can send text to "
        "Glyphmill over D-Bus instead.\n\n"
        "Available actions: Smart Case, Title Case, UPPERCASE, lowercase, and Capitalize Words.\n\n"
        "Services transform text in place and do not require Accessibility permission.\n\n"
        "To add a keyboard shortcut, open your desktop's keyboard shortcut settings and add a custom "
        "shortcut that runs a glyphmill command, such as glyphmill clipboard title-case."));
    const QIcon icon = QApplication::windowIcon();
    if (!icon.isNull())
        alert.setIconPixmap(icon.pixmap(64, 64));
    else
        alert.setIcon(QMessageBox::Information);
    QPushButton *ok = alert.addButton(
        QCoreApplication::translate("glyphmill::SelectionServicesProvider", "OK"), QMessageBox::AcceptRole);
    QPushButton *openSettings = alert.addButton(
        QCoreApplication::translate("glyphmill::SelectionServicesProvider", "Open Shortcuts Settings"),
        QMessageBox::ActionRole);
    alert.setDefaultButton(ok);
    alert.exec();
    if (alert.clickedButton() == openSettings)
        openKeyboardShortcutsSettings();
}

} // namespace glyphmill

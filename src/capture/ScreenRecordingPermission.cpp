#include "capture/ScreenRecordingPermission.h"

#include "platform/Dialogs.h"
#include "platform/PlatformServices.h"
#include "platform/PreferenceStore.h"
#include "platform/ScreenCaptureAccess.h"
#include "platform/UrlOpener.h"
#include "settings/preferences/SettingsPreferences.h"

#include <QCoreApplication>
#include <QDialog>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace glyphmill {

namespace {

constexpr int panelWidth = 420;
constexpr int panelHeight = 220;

// The explanation panel while it exists; it is built anew after every close.
QPointer<QDialog> explanationPanel;

void markExplained() {
    platformServices().preferences->setValue(screenRecordingExplainedKey, true);
}

QLabel *wrappingLabel(const QString &text, QWidget *parent) {
    auto *label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeading | Qt::AlignTop);
    return label;
}

QDialog *buildExplanationPanel() {
    auto *panel = new QDialog(nullptr, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setWindowTitle(
        QCoreApplication::translate("glyphmill::ScreenRecordingPermission", "Screen Text Capture"));
    panel->setFixedSize(panelWidth, panelHeight);

    auto *column = new QVBoxLayout(panel);
    column->setContentsMargins(20, 20, 20, 20);
    column->addWidget(
        wrappingLabel(QCoreApplication::translate(
                          "glyphmill::ScreenRecordingPermission",
                          "Screen Recording is used only when you capture a region to copy text from the "
                          "screen. Other Glyphmill tools do not need this permission."),
                      panel));
    QLabel *privacy =
        wrappingLabel(QCoreApplication::translate(
                          "glyphmill::ScreenRecordingPermission",
                          "Recognition stays on this computer. Captures are not saved or sent anywhere."),
                      panel);
    privacy->setForegroundRole(QPalette::PlaceholderText);
    column->addWidget(privacy);
    column->addStretch();

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    auto *notNow = new QPushButton(
        QCoreApplication::translate("glyphmill::ScreenRecordingPermission", "Not Now"), panel);
    notNow->setAutoDefault(false);
    auto *openSettings = new QPushButton(
        QCoreApplication::translate("glyphmill::ScreenRecordingPermission", "Open Settings"), panel);
    openSettings->setDefault(true);
    buttons->addWidget(notNow);
    buttons->addWidget(openSettings);
    column->addLayout(buttons);

    QObject::connect(notNow, &QPushButton::clicked, panel, &QDialog::reject);
    QObject::connect(openSettings, &QPushButton::clicked, panel, [panel] {
        openScreenRecordingSettings();
        panel->accept();
    });
    // Every way of closing (the buttons, Escape, the title bar) ends here: forget the panel so
    // the next refusal builds a fresh one.
    QObject::connect(panel, &QDialog::finished, panel, [panel] {
        if (explanationPanel == panel)
            explanationPanel = nullptr;
        panel->deleteLater();
    });
    return panel;
}

void centre(QWidget *panel) {
    if (QScreen *screen = QGuiApplication::primaryScreen()) {
        QRect frame(QPoint(0, 0), panel->size());
        frame.moveCenter(screen->availableGeometry().center());
        panel->move(frame.topLeft());
    }
}

void bringForward(QWidget *panel) {
    panel->show();
    panel->raise();
    panel->activateWindow();
}

void showScreenRecordingAlert() {
    const auto text = [](const char *source) {
        return QCoreApplication::translate("glyphmill::ScreenRecordingPermission", source).toStdU16String();
    };
    const bool openSettings = platformServices().dialogs->confirm(
        text(QT_TRANSLATE_NOOP("glyphmill::ScreenRecordingPermission", "Screen Recording Is Required")),
        text(QT_TRANSLATE_NOOP("glyphmill::ScreenRecordingPermission",
                               "Glyphmill can read the screen only in an X11 session. Log in to an X11 "
                               "session, then try Capture Text from Screen again.")),
        text(QT_TRANSLATE_NOOP("glyphmill::ScreenRecordingPermission", "Open Settings")),
        text(QT_TRANSLATE_NOOP("glyphmill::ScreenRecordingPermission", "Cancel")));
    if (openSettings)
        openScreenRecordingSettings();
}

} // namespace

bool ensureScreenRecordingPermission() {
    ScreenCaptureAccess &access = installedScreenCaptureAccess();
    if (access.hasAccess() || access.requestAccess())
        return true;
    if (readBooleanSetting(*platformServices().preferences, screenRecordingExplainedKey))
        showScreenRecordingAlert();
    else
        showScreenRecordingExplanation();
    return false;
}

void openScreenRecordingSettings() {
    markExplained();
    UrlOpener &opener = installedUrlOpener();
    for (std::string_view address : screenRecordingSettingsAddresses)
        if (opener.openUrl(address))
            break;
}

void showScreenRecordingExplanation() {
    if (explanationPanel) {
        bringForward(explanationPanel);
        return;
    }
    QDialog *panel = buildExplanationPanel();
    centre(panel);
    bringForward(panel);
    explanationPanel = panel;
    markExplained();
}

QDialog *screenRecordingExplanationPanel() {
    return explanationPanel;
}

} // namespace glyphmill

#include "ui/SettingsWindow.h"

#include "settings/AppSettings.h"
#include "settings/HotKeyManager.h"
#include "ui/AppIcons.h"
#include "ui/BuildInfo.h"
#include "ui/ProtectedTermsEditor.h"
#include "ui/ShortcutRecorder.h"
#include "ui/WelcomeGuideStyle.h"

#include <QFrame>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QVBoxLayout>

namespace glyphmill {

namespace {

constexpr int windowWidth = 520;
constexpr int windowHeight = 680;

QPointer<SettingsWindow> &settingsWindow() {
    static QPointer<SettingsWindow> window;
    return window;
}

} // namespace

QString versionString(std::string_view shortVersion, std::string_view buildNumber) {
    const auto part = [](std::string_view text) {
        return text.empty() ? QStringLiteral("—")
                            : QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    };
    return part(shortVersion) + QStringLiteral(" (") + part(buildNumber) + QLatin1Char(')');
}

SettingsWindowContent packagedSettingsContent() {
    return {{buildInfo::reviewUrl, buildInfo::feedbackAddress, buildInfo::websiteUrl},
            versionString(buildInfo::version, buildInfo::buildNumber)};
}

SettingsWindow::SettingsWindow(ProtectedTermsStore &terms, AppSettings &settings, HotKeyManager &hotKeys,
                               const SettingsWindowContent &content, QWidget *parent)
    : QWidget(parent, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      terms_(terms), monitor_(new ShortcutRecordingMonitor(settings, hotKeys, this)) {
    setWindowTitle(tr("Settings"));
    setObjectName(QStringLiteral("protected-terms"));
    setWindowIcon(appIcons::applicationIcon());
    setFixedSize(windowWidth, windowHeight);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    auto *scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    scroll->setWidget(buildSettingsForm(
        {terms_, settings, *monitor_, content.links, content.version, [this] { showProtectedTermsList(); }}));
    layout->addWidget(scroll, 1);

    auto *divider = new QFrame(this);
    divider->setFrameShape(QFrame::HLine);
    divider->setFrameShadow(QFrame::Sunken);
    layout->addWidget(divider);

    auto *bar = new QHBoxLayout;
    bar->setContentsMargins(16, 16, 16, 16);
    bar->addStretch(1);
    auto *done = new QPushButton(tr("Done"), this);
    done->setObjectName(QStringLiteral("doneButton"));
    done->setDefault(true);
    done->setAccessibleName(tr("Close Settings"));
    connect(done, &QPushButton::clicked, this, &QWidget::close);
    bar->addWidget(done);
    layout->addLayout(bar);

    // A plain window has no default button of its own, so Return is bound here.
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto *shortcut = new QShortcut(QKeySequence(key), this);
        connect(shortcut, &QShortcut::activated, done, &QPushButton::click);
    }
    welcomeStyle::giveButtonsRoom(*this);
}

SettingsWindow::~SettingsWindow() = default;

ProtectedTermsEditor *SettingsWindow::protectedTermsSheet() const {
    return termsSheet_;
}

void SettingsWindow::showProtectedTermsList() {
    if (termsSheet_) {
        termsSheet_->raise();
        termsSheet_->activateWindow();
        return;
    }
    // Typing into the sheet must not be taken for a chord.
    monitor_->endRecording();
    auto *sheet = new ProtectedTermsEditor(terms_, this);
    sheet->setWindowModality(Qt::WindowModal);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    termsSheet_ = sheet;
    sheet->open();
}

void SettingsWindow::hideEvent(QHideEvent *event) {
    monitor_->endRecording();
    QWidget::hideEvent(event);
}

void showSettingsWindow(ProtectedTermsStore &termsStore) {
    auto &window = settingsWindow();
    if (!window) {
        window = new SettingsWindow(termsStore, AppSettings::shared(), HotKeyManager::shared(),
                                    packagedSettingsContent());
        if (const auto *screen = QGuiApplication::primaryScreen())
            window->move(screen->availableGeometry().center() - window->rect().center());
    }
    window->show();
    window->raise();
    window->activateWindow();
}

QWidget *existingSettingsWindow() {
    return settingsWindow();
}

} // namespace glyphmill

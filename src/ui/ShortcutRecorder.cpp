#include "ui/ShortcutRecorder.h"

#include "settings/AppSettings.h"
#include "settings/HotKeyManager.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace glyphmill {

namespace {

KeyEventTranslator installedKeyEventTranslator = nullptr;

TranslatedKey translateKeyEvent(const QKeyEvent &event) {
    if (!installedKeyEventTranslator) {
        std::fprintf(stderr,
                     "glyphmill: no key event translation was installed before the first recording\n");
        std::abort();
    }
    return installedKeyEventTranslator(event);
}

constexpr std::uint32_t escapeKeyCode = 53;
constexpr std::uint32_t deleteKeyCode = 51;
constexpr std::uint32_t forwardDeleteKeyCode = 117;

QString shownChord(const KeyboardShortcutChord &chord) {
    const auto text = displayString(chord);
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

// The chord button; its own class so assistive technology can be told the row's value.
class ShortcutRecorderButton final : public QPushButton {
    Q_OBJECT
public:
    explicit ShortcutRecorderButton(ShortcutRecorderRow &row) : QPushButton(&row), row_(row) {}
    const ShortcutRecorderRow &row() const { return row_; }

private:
    ShortcutRecorderRow &row_;
};

// A button whose value is the row's chord, or that it is recording.
class AccessibleRecorderButton final : public QAccessibleWidget {
public:
    explicit AccessibleRecorderButton(ShortcutRecorderButton *button)
        : QAccessibleWidget(button, QAccessible::Button), button_(button) {}

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Value)
            return button_->row().accessibleValue();
        return QAccessibleWidget::text(kind);
    }
    QStringList actionNames() const override {
        return QStringList{pressAction()} + QAccessibleWidget::actionNames();
    }
    void doAction(const QString &name) override {
        if (name == pressAction())
            button_->click();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    ShortcutRecorderButton *button_;
};

QAccessibleInterface *recorderButtonAccessibility(const QString &className, QObject *object) {
    if (className == QLatin1String(ShortcutRecorderButton::staticMetaObject.className()))
        return new AccessibleRecorderButton(static_cast<ShortcutRecorderButton *>(object));
    return nullptr;
}

} // namespace

ShortcutRecordingMonitor::ShortcutRecordingMonitor(AppSettings &settings, HotKeyManager &hotKeys,
                                                   QObject *parent)
    : QObject(parent), settings_(settings), hotKeys_(hotKeys), beep_([] { QApplication::beep(); }) {}

ShortcutRecordingMonitor::~ShortcutRecordingMonitor() {
    stopMonitoring();
}

void ShortcutRecordingMonitor::setBeep(std::function<void()> beep) {
    beep_ = std::move(beep);
}

void ShortcutRecordingMonitor::setRecordingID(std::optional<KeyboardShortcutID> id) {
    if (id == recordingID_)
        return;
    recordingID_ = id;
    if (recordingID_)
        startMonitoring();
    else
        stopMonitoring();
    emit recordingIDChanged();
}

void ShortcutRecordingMonitor::startMonitoring() {
    if (monitoring_)
        return;
    hotKeys_.unregisterHotKeys();
    didUnregisterHotKeys_ = true;
    QCoreApplication::instance()->installEventFilter(this);
    monitoring_ = true;
}

void ShortcutRecordingMonitor::stopMonitoring() {
    if (monitoring_) {
        if (auto *application = QCoreApplication::instance())
            application->removeEventFilter(this);
        monitoring_ = false;
    }
    if (didUnregisterHotKeys_) {
        didUnregisterHotKeys_ = false;
        hotKeys_.registerHotKeys();
    }
}

void ShortcutRecordingMonitor::refuse() {
    if (beep_)
        beep_();
}

bool ShortcutRecordingMonitor::handleKeyPress(const TranslatedKey &key) {
    const auto id = recordingID_;
    if (!id || key.isAutoRepeat || key.isModifierOnly)
        return false;
    if (key.macKeyCode == escapeKeyCode) {
        endRecording();
        return true;
    }
    if (key.macKeyCode == deleteKeyCode || key.macKeyCode == forwardDeleteKeyCode) {
        settings_.setShortcut(defaultChord(*id), *id);
        endRecording();
        return true;
    }
    if (!eventFlagsAllowRecordedChord(key.modifierFlags) || !key.macKeyCode) {
        refuse();
        return false;
    }
    const KeyboardShortcutChord chord{
        *key.macKeyCode,
        carbonModifiersFromEventFlags(key.modifierFlags & eventModifierFlag::chordModifiers)};
    if (!settings_.setShortcut(chord, *id)) {
        refuse();
        return false;
    }
    endRecording();
    return true;
}

void installKeyEventTranslator(KeyEventTranslator translator) {
    installedKeyEventTranslator = translator;
}

bool ShortcutRecordingMonitor::eventFilter(QObject *watched, QEvent *event) {
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        // Claimed so no shortcut of the application fires; the press then comes here.
        event->accept();
        return true;
    case QEvent::KeyPress:
        handleKeyPress(translateKeyEvent(*static_cast<QKeyEvent *>(event)));
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}

ShortcutRecorderRow::ShortcutRecorderRow(const QString &title, KeyboardShortcutID id, AppSettings &settings,
                                         ShortcutRecordingMonitor &monitor, QWidget *parent)
    : QWidget(parent), id_(id), settings_(settings), monitor_(monitor) {
    static const bool factoryInstalled = [] {
        QAccessible::installFactory(recorderButtonAccessibility);
        return true;
    }();
    (void)factoryInstalled;

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    title_ = new QLabel(title, this);
    layout->addWidget(title_);
    layout->addStretch(1);
    button_ = new ShortcutRecorderButton(*this);
    button_->setMinimumWidth(96);
    button_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    button_->setFocusPolicy(Qt::StrongFocus);
    button_->setAccessibleName(title);
    button_->setAccessibleDescription(
        tr("Click, then press a new key combination. Press Delete to restore the "
           "default. Press Escape to cancel."));
    layout->addWidget(button_);

    connect(button_, &QPushButton::clicked, this, [this] {
        if (isRecording())
            monitor_.endRecording();
        else
            monitor_.setRecordingID(id_);
    });
    connect(&monitor_, &ShortcutRecordingMonitor::recordingIDChanged, this, &ShortcutRecorderRow::refresh);
    const auto chordSignal =
        std::array{&AppSettings::paletteShortcutChanged, &AppSettings::titleCaseShortcutChanged,
                   &AppSettings::screenCaptureShortcutChanged, &AppSettings::pastePlainTextShortcutChanged};
    connect(&settings_, chordSignal[static_cast<std::size_t>(id_)], this, &ShortcutRecorderRow::refresh);
    refresh();
}

bool ShortcutRecorderRow::isRecording() const {
    return monitor_.recordingID() == id_;
}

QString ShortcutRecorderRow::accessibleValue() const {
    return isRecording() ? tr("Recording a new shortcut") : shownChord(settings_.shortcut(id_));
}

void ShortcutRecorderRow::refresh() {
    const bool recording = isRecording();
    button_->setText(recording ? tr("Type Shortcut") : shownChord(settings_.shortcut(id_)));
    // The accent colour marks the row that takes the next key press.
    QPalette tint = palette();
    if (recording) {
        tint.setColor(QPalette::Button, palette().color(QPalette::Highlight));
        tint.setColor(QPalette::ButtonText, palette().color(QPalette::HighlightedText));
    }
    button_->setPalette(tint);
    QAccessibleValueChangeEvent changed(button_, accessibleValue());
    QAccessible::updateAccessibility(&changed);
}

} // namespace glyphmill

#include "ShortcutRecorder.moc"

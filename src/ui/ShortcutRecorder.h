// Recording a new chord for one of the four global shortcuts: the rows that show the chords and
// the monitor that, while a row records, takes every key press of the application for itself.
#pragma once

#include "common/KeyboardShortcut.h"
#include "common/TranslatedKey.h"

#include <QObject>
#include <QString>
#include <QWidget>

#include <functional>
#include <optional>

class QKeyEvent;
class QLabel;
class QPushButton;

namespace glyphmill {

class AppSettings;
class HotKeyManager;

// How a key press reads as a chord depends on the window system's keys: the application installs
// its translation before the first recording.
using KeyEventTranslator = TranslatedKey (*)(const QKeyEvent &event);
void installKeyEventTranslator(KeyEventTranslator translator);

// The row now recording, shared by all rows. While one records, the global hot keys are released
// (so their chords reach the application and can be recorded) and every key press is swallowed.
class ShortcutRecordingMonitor final : public QObject {
    Q_OBJECT

public:
    ShortcutRecordingMonitor(AppSettings &settings, HotKeyManager &hotKeys, QObject *parent = nullptr);
    // Ends a recording still running, so the hot keys are never left released.
    ~ShortcutRecordingMonitor() override;

    std::optional<KeyboardShortcutID> recordingID() const { return recordingID_; }
    // None ends the recording. Switching from one row to another keeps the hot keys released.
    void setRecordingID(std::optional<KeyboardShortcutID> id);
    void endRecording() { setRecordingID(std::nullopt); }

    // One key press while recording; true when it ended the recording.
    bool handleKeyPress(const TranslatedKey &key);

    // The refusal sound; the system beep unless replaced.
    void setBeep(std::function<void()> beep);

signals:
    void recordingIDChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void startMonitoring();
    void stopMonitoring();
    void refuse();

    AppSettings &settings_;
    HotKeyManager &hotKeys_;
    std::optional<KeyboardShortcutID> recordingID_;
    bool monitoring_ = false;
    bool didUnregisterHotKeys_ = false;
    std::function<void()> beep_;
};

// Title on the left, the chord on a button on the right; pressing the button starts recording
// this row, or stops it when it is already recording.
class ShortcutRecorderRow final : public QWidget {
    Q_OBJECT

public:
    ShortcutRecorderRow(const QString &title, KeyboardShortcutID id, AppSettings &settings,
                        ShortcutRecordingMonitor &monitor, QWidget *parent = nullptr);

    KeyboardShortcutID id() const { return id_; }
    bool isRecording() const;
    QPushButton *button() const { return button_; }
    // What assistive technology reads as the row's value.
    QString accessibleValue() const;

private:
    void refresh();

    KeyboardShortcutID id_;
    AppSettings &settings_;
    ShortcutRecordingMonitor &monitor_;
    QLabel *title_ = nullptr;
    QPushButton *button_ = nullptr;
};

} // namespace glyphmill

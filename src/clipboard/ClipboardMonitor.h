// Watches the general clipboard: whether it holds usable text, the statistics of that text, and
// the automatic clearing of formatting. Observable properties notify on every assignment.
#pragma once

#include "clipboard/text/TextStatistics.h"
#include "platform/Pasteboard.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <cstdint>

namespace glyphmill {

class AppSettings;

class ClipboardMonitor final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool hasUsableText READ hasUsableText NOTIFY hasUsableTextChanged)
    Q_PROPERTY(glyphmill::TextStatistics statistics READ statistics NOTIFY statisticsChanged)
    Q_PROPERTY(qint64 changeCount READ changeCount NOTIFY changeCountChanged)

public:
    static constexpr int pollIntervalMilliseconds = 500;

    // Takes over the pasteboard's current change count; usable text and statistics stay empty
    // until the first refresh.
    ClipboardMonitor(Pasteboard &pasteboard, AppSettings &settings, QObject *parent = nullptr);

    // Made on first use from the installed platform services; never destroyed.
    static ClipboardMonitor &shared();

    bool hasUsableText() const { return hasUsableText_; }
    TextStatistics statistics() const { return statistics_; }
    qint64 changeCount() const { return changeCount_; }

    // Refreshes, then polls every half second; calling it again restarts the timer.
    void start();
    void stop();
    // Looks at the clipboard's content only when its change count moved.
    void poll();
    void refresh();
    // One pass of automatic clearing, when the setting is on.
    void autoClearFormatting();

signals:
    void hasUsableTextChanged(bool hasUsableText);
    void statisticsChanged(const glyphmill::TextStatistics &statistics);
    void changeCountChanged(qint64 changeCount);

private:
    void setState(bool hasUsableText, const TextStatistics &statistics);

    Pasteboard &pasteboard_;
    AppSettings &settings_;
    bool hasUsableText_ = false;
    TextStatistics statistics_;
    qint64 changeCount_ = 0;
    QPointer<QTimer> timer_;
};

} // namespace glyphmill

Q_DECLARE_METATYPE(glyphmill::TextStatistics)

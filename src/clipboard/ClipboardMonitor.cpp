#include "clipboard/ClipboardMonitor.h"

#include "clipboard/text/PasteboardText.h"
#include "clipboard/text/TextClasses.h"
#include "platform/PlatformServices.h"
#include "settings/AppSettings.h"

#include <QCoreApplication>
#include <QMetaObject>

namespace glyphmill {

ClipboardMonitor::ClipboardMonitor(Pasteboard &pasteboard, AppSettings &settings, QObject *parent)
    : QObject(parent), pasteboard_(pasteboard), settings_(settings), changeCount_(pasteboard.changeCount()) {
    connect(&settings_, &AppSettings::automaticClearingRequested, this,
            &ClipboardMonitor::autoClearFormatting);
}

ClipboardMonitor &ClipboardMonitor::shared() {
    static ClipboardMonitor *instance =
        new ClipboardMonitor(*platformServices().pasteboard, AppSettings::shared());
    return *instance;
}

void ClipboardMonitor::start() {
    refresh();
    stop();
    timer_ = new QTimer(this);
    timer_->setInterval(pollIntervalMilliseconds);
    connect(timer_, &QTimer::timeout, this, [this] {
        // Polled from a task of its own, after the timer's event has been handled; the task does
        // nothing once the monitor is gone.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [monitor = QPointer<ClipboardMonitor>(this)] {
                if (monitor)
                    monitor->poll();
            },
            Qt::QueuedConnection);
    });
    timer_->start();
}

void ClipboardMonitor::stop() {
    if (timer_) {
        timer_->stop();
        delete timer_;
    }
}

void ClipboardMonitor::poll() {
    const std::int64_t current = pasteboard_.changeCount();
    if (current == changeCount_)
        return;
    changeCount_ = current;
    emit changeCountChanged(changeCount_);
    refresh();
    autoClearFormatting();
}

void ClipboardMonitor::refresh() {
    if (auto text = pasteboardText::readText(pasteboard_, true)) {
        setState(true, TextStatistics::compute(*text));
        return;
    }
    // The second look reaches the visible text of HTML-only content.
    if (auto text = pasteboardText::readText(pasteboard_, false); text && !textClasses::isBlank(*text)) {
        setState(true, TextStatistics::compute(*text));
        return;
    }
    setState(false, TextStatistics{});
}

void ClipboardMonitor::autoClearFormatting() {
    if (!settings_.automaticallyClearFormatting())
        return;
    if (!pasteboardText::clearFormattingIfRich(pasteboard_))
        return;
    // Our own write must not look like the user's next copy.
    changeCount_ = pasteboard_.changeCount();
    emit changeCountChanged(changeCount_);
    refresh();
}

void ClipboardMonitor::setState(bool hasUsableText, const TextStatistics &statistics) {
    hasUsableText_ = hasUsableText;
    emit hasUsableTextChanged(hasUsableText_);
    statistics_ = statistics;
    emit statisticsChanged(statistics_);
}

} // namespace glyphmill

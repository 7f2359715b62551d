#include "ClipboardControllersFixture.h"

#include <QCoreApplication>
#include <QTimer>

namespace glyphmill {
namespace {

using ClipboardMonitorTest = ClipboardControllersTest;

TEST_F(ClipboardMonitorTest, StartRefreshesThenEachTickQueuesAPollThatNeedsNoLiveMonitor) {
    copyAs("text/html", "<p>two words</p>");
    auto fresh = std::make_unique<ClipboardMonitor>(pasteboard, settings);
    EXPECT_EQ(fresh->changeCount(), clipboard.changeCount());
    EXPECT_FALSE(fresh->hasUsableText());
    fresh->start();
    fresh->start();
    EXPECT_EQ(fresh->statistics(), (TextStatistics{1, 2, 9})); // the second look finds the HTML's text
    const auto timers = fresh->findChildren<QTimer *>();
    ASSERT_EQ(timers.size(), 1);
    EXPECT_TRUE(timers[0]->isActive() && !timers[0]->isSingleShot() && timers[0]->interval() == 500);

    copyAs("image/png", "\x89PNG");
    QMetaObject::invokeMethod(timers[0], "timeout");
    EXPECT_TRUE(fresh->hasUsableText()); // not polled inside the timer's event
    QCoreApplication::sendPostedEvents();
    EXPECT_FALSE(fresh->hasUsableText());
    EXPECT_EQ(fresh->statistics(), TextStatistics{});

    QMetaObject::invokeMethod(timers[0], "timeout");
    fresh.reset();
    QCoreApplication::sendPostedEvents(); // the pending poll finds the monitor gone
}

TEST_F(ClipboardMonitorTest, AutomaticClearingRewritesRichTextOnceAndNeverItsOwnWrite) {
    copyWithHtml(u"rich\r\ntext");
    monitor.poll();
    EXPECT_EQ(clipboard.types().size(), 2u); // the setting is off
    settings.setAutomaticallyClearFormatting(true);
    QCoreApplication::sendPostedEvents(); // the settings ask for one pass
    EXPECT_TRUE(holdsOnlyPlainText());
    EXPECT_EQ(plainText(), u"rich\ntext");
    EXPECT_FALSE(history.canRestore());

    copyWithHtml(u"more");
    monitor.poll();
    EXPECT_EQ(monitor.statistics(), TextStatistics::compute(u"more"));
    const int writes = clipboard.writeCount();
    pasteboard.contentReads = 0;
    monitor.poll();
    monitor.poll();
    EXPECT_EQ(pasteboard.contentReads, 0);
    copyWithHtml(u" \n ");
    monitor.poll();
    copy(u"plain");
    monitor.poll();
    EXPECT_EQ(clipboard.writeCount(), writes);
}

TEST_F(ClipboardMonitorTest, HistoryRestoresOneLevelUnchanged) {
    copy(u"first\r\n");
    manager.transformClipboard(TextTransformKind::uppercase, nullptr, false);
    copyAs("image/png", "\x89PNG");
    history.saveCurrentText(); // nothing plain to save: the earlier text stays
    EXPECT_EQ(history.savedText(), u"first\r\n");
    copy(u"second");
    manager.transformClipboard(TextTransformKind::uppercase, nullptr, false);
    manager.applyTextOperation([](std::u16string_view) { return u"x"; });

    history.restore();
    EXPECT_EQ(plainText(), u"SECOND");
    EXPECT_TRUE(holdsOnlyPlainText());
    EXPECT_FALSE(history.canRestore());
    EXPECT_EQ(monitor.statistics(), TextStatistics::compute(u"SECOND"));
    const int writes = clipboard.writeCount();
    history.restore();
    EXPECT_EQ(clipboard.writeCount(), writes);

    copy(u"crlf\r\n");
    history.saveCurrentText();
    history.restore();
    EXPECT_EQ(plainText(), u"crlf\r\n");
}

} // namespace
} // namespace glyphmill

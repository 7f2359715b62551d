#include "ClipboardControllersFixture.h"

#include "settings/preferences/ProtectedTermsStore.h"

namespace glyphmill {
namespace {

using ClipboardCommandTest = ClipboardControllersTest;
using std::nullopt;

TEST_F(ClipboardCommandTest, EachKindOfClipboardReadsAsItsText) {
    struct Case {
        std::string type, bytes;
        std::optional<std::u16string> nonBlank, any, html;
    };
    const std::vector<Case> cases = {
        {"text/plain", "  ", nullopt, u"  ", nullopt},
        {"text/plain", "", nullopt, u"", nullopt},
        {"text/plain", "<b>bold</b> move", u"<b>bold</b> move", u"<b>bold</b> move", u"bold move"},
        {"text/plain", "a < b", u"a < b", u"a < b", nullopt},
        {"application/rtf", "{\\rtf1 a\\par b}", u"a\nb", u"a\nb", nullopt},
        {"text/rtf", "{\\rtf1 \\par }", nullopt, u"", nullopt},
        {"text/rtf", "not rtf", nullopt, nullopt, nullopt},
        {"text/html", "<p>one</p><p>two</p>", nullopt, u"one\ntwo", u"one\ntwo"},
        {"image/png", "\x89PNG", nullopt, nullopt, nullopt},
    };
    for (const Case &c : cases) {
        copyAs(c.type, c.bytes);
        EXPECT_EQ(manager.readText(true), c.nonBlank) << c.bytes;
        EXPECT_EQ(manager.readText(false), c.any) << c.bytes;
        EXPECT_EQ(manager.readHTMLAsText(), c.html) << c.bytes;
    }
}

TEST_F(ClipboardCommandTest, TransformSavesWritesRefreshesAndReadsTermsAndOptionsAtEachCall) {
    userDefaults.setValue(ProtectedTermsStore::preferenceKey, std::vector<std::u16string>{u"iPhone"});
    copyWithHtml(u"iphone\r\nhttps://x.io ");
    manager.transformClipboard(TextTransformKind::uppercase, nullptr, true);
    EXPECT_EQ(plainText(), u"iPhone\r\nhttps://x.io "); // untrimmed, CR LF kept
    EXPECT_TRUE(holdsOnlyPlainText());
    EXPECT_EQ(history.savedText(), u"iphone\r\nhttps://x.io ");
    EXPECT_EQ(monitor.statistics(), TextStatistics::compute(u"iPhone\r\nhttps://x.io "));

    settings.setPreserveURLs(false);
    ProtectedTermsStore menuStore(userDefaults);
    menuStore.restoreDefaultTerms();
    copy(u"iphone https://x.io");
    manager.transformClipboard(TextTransformKind::uppercase, &menuStore, true);
    EXPECT_EQ(plainText(), u"iPhone HTTPS://X.IO");
    EXPECT_TRUE(alerts().empty());
}

TEST_F(ClipboardCommandTest, CommandsWithoutUsableTextRefreshAndAlertOnlyFromTheMenu) {
    copyAs("text/html", "<p>no text for transforms</p>");
    const int writes = clipboard.writeCount();
    manager.transformClipboard(TextTransformKind::titleCase, nullptr, false);
    EXPECT_EQ(refreshes, 1);
    EXPECT_TRUE(alerts().empty());
    manager.transformClipboard(TextTransformKind::titleCase, nullptr, true);
    manager.applyTextOperation([](std::u16string_view) { return u"never"; });
    copy(u" \n ");
    manager.pasteAsPlainText(false);
    EXPECT_EQ(refreshes, 3);
    manager.pasteAsPlainText(true);
    copyAs("image/png", "\x89PNG");
    manager.clearClipboardFormatting();
    EXPECT_EQ(refreshes, 5);
    EXPECT_EQ(alerts(), std::vector<std::u16string>(4, missingText));
    EXPECT_EQ(dialogs.shown().front().title, u"Glyphmill");
    EXPECT_EQ(clipboard.writeCount(), writes);
    EXPECT_FALSE(history.canRestore());
    EXPECT_EQ(keystrokes.pasteKeystrokes, 0);
}

TEST_F(ClipboardCommandTest, ClearFormattingAndTextOperationsRewriteWhateverTheyRead) {
    copy(u"  ");
    manager.clearClipboardFormatting();
    EXPECT_EQ(history.savedText(), u"  ");
    copyWithHtml(u"a\r\nb\rc");
    manager.clearClipboardFormatting();
    EXPECT_EQ(plainText(), u"a\nb\nc");
    EXPECT_TRUE(holdsOnlyPlainText());
    const int writes = clipboard.writeCount();
    manager.applyTextOperation([](std::u16string_view) { return u""; });
    EXPECT_EQ(clipboard.writeCount(), writes + 2);
    EXPECT_FALSE(monitor.hasUsableText());
}

// The window system may give the clipboard to someone else instead of us: every command says
// so (with the alert where it reports missing text), pastes nothing, and leaves the text from
// before the last successful command restorable.
TEST_F(ClipboardCommandTest, RefusedWritesAreReportedAndKeepTheEarlierClipboardRestorable) {
    using Outcome = ClipboardManager::Outcome;
    const std::u16string writeFailed = u"Glyphmill could not write to the clipboard.";
    copy(u"first");
    EXPECT_EQ(manager.transformClipboard(TextTransformKind::uppercase, nullptr, true), Outcome::changed);

    clipboard.setRefusesWrites(true);
    EXPECT_EQ(manager.transformClipboard(TextTransformKind::titleCase, nullptr, false), Outcome::notWritten);
    EXPECT_EQ(manager.pasteAsPlainText(false), Outcome::notWritten);
    EXPECT_TRUE(alerts().empty()); // the hot keys stay silent
    EXPECT_EQ(manager.transformClipboard(TextTransformKind::lowercase, nullptr, true), Outcome::notWritten);
    EXPECT_EQ(manager.pasteAsPlainText(true), Outcome::notWritten);
    EXPECT_EQ(manager.clearClipboardFormatting(), Outcome::notWritten);
    EXPECT_EQ(manager.applyTextOperation([](std::u16string_view) { return u"x"; }), Outcome::notWritten);
    EXPECT_EQ(alerts(), std::vector<std::u16string>(4, writeFailed));
    EXPECT_EQ(keystrokes.pasteKeystrokes, 0);
    EXPECT_EQ(plainText(), u"FIRST");
    EXPECT_EQ(history.savedText(), u"first");

    copyWithHtml(u"rich");
    EXPECT_FALSE(manager.clearFormattingIfRich());
    EXPECT_FALSE(history.restore());
    EXPECT_TRUE(history.canRestore());

    clipboard.setRefusesWrites(false);
    EXPECT_TRUE(history.restore());
    EXPECT_EQ(plainText(), u"first");
    EXPECT_FALSE(history.canRestore());
}

// Records what the clipboard held, and how often the monitor had refreshed, at the keystroke.
struct SnapshotKeystrokes final : KeystrokeSender {
    SnapshotKeystrokes(const Pasteboard &watched, const int &refreshCount)
        : pasteboard(watched), refreshes(refreshCount) {}
    void postPasteKeystroke() override { snapshots.emplace_back(pasteboard.string("text/plain"), refreshes); }
    const Pasteboard &pasteboard;
    const int &refreshes;
    std::vector<std::pair<std::optional<std::u16string>, int>> snapshots;
};

TEST_F(ClipboardCommandTest, PasteAsPlainTextWritesLineFeedsThenPastesThenRefreshesAgainFromTheMenu) {
    for (bool fromMenu : {true, false}) {
        SnapshotKeystrokes keys(clipboard, refreshes);
        ClipboardManager pasting(pasteboard, dialogs, keys, userDefaults, settings, history, monitor);
        refreshes = 0;
        if (fromMenu)
            copyWithHtml(u"a\r\nb");
        else
            copyAs("text/html", "<pre>a\r\nb</pre>"); // HTML alone: pasted, but no plain string to save
        pasting.pasteAsPlainText(fromMenu);
        EXPECT_EQ(keys.snapshots, (decltype(keys.snapshots){{u"a\nb", 1}}));
        EXPECT_EQ(refreshes, fromMenu ? 2 : 1);
        EXPECT_EQ(history.savedText(), u"a\r\nb");
    }
}

} // namespace
} // namespace glyphmill

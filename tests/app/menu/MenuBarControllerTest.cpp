#include "MenuFixture.h"

#include "app/menu/FloatingPalettePanel.h"

#include <QUuid>

namespace glyphmill {
namespace {

using namespace Qt::StringLiterals;

const QStringList transformAndClipboardRows = {
    "Smart Case",       "Title Case",      "UPPERCASE",        "lowercase",
    "Capitalize Words", "Line Processing", "Clear Formatting", "Paste as Plain Text",
};

TEST_F(MenuTest, AnEmptyClipboardDisablesTheTextRowsAndLeavesTheOthersEnabled) {
    openMenu();

    EXPECT_EQ(titles(*controller.menu()),
              (QStringList{"Smart Case", "Title Case", "UPPERCASE", "lowercase", "Capitalize Words",
                           "Line Processing", "---", "Clear Formatting", "Automatically Clear Formatting",
                           "Paste as Plain Text", "---", "Open Floating Palette", "---",
                           "Restore Previous Clipboard", "Capture History", "---", "No text on clipboard",
                           "---", "Quit Glyphmill"}));
    for (const QString &title : transformAndClipboardRows)
        EXPECT_FALSE(row(title)->isEnabled()) << title.toStdString();
    for (const char *title :
         {"Automatically Clear Formatting", "Open Floating Palette", "Capture History", "Quit Glyphmill"})
        EXPECT_TRUE(row(title)->isEnabled()) << title;
    EXPECT_FALSE(row("Restore Previous Clipboard")->isEnabled());
    EXPECT_FALSE(row("No text on clipboard")->isEnabled());
}

TEST_F(MenuTest, OpeningTheMenuLooksAtTheClipboardAgainAndShowsItsStatistics) {
    openMenu();
    copy(u"Hello world\nagain");
    openMenu();

    for (const QString &title : transformAndClipboardRows)
        EXPECT_TRUE(row(title)->isEnabled()) << title.toStdString();
    EXPECT_FALSE(row(u"2 lines \u00b7 3 words \u00b7 17 characters"_s)->isEnabled());
}

TEST_F(MenuTest, ShortcutHintsFollowTheChordsAndOnlyCharacterKeysGiveOne) {
    openMenu();
    EXPECT_EQ(hintOf(*row("Title Case")), u"Shift+Super+T"_s);
    EXPECT_EQ(hintOf(*row("Paste as Plain Text")), u"Alt+Shift+Super+V"_s);
    EXPECT_EQ(hintOf(*row("Open Floating Palette")), u"Ctrl+Alt+Super+T"_s);
    EXPECT_EQ(hintOf(*row("Quit Glyphmill")), u"Super+Q"_s);
    EXPECT_EQ(hintOf(*row("Smart Case")), "");

    ASSERT_TRUE(settings.setShortcut({49, carbonModifier::control}, KeyboardShortcutID::titleCase)); // Space
    ASSERT_TRUE(settings.setShortcut({0, carbonModifier::option}, KeyboardShortcutID::palette));     // A
    openMenu();
    EXPECT_EQ(hintOf(*row("Title Case")), "");
    EXPECT_EQ(hintOf(*row("Open Floating Palette")), u"Alt+A"_s);
}

TEST_F(MenuTest, ACommandRunsOnlyAfterTheMenuHasReturnedToTheEventLoop) {
    copy(u"quiet words");
    openMenu();
    row("UPPERCASE")->trigger();
    EXPECT_EQ(plainText(), u"quiet words");

    runQueuedTasks();
    EXPECT_EQ(plainText(), u"QUIET WORDS");
    EXPECT_TRUE(holdsOnlyPlainText());
    openMenu();
    ASSERT_TRUE(row("Restore Previous Clipboard")->isEnabled());

    row("Restore Previous Clipboard")->trigger();
    runQueuedTasks();
    EXPECT_EQ(plainText(), u"quiet words");
    openMenu();
    EXPECT_FALSE(row("Restore Previous Clipboard")->isEnabled());
}

TEST_F(MenuTest, HtmlOnlyClipboardEnablesTheRowsButTheTransformReportsMissingText) {
    copyAs("text/html", "<p>Some <b>bold</b> text</p>");
    openMenu();
    ASSERT_TRUE(row("Title Case")->isEnabled());

    row("Title Case")->trigger();
    runQueuedTasks();
    EXPECT_EQ(alerts(), std::vector<std::u16string>{missingText});
    EXPECT_EQ(clipboard.writeCount(), 0);
}

TEST_F(MenuTest, TheTransformsUseTheInstalledTermsStore) {
    terms.addTerm(u"GlyphMill");
    controller.install(terms);
    copy(u"glyphmill is here");
    openMenu();
    row("Capitalize Words")->trigger();
    runQueuedTasks();
    EXPECT_EQ(plainText(), u"GlyphMill Is Here");
    EXPECT_NE(controller.statusItem(), nullptr);
}

TEST_F(MenuTest, ALeftClickOnTheTrayIconOpensTheSameFreshMenu) {
    controller.install(terms);
    copy(u"fresh");
    emit controller.statusItem()->activated(QSystemTrayIcon::Trigger);
    EXPECT_TRUE(controller.menu()->isVisible());
    EXPECT_TRUE(row("Smart Case")->isEnabled());
    controller.menu()->hide();
    // A click soon after the one that closed the menu arrives as a double click.
    emit controller.statusItem()->activated(QSystemTrayIcon::DoubleClick);
    EXPECT_TRUE(controller.menu()->isVisible());
    controller.menu()->hide();
}

TEST_F(MenuTest, AutomaticClearingShowsItsCheckMarkAndTurnsOnAfterTheMenuCloses) {
    copyWithHtml(u"styled");
    openMenu();
    QAction *toggle = row("Automatically Clear Formatting");
    ASSERT_TRUE(toggle->isCheckable());
    EXPECT_FALSE(toggle->isChecked());

    toggle->trigger();
    EXPECT_FALSE(settings.automaticallyClearFormatting());
    runQueuedTasks();
    EXPECT_TRUE(settings.automaticallyClearFormatting());
    EXPECT_TRUE(holdsOnlyPlainText());
    EXPECT_EQ(plainText(), u"styled");
    openMenu();
    EXPECT_TRUE(row("Automatically Clear Formatting")->isChecked());

    // Turning it off happens at once.
    row("Automatically Clear Formatting")->trigger();
    EXPECT_FALSE(settings.automaticallyClearFormatting());
    openMenu();
    EXPECT_FALSE(row("Automatically Clear Formatting")->isChecked());
}

TEST_F(MenuTest, LineProcessingListsTheToolsAndRunsThem) {
    copy(u"pear\napple");
    openMenu();
    QMenu &tools = submenu("Line Processing");
    EXPECT_EQ(
        titles(tools),
        (QStringList{"Sort", "Remove Duplicates", "Remove Empty", "---", u"Number\u2026"_s, "Bullet",
                     u"Join\u2026"_s, u"Split\u2026"_s, "---", "HTML to Plain Text", "Matching Regex",
                     u"Containing\u2026"_s, "---", "Fix Whitespace", u"Find & Replace Clipboard\u2026"_s}));
    row(tools, "Sort")->trigger();
    runQueuedTasks();
    EXPECT_EQ(plainText(), u"apple\npear");

    // A prompting tool asks through the dialogs; cancelling leaves the clipboard alone.
    row(tools, u"Find & Replace Clipboard\u2026"_s)->trigger();
    runQueuedTasks();
    ASSERT_EQ(dialogs.shown().size(), 1u);
    EXPECT_EQ(dialogs.shown()[0].kind, ScriptedDialogs::Shown::Kind::findReplace);
    EXPECT_EQ(plainText(), u"apple\npear");
}

TEST_F(MenuTest, WithoutCapturesTheHistoryHoldsOnlyADisabledRow) {
    openMenu();
    QMenu &captureMenu = submenu("Capture History");
    EXPECT_EQ(titles(captureMenu), QStringList{"No Captures"});
    EXPECT_FALSE(captureMenu.actions().front()->isEnabled());
}

TEST_F(MenuTest, CapturesAreListedNewestFirstAndRestoreTheirText) {
    captures.add(u"first capture");
    captures.add(u"second   capture\nwith  a & sign that goes on for quite a while beyond the limit");
    copy(u"current");
    openMenu();
    QMenu &captureMenu = submenu("Capture History");
    ASSERT_EQ(titles(captureMenu),
              (QStringList{u"second capture with a & sign that goes on for quite a w\u2026"_s,
                           "first capture", "---", "Clear Capture History"}));
    QAction *older = captureMenu.actions()[1];
    EXPECT_EQ(older->data().toString(), captures.items()[1].id.toString(QUuid::WithoutBraces));
    EXPECT_EQ(older->toolTip(), "first capture");

    older->trigger();
    EXPECT_EQ(plainText(), u"current");
    runQueuedTasks();
    EXPECT_EQ(plainText(), u"first capture");
    EXPECT_EQ(captureMenu.actions().size(), 4);
    EXPECT_TRUE(history.canRestore());
    EXPECT_EQ(history.savedText(), u"current");

    row(captureMenu, "Clear Capture History")->trigger();
    EXPECT_TRUE(captures.items().empty());
}

TEST_F(MenuTest, CaptureAndSettingsRowsAppearInTheirPlacesOnceWired) {
    int captureStarts = 0;
    ProtectedTermsStore *settingsStore = nullptr;
    controller.install(terms);
    controller.setScreenCaptureStarter([&] { ++captureStarts; });
    controller.setSettingsOpener([&](ProtectedTermsStore *store) { settingsStore = store; });
    openMenu();

    const QStringList shown = titles(*controller.menu());
    EXPECT_EQ(shown.indexOf("Capture Text from Screen") + 1, shown.indexOf("Open Floating Palette"));
    EXPECT_EQ(shown.mid(shown.indexOf(u"Settings\u2026"_s)),
              (QStringList{u"Settings\u2026"_s, "---", "Quit Glyphmill"}));
    EXPECT_EQ(hintOf(*row("Capture Text from Screen")), u"Shift+Super+2"_s);

    row("Capture Text from Screen")->trigger();
    EXPECT_EQ(captureStarts, 0);
    runQueuedTasks();
    EXPECT_EQ(captureStarts, 1);
    row(u"Settings\u2026"_s)->trigger();
    EXPECT_EQ(settingsStore, &terms);
}

TEST_F(MenuTest, OpenFloatingPaletteHandsOverTheStoreAndOpensThePalette) {
    controller.install(terms);
    copy(u"text");
    row("Open Floating Palette")->trigger();
    EXPECT_EQ(palette.panel(), nullptr);
    runQueuedTasks();
    ASSERT_NE(palette.panel(), nullptr);
    EXPECT_EQ(palette.termsStore(), &terms);
    EXPECT_TRUE(palette.panel()->isVisible());
    palette.close();
}

} // namespace
} // namespace glyphmill

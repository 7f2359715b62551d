#include "app/ApplicationCommands.h"
#include "clipboard/ClipboardControllersFixture.h"
#include "settings/preferences/ProtectedTermsStore.h"

namespace glyphmill {
namespace {

using appCommands::Command;

appCommands::Request request(Command command) {
    appCommands::Request made;
    made.command = command;
    return made;
}

appCommands::Request clipboardRequest(std::string_view kind) {
    appCommands::Request made = request(Command::clipboard);
    made.clipboardAction = *appCommands::clipboardActionNamed(kind);
    return made;
}

class ApplicationCommandsTest : public ClipboardControllersTest {
protected:
    ApplicationCommands commandsWith(ShellHandlers handlers) {
        return ApplicationCommands(manager, lineTools, history, terms, std::move(handlers));
    }
    ProtectedTermsStore terms{userDefaults};
};

const RequestOutcome done = RequestOutcome::done();
const RequestOutcome noText = RequestOutcome::nothingToDo("the clipboard holds no text");

TEST_F(ApplicationCommandsTest, ClipboardCommandsChangeTheClipboardAndRestoreBringsItBack) {
    ApplicationCommands commands = commandsWith({});
    terms.addTerm(u"zorBlax");
    copy(u"zorblax is loud");
    EXPECT_EQ(commands.run(clipboardRequest("uppercase")), done);
    EXPECT_EQ(plainText(), u"zorBlax IS LOUD");

    EXPECT_EQ(commands.run(clipboardRequest("bullet")), done);
    EXPECT_EQ(plainText(), u"• zorBlax IS LOUD");

    EXPECT_EQ(commands.run(request(Command::restore)), done);
    EXPECT_EQ(plainText(), u"zorBlax IS LOUD");
    // Only one level: a second restore has nothing to do.
    EXPECT_EQ(commands.run(request(Command::restore)), RequestOutcome::nothingToDo("nothing to restore"));
    EXPECT_EQ(plainText(), u"zorBlax IS LOUD");
}

TEST_F(ApplicationCommandsTest, CommandsFromOutsideStaySilentWithoutTextAndSaySo) {
    ApplicationCommands commands = commandsWith({});
    clipboard.copyFromOtherApplication({{"image/png", InMemoryPasteboard::bytes("\x89PNG")}});
    EXPECT_EQ(commands.run(clipboardRequest("title-case")), noText);
    EXPECT_EQ(commands.run(request(Command::pastePlain)), noText);
    EXPECT_TRUE(alerts().empty());
    EXPECT_EQ(keystrokes.pasteKeystrokes, 0);
    // The line tools alert as from the menu, and report the same.
    EXPECT_EQ(commands.run(clipboardRequest("sort-lines")), noText);
    EXPECT_EQ(commands.run(clipboardRequest("html-to-text")),
              RequestOutcome::nothingToDo("the clipboard holds no HTML"));

    copy(u"plain");
    EXPECT_EQ(commands.run(request(Command::pastePlain)), done);
    EXPECT_EQ(keystrokes.pasteKeystrokes, 1);
}

TEST_F(ApplicationCommandsTest, RefusedWritesAreReportedWhicheverCommandWrote) {
    ApplicationCommands commands = commandsWith({});
    copy(u"b\na");
    EXPECT_EQ(commands.run(clipboardRequest("sort-lines")), done);
    clipboard.setRefusesWrites(true);
    for (std::string_view kind : {"smart-case", "clear-formatting", "bullet", "html-to-text"}) {
        if (kind == "html-to-text")
            copyAs("text/html", "<p>x</p>");
        EXPECT_EQ(commands.run(clipboardRequest(kind)), RequestOutcome::notWritten()) << kind;
    }
    EXPECT_EQ(commands.run(request(Command::pastePlain)), RequestOutcome::notWritten());
    EXPECT_EQ(commands.run(request(Command::restore)), RequestOutcome::notWritten());
    EXPECT_EQ(keystrokes.pasteKeystrokes, 0);
    clipboard.setRefusesWrites(false);
    EXPECT_EQ(commands.run(request(Command::restore)), done);
    EXPECT_EQ(plainText(), u"b\na");
}

TEST_F(ApplicationCommandsTest, PiecesThatAreMissingOrRefuseSaySo) {
    ApplicationCommands without = commandsWith({});
    for (Command command : {Command::palette, Command::settings, Command::capture}) {
        const RequestOutcome outcome = without.run(request(command));
        EXPECT_EQ(outcome.status, RequestOutcome::Status::notAvailable);
        EXPECT_NE(outcome.message.find("not available"), std::string::npos) << outcome.message;
    }

    int palettes = 0, wakes = 0, quits = 0;
    ApplicationCommands with = commandsWith({
        .showPalette = [&] { return ++palettes, true; },
        .showSettings = [] { return false; },
        .startCapture = {},
        .wake = [&] { ++wakes; },
        .quit = [&] { ++quits; },
    });
    EXPECT_EQ(with.run(request(Command::palette)), done);
    EXPECT_EQ(with.run(request(Command::settings)).status, RequestOutcome::Status::notAvailable);
    EXPECT_EQ(with.run(request(Command::launch)), done);
    EXPECT_EQ(with.run(request(Command::quit)), done);
    EXPECT_EQ(palettes, 1);
    EXPECT_EQ(wakes, 1);
    EXPECT_EQ(quits, 1);
}

} // namespace
} // namespace glyphmill

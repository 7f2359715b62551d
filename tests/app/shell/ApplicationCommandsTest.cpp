#include "app/ApplicationCommands.h"
#include "clipboard/ClipboardControllersFixture.h"
#include "transform/ProtectedTermsStore.h"

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

TEST_F(ApplicationCommandsTest, ClipboardCommandsChangeTheClipboardAndRestoreBringsItBack) {
    ApplicationCommands commands = commandsWith({});
    terms.addTerm(u"zorBlax");
    copy(u"zorblax is loud");
    EXPECT_EQ(commands.run(clipboardRequest("uppercase")), std::nullopt);
    EXPECT_EQ(plainText(), u"zorBlax IS LOUD");

    EXPECT_EQ(commands.run(clipboardRequest("bullet")), std::nullopt);
    EXPECT_EQ(plainText(), u"• zorBlax IS LOUD");

    EXPECT_EQ(commands.run(request(Command::restore)), std::nullopt);
    EXPECT_EQ(plainText(), u"zorBlax IS LOUD");
    // Only one level: a second restore changes nothing.
    EXPECT_EQ(commands.run(request(Command::restore)), std::nullopt);
    EXPECT_EQ(plainText(), u"zorBlax IS LOUD");
}

TEST_F(ApplicationCommandsTest, CommandsFromOutsideStaySilentWithoutText) {
    ApplicationCommands commands = commandsWith({});
    clipboard.copyFromOtherApplication({{"image/png", InMemoryPasteboard::bytes("\x89PNG")}});
    EXPECT_EQ(commands.run(clipboardRequest("title-case")), std::nullopt);
    EXPECT_EQ(commands.run(request(Command::pastePlain)), std::nullopt);
    EXPECT_TRUE(alerts().empty());
    EXPECT_EQ(keystrokes.pasteKeystrokes, 0);

    copy(u"plain");
    EXPECT_EQ(commands.run(request(Command::pastePlain)), std::nullopt);
    EXPECT_EQ(keystrokes.pasteKeystrokes, 1);
}

TEST_F(ApplicationCommandsTest, PiecesThatAreMissingOrRefuseSaySo) {
    ApplicationCommands without = commandsWith({});
    for (Command command : {Command::palette, Command::settings, Command::capture}) {
        auto failure = without.run(request(command));
        ASSERT_TRUE(failure.has_value());
        EXPECT_NE(failure->find("not available"), std::string::npos) << *failure;
    }

    int palettes = 0, wakes = 0, quits = 0;
    ApplicationCommands with = commandsWith({
        .showPalette = [&] { return ++palettes, true; },
        .showSettings = [] { return false; },
        .startCapture = {},
        .wake = [&] { ++wakes; },
        .quit = [&] { ++quits; },
    });
    EXPECT_EQ(with.run(request(Command::palette)), std::nullopt);
    EXPECT_TRUE(with.run(request(Command::settings)).has_value());
    EXPECT_EQ(with.run(request(Command::launch)), std::nullopt);
    EXPECT_EQ(with.run(request(Command::quit)), std::nullopt);
    EXPECT_EQ(palettes, 1);
    EXPECT_EQ(wakes, 1);
    EXPECT_EQ(quits, 1);
}

} // namespace
} // namespace glyphmill

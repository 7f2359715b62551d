// Fresh clipboard controllers over an in-memory clipboard, scripted dialogs and an in-memory
// preference store, wired the way the shared instances are.
#pragma once

#include "clipboard/ClipboardHistory.h"
#include "clipboard/ClipboardManager.h"
#include "clipboard/ClipboardMonitor.h"
#include "clipboard/LineToolCommands.h"
#include "platform/InMemoryLoginItem.h"
#include "platform/InMemoryPasteboard.h"
#include "platform/InMemoryPreferenceStore.h"
#include "platform/RecordingKeystrokeSender.h"
#include "platform/ScriptedDialogs.h"
#include "settings/AppSettings.h"

#include <gtest/gtest.h>

namespace glyphmill {

// Counts reads of the clipboard's content, so a test can tell a poll looked only at the count.
class ContentReadCountingPasteboard final : public Pasteboard {
public:
    explicit ContentReadCountingPasteboard(Pasteboard &inner) : inner_(inner) {}
    std::vector<std::string> types() const override { return ++contentReads, inner_.types(); }
    std::optional<std::u16string> string(std::string_view type) const override {
        return ++contentReads, inner_.string(type);
    }
    std::optional<PasteboardData> data(std::string_view type) const override {
        return ++contentReads, inner_.data(type);
    }
    bool clearContents() override { return inner_.clearContents(); }
    bool setString(std::u16string_view text, std::string_view type) override {
        return inner_.setString(text, type);
    }
    std::int64_t changeCount() const override { return inner_.changeCount(); }
    mutable int contentReads = 0;

private:
    Pasteboard &inner_;
};

class ClipboardControllersTest : public ::testing::Test {
protected:
    ClipboardControllersTest() {
        QObject::connect(&monitor, &ClipboardMonitor::statisticsChanged, [this] { ++refreshes; });
    }
    void copy(std::u16string_view text) { clipboard.copyTextFromOtherApplication(text); }
    void copyAs(std::string_view type, std::string_view bytes) {
        clipboard.copyFromOtherApplication({{std::string(type), InMemoryPasteboard::bytes(bytes)}});
    }
    // A plain string beside a rich representation, as word processors copy.
    void copyWithHtml(std::u16string_view text) {
        copy(text);
        clipboard.setData(InMemoryPasteboard::bytes("<b>x</b>"), "text/html");
    }
    std::optional<std::u16string> plainText() const { return clipboard.string("text/plain"); }
    bool holdsOnlyPlainText() const { return clipboard.types() == std::vector<std::string>{"text/plain"}; }
    std::vector<std::u16string> alerts() const { return dialogs.alertMessages(); }

    InMemoryPasteboard clipboard;
    ContentReadCountingPasteboard pasteboard{clipboard};
    ScriptedDialogs dialogs;
    RecordingKeystrokeSender keystrokes;
    InMemoryPreferenceStore userDefaults;
    InMemoryLoginItem loginItem;
    AppSettings settings{userDefaults, loginItem};
    ClipboardMonitor monitor{pasteboard, settings};
    ClipboardHistory history{pasteboard, monitor};
    ClipboardManager manager{pasteboard, dialogs, keystrokes, userDefaults, settings, history, monitor};
    LineToolCommands lineTools{manager, dialogs, monitor};
    int refreshes = 0;
};

inline const std::u16string missingText = u"Clipboard does not contain text.";

} // namespace glyphmill

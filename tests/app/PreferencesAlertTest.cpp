#include "app/ApplicationDelegate.h"
#include "platform/InMemoryPreferenceStore.h"
#include "platform/ScriptedDialogs.h"

#include <gtest/gtest.h>

namespace glyphmill {
namespace {

TEST(PreferencesAlert, OnlyPreferencesThatCouldNotBeReadAreAlerted) {
    InMemoryPreferenceStore preferences;
    ScriptedDialogs dialogs;
    EXPECT_FALSE(alertIfPreferencesUnreadable(preferences, dialogs));
    EXPECT_TRUE(dialogs.shown().empty());

    preferences.setReadFailure(
        PreferenceReadFailure{"/home/someone/.config/glyphmill/preferences.json", "Permission denied"});
    EXPECT_TRUE(alertIfPreferencesUnreadable(preferences, dialogs));
    ASSERT_EQ(dialogs.shown().size(), 1u);
    const ScriptedDialogs::Shown &alert = dialogs.shown()[0];
    EXPECT_EQ(alert.kind, ScriptedDialogs::Shown::Kind::alert);
    // The message names the file and the reason, so the user can set it right.
    EXPECT_NE(alert.message.find(u"/home/someone/.config/glyphmill/preferences.json"), std::u16string::npos);
    EXPECT_NE(alert.message.find(u"Permission denied"), std::u16string::npos);
}

} // namespace
} // namespace glyphmill

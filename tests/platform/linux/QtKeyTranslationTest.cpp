#include "platform/linux/QtKeyTranslation.h"
#include "common/KeyboardShortcut.h"

#include <QKeyEvent>
#include <X11/keysym.h>
#include <gtest/gtest.h>

namespace glyphmill {
namespace {

TranslatedKey translate(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, quint32 keysym = 0,
                        bool autoRepeat = false) {
    const QKeyEvent event(QEvent::KeyPress, key, modifiers, 0, keysym, 0, QString(), autoRepeat);
    return translateKeyEvent(event);
}

TEST(QtKeyTranslation, KeysBecomeTheirMacKeyPositions) {
    EXPECT_EQ(translate(Qt::Key_T).macKeyCode, 17u);
    EXPECT_EQ(translate(Qt::Key_2).macKeyCode, 19u);
    EXPECT_EQ(translate(Qt::Key_BracketLeft).macKeyCode, 33u);
    EXPECT_EQ(translate(Qt::Key_Escape).macKeyCode, 53u);
    EXPECT_EQ(translate(Qt::Key_Backspace).macKeyCode, 51u);
    EXPECT_EQ(translate(Qt::Key_Delete).macKeyCode, 117u);
    EXPECT_EQ(translate(Qt::Key_Space).macKeyCode, 49u);
    EXPECT_EQ(translate(Qt::Key_F5).macKeyCode, 96u);
    EXPECT_EQ(translate(Qt::Key_Up).macKeyCode, 126u);
    EXPECT_EQ(translate(Qt::Key_7, Qt::KeypadModifier).macKeyCode, 89u) << "the keypad 7, not the row's";
    EXPECT_EQ(translate(Qt::Key_Enter, Qt::KeypadModifier).macKeyCode, 76u);
    EXPECT_EQ(translate(Qt::Key_MediaPlay).macKeyCode, std::nullopt);
}

TEST(QtKeyTranslation, TheKeysymXReportedWinsOverQtsKey) {
    // With Shift held X reports the shifted symbol; it still names the same key.
    EXPECT_EQ(translate(Qt::Key_At, Qt::ShiftModifier, XK_at).macKeyCode, 19u);
    EXPECT_EQ(translate(Qt::Key_T, Qt::ShiftModifier, XK_T).macKeyCode, 17u);
    EXPECT_EQ(translate(Qt::Key_unknown, Qt::NoModifier, XK_v).macKeyCode, 9u);
}

TEST(QtKeyTranslation, ModifiersBecomeMacEventFlagsAndModifierKeysAloneAreMarked) {
    const auto key =
        translate(Qt::Key_V, Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier | Qt::ShiftModifier);
    EXPECT_EQ(key.modifierFlags, eventModifierFlag::control | eventModifierFlag::option |
                                     eventModifierFlag::command | eventModifierFlag::shift);
    EXPECT_FALSE(key.isModifierOnly);
    EXPECT_TRUE(translate(Qt::Key_Control, Qt::ControlModifier).isModifierOnly);
    EXPECT_TRUE(translate(Qt::Key_Super_L, Qt::MetaModifier).isModifierOnly);
    EXPECT_TRUE(translate(Qt::Key_unknown, Qt::NoModifier, XK_ISO_Level3_Shift).isModifierOnly);
    EXPECT_TRUE(translate(Qt::Key_A, Qt::NoModifier, 0, true).isAutoRepeat);
}

} // namespace
} // namespace glyphmill

// The main of the test programs that use Qt: one QApplication for the whole run, offscreen
// unless the environment names a platform (the X server tests ask for xcb).
#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char **argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

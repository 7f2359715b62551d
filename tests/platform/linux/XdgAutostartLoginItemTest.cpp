#include "platform/linux/XdgAutostartLoginItem.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace glyphmill {
namespace {

QString execLine(const QString &entry) {
    for (const QString &line : entry.split(u'\n'))
        if (line.startsWith("Exec="))
            return line;
    return {};
}

class XdgAutostartLoginItemTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(root_.isValid());
        saved_ = qgetenv("XDG_CONFIG_HOME");
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(root_.path()));
    }
    void TearDown() override {
        saved_.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", saved_);
    }

    QString autostart() const { return root_.path() + "/autostart"; }

private:
    QTemporaryDir root_;
    QByteArray saved_;
};

TEST_F(XdgAutostartLoginItemTest, WritesAnEntryStartingThisProgramAndRemovesIt) {
    const QString entry = autostart() + "/glyphmill.desktop";
    ASSERT_EQ(XdgAutostartLoginItem::entryPath(), entry);
    XdgAutostartLoginItem item;
    ASSERT_TRUE(item.registerLoginItem());
    ASSERT_TRUE(item.registerLoginItem());
    QFile file(entry);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    EXPECT_TRUE(text.startsWith("[Desktop Entry]\n"));
    for (const char *line :
         {"Type=Application", "Name=Glyphmill", "Icon=glyphmill", "X-GNOME-Autostart-enabled=true"})
        EXPECT_TRUE(text.split(u'\n').contains(line)) << line;
    EXPECT_EQ(execLine(text), "Exec=" + QCoreApplication::applicationFilePath());
    // Replaced through a renamed temporary file, which must not be left behind.
    EXPECT_EQ(QDir(autostart()).entryList(QDir::Files | QDir::Hidden), QStringList{"glyphmill.desktop"});

    EXPECT_TRUE(item.unregisterLoginItem());
    EXPECT_FALSE(QFile::exists(entry));
    EXPECT_TRUE(item.unregisterLoginItem());
}

TEST_F(XdgAutostartLoginItemTest, QuotesAPathWithReservedCharacters) {
    EXPECT_EQ(execLine(XdgAutostartLoginItem::desktopEntry("/usr/bin/glyphmill")), "Exec=/usr/bin/glyphmill");
    // Quoted for the space, \$ inside the quotes, %% for the field code, then "\" doubled as in
    // every string value of a desktop entry.
    EXPECT_EQ(execLine(XdgAutostartLoginItem::desktopEntry("/opt/My Apps/gly$ph%1")),
              R"(Exec="/opt/My Apps/gly\\$ph%%1")");
}

TEST_F(XdgAutostartLoginItemTest, ReportsAFolderItCannotWriteTo) {
    QFile blocker(autostart());
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    EXPECT_FALSE(XdgAutostartLoginItem("/usr/bin/glyphmill").registerLoginItem());
}

} // namespace
} // namespace glyphmill

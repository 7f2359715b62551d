// Glyphmill and other programs on a real X server: what we read of what they copied, what they
// paste after we rewrote the clipboard, and the paste keystroke reaching the focused window.
#include "clipboard/text/PasteboardText.h"
#include "platform/linux/QtPasteboard.h"
#include "platform/linux/XTestKeystrokeSender.h"
#include "support/SpinUntil.h"

#include <QApplication>
#include <QBuffer>
#include <QEventLoop>
#include <QImage>
#include <QLineEdit>
#include <QProcess>
#include <QTemporaryFile>
#include <QTimer>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <memory>

namespace glyphmill {
namespace {

using Types = std::vector<std::string>;

// What another program gets when it pastes one target ("" is xclip's default, UTF8_STRING). Our
// event loop keeps running meanwhile: when we own the clipboard, we are the one who answers.
QByteArray pastedByOtherProgram(const QString &target = {}) {
    QStringList arguments{"-selection", "clipboard", "-o"};
    if (!target.isEmpty())
        arguments << "-t" << target;
    QProcess xclip;
    xclip.start("xclip", arguments);
    EXPECT_TRUE(spinUntil([&] { return xclip.state() == QProcess::NotRunning; })) << "xclip -o never ended";
    return xclip.readAllStandardOutput();
}

QStringList targetsSeenByOtherProgram() {
    return QString::fromUtf8(pastedByOtherProgram("TARGETS")).split(u'\n', Qt::SkipEmptyParts);
}

// Another program that copied one representation (an empty type: text the usual way) and serves
// it until it loses the clipboard or this object goes.
class OtherProgramCopy {
public:
    OtherProgramCopy(const QString &type, const QByteArray &bytes) {
        if (file_.open()) {
            file_.write(bytes);
            file_.flush();
        }
        QStringList arguments{"-quiet", "-selection", "clipboard", "-i", file_.fileName()};
        if (!type.isEmpty())
            arguments << "-t" << type;
        xclip_.setStandardOutputFile(QProcess::nullDevice());
        xclip_.setStandardErrorFile(QProcess::nullDevice());
        xclip_.start("xclip", arguments);
    }
    ~OtherProgramCopy() {
        xclip_.kill();
        xclip_.waitForFinished();
    }
    bool stillServing() const { return xclip_.state() == QProcess::Running; }

private:
    QTemporaryFile file_;
    QProcess xclip_;
};

// The CLIPBOARD selection's owner as the X server sees it, through a connection of the test's
// own, so that asking does not run Qt's event loop.
class SelectionOwnerProbe {
public:
    SelectionOwnerProbe() : connection_(xcb_connect(nullptr, nullptr), &xcb_disconnect) {
        const char name[] = "CLIPBOARD";
        std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
            xcb_intern_atom_reply(connection_.get(),
                                  xcb_intern_atom(connection_.get(), 0, sizeof name - 1, name), nullptr),
            &std::free);
        clipboard_ = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }
    xcb_window_t owner() const {
        std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(&std::free)> reply(
            xcb_get_selection_owner_reply(connection_.get(),
                                          xcb_get_selection_owner(connection_.get(), clipboard_), nullptr),
            &std::free);
        return reply ? reply->owner : xcb_window_t{XCB_NONE};
    }
    // Asks the server until another window than `previous` owns the clipboard. Each question is
    // a round trip, so this waits on the server rather than spinning freely.
    bool waitForOwnerOtherThan(xcb_window_t previous) const {
        QDeadlineTimer deadline(waitDeadline);
        while (!deadline.hasExpired()) {
            const xcb_window_t now = owner();
            if (now != previous && now != XCB_NONE)
                return true;
        }
        return false;
    }

private:
    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_;
    xcb_atom_t clipboard_ = XCB_ATOM_NONE;
};

class X11Clipboard : public ::testing::Test {
protected:
    // Waits until what the other program copied is what we read, with a newer change count. A
    // change alone is not enough: the one seen may be an earlier program's leaving.
    std::unique_ptr<OtherProgramCopy> copyInOtherProgram(const QString &type, const QByteArray &bytes) {
        const std::int64_t before = pasteboard.changeCount();
        auto copy = std::make_unique<OtherProgramCopy>(type, bytes);
        const std::string offered = type.isEmpty() ? "text/plain" : type.toStdString();
        const PasteboardData expected(bytes.begin(), bytes.end());
        EXPECT_TRUE(spinUntil([&] {
            return pasteboard.changeCount() > before && pasteboard.data(offered) == expected;
        })) << "we never read what xclip copied";
        return copy;
    }

    static void expectOnlyMimeTypes(const Types &types) {
        for (const auto &type : types)
            EXPECT_NE(type.find('/'), std::string::npos) << type;
    }

    // Other programs now find this text and nothing but text.
    static void expectOtherProgramsPaste(const QByteArray &utf8) {
        static const QStringList plainTextTargets = {"TARGETS",      "MULTIPLE",    "TIMESTAMP",
                                                     "SAVE_TARGETS", "UTF8_STRING", "text/plain",
                                                     "STRING",       "TEXT",        "COMPOUND_TEXT"};
        const QStringList targets = targetsSeenByOtherProgram();
        EXPECT_TRUE(targets.contains("UTF8_STRING")) << targets.join(' ').toStdString();
        for (const QString &target : targets)
            EXPECT_TRUE(plainTextTargets.contains(target)) << target.toStdString();
        EXPECT_EQ(pastedByOtherProgram(), utf8);
    }

    QtPasteboard pasteboard;
};

TEST_F(X11Clipboard, PlainTextIsReadAsCopiedAndLeftAlone) {
    auto copy = copyInOtherProgram({}, "Dear team,\r\n  see you at 10\u00a0am.");
    EXPECT_EQ(pasteboard.types(), Types{"text/plain"});
    EXPECT_EQ(pasteboardText::readText(pasteboard, true), u"Dear team,\r\n  see you at 10\u00a0am.");
    EXPECT_FALSE(pasteboardText::hasRichFormatting(pasteboard));
    EXPECT_FALSE(pasteboardText::clearFormattingIfRich(pasteboard));
    EXPECT_TRUE(copy->stillServing());
}

TEST_F(X11Clipboard, HtmlFromABrowserBecomesItsVisibleText) {
    auto copy = copyInOtherProgram("text/html", "<meta charset=\"utf-8\"><p>Caf\xc3\xa9 <b>menu</b></p>\r\n"
                                                "<ul><li>Scones &amp; tea</li></ul>");
    const Types types = pasteboard.types();
    expectOnlyMimeTypes(types);
    EXPECT_NE(std::find(types.begin(), types.end(), "text/html"), types.end());
    EXPECT_EQ(pasteboardText::readText(pasteboard, true), std::nullopt);
    const auto visible = pasteboardText::readText(pasteboard, false);
    ASSERT_TRUE(visible);
    EXPECT_NE(visible->find(u"Caf\u00e9 menu"), std::u16string::npos);
    EXPECT_NE(visible->find(u"Scones & tea"), std::u16string::npos);
    EXPECT_TRUE(pasteboardText::hasRichFormatting(pasteboard));

    ASSERT_TRUE(pasteboardText::clearFormattingIfRich(pasteboard));
    EXPECT_EQ(pasteboard.types(), Types{"text/plain"});
    expectOtherProgramsPaste(QString::fromStdU16String(*visible).toUtf8());
    EXPECT_TRUE(spinUntil([&] { return !copy->stillServing(); })) << "xclip kept the clipboard";
}

// Shaped like what LibreOffice Writer copies for a heading and a paragraph.
constexpr char wordProcessorRtf[] =
    R"({\rtf1\ansi\deff4\adeflang1025
{\fonttbl{\f0\froman\fprq2\fcharset0 Times New Roman;}{\f1\froman\fprq2\fcharset2 Symbol;}{\f3\froman\fprq2\fcharset0 Liberation Serif{\*\falt Times New Roman};}{\f4\fswiss\fprq2\fcharset0 Liberation Sans{\*\falt Arial};}}
{\colortbl;\red0\green0\blue0;\red0\green0\blue255;}
{\stylesheet{\s0\snext0\nowidctlpar\hyphpar0\ltrpar\cf0\kerning1\loch\f3\fs24\lang2057 Normal;}
{\s15\sbasedon0\snext16\keepn\sb240\sa120\ltrpar\loch\f4\fs28 Heading;}
}{\*\generator LibreOffice/7.4.7.2$Linux_X86_64 LibreOffice_project/40$Build-2}{\info{\creatim\yr2024\mo3\dy5\hr10\min12}}{\*\userprops}\deftab709
\hyphauto1\viewscale100
{\*\pgdsctbl
{\pgdsc0\pgdscuse451\pgwsxn11906\pghsxn16838\marglsxn1134\margrsxn1134\pgdscnxt0 Default Page Style;}}
\formshade\paperh16838\paperw11906\margl1134\margr1134\sectd\sbknone\sectunlocked1\pgndec\ftnbj\ftnstart1\ftnrstcont\ftnnar\aenddoc
{\*\ftnsep\chftnsep}\pgndec\pard\plain \s15\sb240\sa120\keepn\loch\f4\fs28\lang2057{\rtlch \ltrch\loch
Quarterly report}
\par \pard\plain \s0\nowidctlpar\hyphpar0\ltrpar\cf0\loch\f3\fs24\lang2057{\rtlch \ltrch\loch
Revenue grew by 12\u160\'3f% in the }{\rtlch \ltrch\b\loch
second}{\rtlch \ltrch\loch
 quarter \u8211\'96 see the table.}
\par })";

TEST_F(X11Clipboard, RtfFromAWordProcessorBecomesLinesOfText) {
    auto copy = copyInOtherProgram("text/rtf", wordProcessorRtf);
    expectOnlyMimeTypes(pasteboard.types());
    const std::u16string expected =
        u"Quarterly report\nRevenue grew by 12\u00a0% in the second quarter \u2013 see the table.";
    EXPECT_EQ(pasteboardText::readText(pasteboard, true), expected);
    EXPECT_EQ(pasteboardText::readText(pasteboard, false), expected);
    EXPECT_TRUE(pasteboardText::hasRichFormatting(pasteboard));

    ASSERT_TRUE(pasteboardText::clearFormattingIfRich(pasteboard));
    expectOtherProgramsPaste(QString::fromStdU16String(expected).toUtf8());
}

TEST_F(X11Clipboard, AnImageIsNeitherTextNorFormatting) {
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    ASSERT_TRUE(image.save(&buffer, "PNG"));

    auto copy = copyInOtherProgram("image/png", png);
    const Types types = pasteboard.types();
    expectOnlyMimeTypes(types);
    EXPECT_NE(std::find(types.begin(), types.end(), "image/png"), types.end());
    EXPECT_EQ(pasteboard.data("image/png"), PasteboardData(png.begin(), png.end()));
    EXPECT_EQ(pasteboardText::readText(pasteboard, false), std::nullopt);
    EXPECT_FALSE(pasteboardText::hasRichFormatting(pasteboard));
    EXPECT_FALSE(pasteboardText::clearFormattingIfRich(pasteboard));
    EXPECT_TRUE(targetsSeenByOtherProgram().contains("image/png"));
}

TEST_F(X11Clipboard, WrittenTextIsWhatOtherProgramsPasteUntilTheyCopy) {
    ASSERT_TRUE(pasteboardText::writePlainText(pasteboard, u"Zeile 1\nZeile 2 \u2014 \u2713"));
    expectOtherProgramsPaste("Zeile 1\nZeile 2 \xe2\x80\x94 \xe2\x9c\x93");

    auto copy = copyInOtherProgram({}, "from elsewhere");
    EXPECT_EQ(pasteboardText::readText(pasteboard, false), u"from elsewhere");
}

// A second program copies while our event loop is not running, so the last server time we know
// (from the first program's copy) predates its claim of the clipboard, and the server silently
// ignores a claim made with it. The write must notice, claim again with a fresh time, and only
// then answer that it wrote.
TEST_F(X11Clipboard, AWriteMadeWithAnOutdatedServerTimeIsRetriedAndConfirmed) {
    SelectionOwnerProbe probe;
    auto first = copyInOtherProgram({}, "first");
    const xcb_window_t firstOwner = probe.owner();
    OtherProgramCopy second("text/html", "<p>second</p>");
    ASSERT_TRUE(probe.waitForOwnerOtherThan(firstOwner)) << "the second xclip never took the clipboard";

    EXPECT_TRUE(pasteboardText::writePlainText(pasteboard, u"ours \u2713"));
    EXPECT_EQ(pasteboard.types(), Types{"text/plain"});
    expectOtherProgramsPaste("ours \xe2\x9c\x93");
    EXPECT_TRUE(spinUntil([&] { return !second.stillServing(); })) << "xclip kept the clipboard";
}

TEST_F(X11Clipboard, PasteKeystrokeMakesTheFocusedFieldPaste) {
    QLineEdit field;
    field.show();
    field.activateWindow();
    ASSERT_TRUE(spinUntil([&] { return field.isActiveWindow() && field.hasFocus(); }))
        << "the field never got focus";

    ASSERT_TRUE(pasteboardText::writePlainText(pasteboard, u"pasted through XTest \u2713"));
    XTestKeystrokeSender().postPasteKeystroke();
    EXPECT_TRUE(spinUntil([&] { return field.text() == u"pasted through XTest \u2713"; }))
        << "the field holds \"" << field.text().toStdString() << '"';
}

} // namespace
} // namespace glyphmill

#include "platform/linux/TesseractTextRecognizer.h"

#include "capture/text/LineAssembly.h"

#include <QFont>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

#include <memory>

namespace glyphmill {
namespace {

struct Word {
    QString text;
    QPoint baseline; // in points
    QColor ink = Qt::black;
    const char *family = "DejaVu Sans";
    bool underline = false;
    int pixelSize = 14;
};

// Words drawn (at 14 px unless told) over a ground, optionally with a filled bar behind some of
// them, at the given device pixel ratio.
ScreenImage render(QSize points, const QColor &ground, const std::vector<Word> &words, double ratio = 1,
                   QRect bar = {}, QColor barColour = {}) {
    QImage image(points * ratio, QImage::Format_ARGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(ground);
    QPainter painter(&image);
    if (!bar.isNull())
        painter.fillRect(bar, barColour);
    for (const Word &word : words) {
        QFont font(QString::fromUtf8(word.family));
        font.setPixelSize(word.pixelSize);
        font.setUnderline(word.underline);
        painter.setFont(font);
        painter.setPen(word.ink);
        painter.drawText(word.baseline, word.text);
    }
    painter.end();
    ScreenImage screen{image.width(), image.height(), ratio, {}};
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const std::uint32_t *>(image.constScanLine(y));
        screen.pixels.insert(screen.pixels.end(), line, line + image.width());
    }
    return screen;
}

std::u16string read(TesseractTextRecognizer &recognizer, const ScreenImage &image) {
    const auto fragments = recognizer.recognize(image);
    EXPECT_TRUE(fragments.has_value());
    return fragments ? lineAssembly::assembleText(*fragments) : u"<failed>";
}

// One recognizer for the whole suite, since loading the model is the slow part; it is ended before
// Tesseract's own caches are torn down at exit.
class TesseractTextRecognizerTest : public testing::Test {
protected:
    static void SetUpTestSuite() { shared = std::make_unique<TesseractTextRecognizer>(); }
    static void TearDownTestSuite() { shared.reset(); }
    static TesseractTextRecognizer &recognizer() { return *shared; }

    static inline std::unique_ptr<TesseractTextRecognizer> shared;
};

TEST_F(TesseractTextRecognizerTest, ReadsLinesOnLightDarkAndHighlightedGrounds) {
    const QString line = QStringLiteral("Paste as Plain Text, then save_file_v2");
    EXPECT_EQ(read(recognizer(), render({360, 32}, Qt::white, {{line, {10, 21}}})), line.toStdU16String());
    EXPECT_EQ(
        read(recognizer(), render({360, 32}, QColor("#1e1e1e"), {{line, {10, 21}, QColor("#e4e4e4")}}, 2)),
        line.toStdU16String());
    // A menu with its second item highlighted: white text on a blue bar in a white menu.
    const ScreenImage menu = render({240, 76}, Qt::white,
                                    {{"Copy", {24, 22}},
                                     {"Ctrl+C", {170, 22}},
                                     {"Paste", {24, 52}, Qt::white},
                                     {"Ctrl+V", {170, 52}, Qt::white}},
                                    1, QRect(4, 32, 232, 28), QColor("#0a64d8"));
    EXPECT_EQ(read(recognizer(), menu), u"Copy Ctrl+C\nPaste Ctrl+V");
}

// Tesseract drops underscores between words of code; an underline must not turn into them.
TEST_F(TesseractTextRecognizerTest, KeepsUnderscoresAndAddsNoneUnderUnderlinedWords) {
    const QString code = QStringLiteral("if (read_count < 10) return max_retries;");
    EXPECT_EQ(
        read(recognizer(), render({400, 32}, Qt::white, {{code, {10, 21}, Qt::black, "DejaVu Sans Mono"}})),
        code.toStdU16String());
    const QString link = QStringLiteral("Read the guide at www.example.com today");
    EXPECT_EQ(read(recognizer(),
                   render({360, 32}, Qt::white, {{link, {10, 21}, QColor("#0a64d8"), "DejaVu Sans", true}})),
              link.toStdU16String());
}

TEST_F(TesseractTextRecognizerTest, FindsNothingOnAnEmptyImageAndFailsOnABrokenOne) {
    const auto fragments = recognizer().recognize(render({200, 60}, Qt::white, {}));
    ASSERT_TRUE(fragments.has_value());
    EXPECT_TRUE(fragments->empty());
    EXPECT_EQ(recognizer().recognize(ScreenImage{10, 10, 1, {}}), std::nullopt);
}

TEST_F(TesseractTextRecognizerTest, BoxesAreNormalisedWithTheOriginAtTheLowerLeft) {
    const auto fragments = recognizer().recognize(
        render({400, 200}, Qt::white, {{"Morning", {20, 40}}, {"Evening", {280, 170}}}));
    ASSERT_TRUE(fragments.has_value());
    ASSERT_EQ(fragments->size(), 2u);
    const RecognizedFragment &top = (*fragments)[0].text == u"Morning" ? (*fragments)[0] : (*fragments)[1];
    const RecognizedFragment &bottom = (*fragments)[0].text == u"Morning" ? (*fragments)[1] : (*fragments)[0];
    EXPECT_EQ(top.text, u"Morning");
    EXPECT_EQ(bottom.text, u"Evening");
    // "Morning" spans about x 20..80 and y 30..44 of 400 × 200 points, from the top.
    EXPECT_NEAR(top.x, 20.0 / 400, 0.01);
    EXPECT_NEAR(top.y, 1 - 44.0 / 200, 0.02);
    EXPECT_NEAR(top.width, 58.0 / 400, 0.02);
    EXPECT_NEAR(top.height, 14.0 / 200, 0.02);
    EXPECT_NEAR(bottom.x, 280.0 / 400, 0.01);
    EXPECT_NEAR(bottom.y, 1 - 174.0 / 200, 0.02);
}

// Large text is read without enlarging and a large image in two bands on two threads: the text and
// the boxes must be those of a plain reading of the whole image.
TEST_F(TesseractTextRecognizerTest, BandsAndUnenlargedLargeTextReadAsTheWholeImage) {
    std::vector<Word> words;
    const char *lines[] = {"Quarterly report draft", "Send the figures by Friday", "Meeting moved to noon",
                           "Budget review notes", "Travel plans for June"};
    for (int i = 0; i < 5; ++i)
        words.push_back({lines[i], {16, 40 + 100 * i}});
    words.push_back({"Summary", {300, 40}, Qt::black, "DejaVu Sans", false, 24});
    // 540 × 500 at 1× is enlarged (the most letters are 14 px) to over a million pixels.
    const ScreenImage image = render({540, 500}, Qt::white, words);
    TesseractSettings whole;
    whole.parallelFromPixels = 0;
    TesseractTextRecognizer plain(whole);
    const auto banded = recognizer().recognize(image);
    const auto expected = plain.recognize(image);
    ASSERT_TRUE(banded.has_value());
    ASSERT_TRUE(expected.has_value());
    EXPECT_EQ(lineAssembly::assembleText(*banded),
              u"Quarterly report draft Summary\nSend the figures by Friday\nMeeting moved to noon\n"
              u"Budget review notes\nTravel plans for June");
    ASSERT_EQ(banded->size(), expected->size());
    for (std::size_t i = 0; i < banded->size(); ++i) {
        EXPECT_EQ((*banded)[i].text, (*expected)[i].text);
        EXPECT_NEAR((*banded)[i].y, (*expected)[i].y, 0.004);
        EXPECT_NEAR((*banded)[i].height, (*expected)[i].height, 0.004);
    }

    // 24 px text alone is read at its own size; its box is still normalised to the image.
    const auto large = recognizer().recognize(render(
        {400, 120}, Qt::white, {{"Welcome back, Ada", {20, 70}, Qt::black, "DejaVu Sans", false, 24}}));
    ASSERT_TRUE(large.has_value());
    EXPECT_EQ(lineAssembly::assembleText(*large), u"Welcome back, Ada");
    ASSERT_FALSE(large->empty());
    EXPECT_NEAR(large->front().x, 20.0 / 400, 0.01);
    EXPECT_NEAR(large->front().y, 1 - 70.0 / 120, 0.02); // "Welcome" sits on the baseline
}

} // namespace
} // namespace glyphmill

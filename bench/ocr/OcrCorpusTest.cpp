#include "OcrCorpus.h"
#include "OcrMetrics.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace glyphmill::ocrbench {
namespace {

TEST(OcrMetrics, CountsEditsAndLinesInOrder) {
    EXPECT_EQ(levenshtein("kitten", "sitting"), 3);
    EXPECT_EQ(levenshtein("", "abc"), 3);
    EXPECT_EQ(levenshtein("Copy Ctrl+C", "Copy Ctrl+C"), 0);

    // Up to a fifth of the true line may differ, and at least one character.
    EXPECT_TRUE(linesMatch("Copy Ctri+C", "Copy Ctrl+C"));
    EXPECT_TRUE(linesMatch("Cut", "Cat"));
    EXPECT_FALSE(linesMatch("Cut", "Cab"));
    EXPECT_FALSE(linesMatch("Paste", "Paste Ctrl+V"));

    const QStringList truth = {"Name: Jane", "Email: jane@example.org", "Phone: 0958"};
    EXPECT_EQ(linesInOrder(truth, truth), 3);
    // A swapped pair keeps only one of the two in order; a missing line counts as lost.
    EXPECT_EQ(linesInOrder({"Email: jane@example.org", "Name: Jane", "Phone: 0958"}, truth), 2);
    EXPECT_EQ(linesInOrder({"Name: Jane", "Phone: 0958"}, truth), 2);
    // Label and value read as separate lines match neither true line.
    EXPECT_EQ(linesInOrder({"Name:", "Jane", "Email:", "jane@example.org"}, truth), 0);
}

TEST(OcrCorpus, IsLargeVariedAndTheSameOnEveryBuild) {
    int argc = 1;
    char name[] = "ocr_corpus_tests";
    char *argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);

    const std::vector<OcrSample> corpus = buildOcrCorpus();
    ASSERT_GE(corpus.size(), 30u);
    std::set<QString> names, categories;
    std::set<qreal> ratios;
    for (const OcrSample &sample : corpus) {
        names.insert(sample.name);
        categories.insert(sample.category);
        ratios.insert(sample.image.devicePixelRatio());
        EXPECT_FALSE(sample.truth.isEmpty()) << sample.name.toStdString();
        for (const QString &line : sample.truth)
            EXPECT_EQ(line, line.simplified()) << sample.name.toStdString();
        EXPECT_FALSE(sample.image.isNull());
    }
    EXPECT_EQ(names.size(), corpus.size());
    EXPECT_EQ(categories,
              (std::set<QString>{"prose", "heading", "menu", "code", "links", "numbers", "form", "icons"}));
    EXPECT_EQ(ratios, (std::set<qreal>{1, 2}));

    const std::vector<OcrSample> again = buildOcrCorpus();
    for (std::size_t i = 0; i < corpus.size(); ++i) {
        EXPECT_EQ(again[i].image, corpus[i].image) << corpus[i].name.toStdString();
        EXPECT_EQ(again[i].truth, corpus[i].truth);
    }
    // A form row is its label and value on one line.
    const auto form =
        std::find_if(corpus.begin(), corpus.end(), [](const OcrSample &s) { return s.category == "form"; });
    ASSERT_NE(form, corpus.end());
    EXPECT_EQ(form->truth.front(), "Name: Jane Doe");
}

} // namespace
} // namespace glyphmill::ocrbench

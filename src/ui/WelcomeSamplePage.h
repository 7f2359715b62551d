// The guide's try-it page: an editable sample, one button per transform kind, the live result
// and a Copy button that says "Copied" for a moment after each copy.
#pragma once

#include "transform/TextTransformer.h"

#include <QWidget>

#include <array>
#include <chrono>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace glyphmill {

struct OnboardingContext;

class WelcomeSamplePage final : public QWidget {
    Q_OBJECT
public:
    static const QString initialSample;
    // How long "Copied" stays after the latest copy.
    static constexpr std::chrono::milliseconds copiedDuration{1500};

    WelcomeSamplePage(const OnboardingContext &context, QWidget *parent = nullptr);
    ~WelcomeSamplePage() override;

    QString sample() const;
    TextTransformKind selectedKind() const { return selectedKind_; }
    void selectKind(TextTransformKind kind);
    // What the Result box shows: a single blank stands for an empty result.
    QString result() const;
    bool didCopy() const { return didCopy_; }

    // Puts the result on the clipboard as plain text; nothing else of the clipboard's
    // machinery (restore, statistics) takes part.
    void copyResult();
    void resetSample();

    QPlainTextEdit &editor() const { return *editor_; }
    QPushButton &kindButton(TextTransformKind kind) const;
    QPushButton &copyButton() const { return *copy_; }
    QPushButton &resetButton() const { return *reset_; }
    QPushButton &editProtectedTermsButton() const { return *editTerms_; }

private:
    QString transformedSample() const;
    void setDidCopy(bool didCopy);
    void refresh();

    const OnboardingContext &context_;
    TextTransformKind selectedKind_ = TextTransformKind::smartCase;
    bool didCopy_ = false;
    int copyToken_ = 0;
    int observerToken_ = 0;
    QPlainTextEdit *editor_ = nullptr;
    std::array<QPushButton *, 5> kindButtons_{};
    QLabel *result_ = nullptr;
    QPushButton *copy_ = nullptr;
    QPushButton *reset_ = nullptr;
    QPushButton *editTerms_ = nullptr;
};

} // namespace glyphmill

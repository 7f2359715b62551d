#include "ui/WelcomeSamplePage.h"

#include "clipboard/text/PasteboardText.h"
#include "ui/OnboardingContext.h"
#include "ui/WelcomeGuidePages.h"
#include "ui/WelcomeGuideStyle.h"
#include "ui/WindowActions.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QResizeEvent>
#include <QStyleOptionButton>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace glyphmill {

using welcomeStyle::TextStyle;

const QString WelcomeSamplePage::initialSample = QStringLiteral("welcome to acme llc and the mac app store");

namespace {

constexpr int buttonSpacing = 6;
constexpr int firstRowCount = 3;

// The kind buttons in one row when the width allows, else the first three above the last two.
class KindButtonRows final : public QWidget {
public:
    explicit KindButtonRows(QWidget *parent) : QWidget(parent) {
        QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
        policy.setHeightForWidth(true);
        setSizePolicy(policy);
    }

    void add(QPushButton *button) { buttons_.push_back(button); }

    QSize sizeHint() const override { return {rowWidth(0, buttons_.size()), rowHeight()}; }
    QSize minimumSizeHint() const override {
        const int width = std::max(rowWidth(0, firstRowCount), rowWidth(firstRowCount, buttons_.size()));
        return {width, rowHeight()};
    }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override {
        return fitsOneRow(width) ? rowHeight() : 2 * rowHeight() + buttonSpacing;
    }

protected:
    void resizeEvent(QResizeEvent *event) override {
        QWidget::resizeEvent(event);
        place();
    }
    void showEvent(QShowEvent *event) override {
        QWidget::showEvent(event);
        place();
    }

private:
    int rowWidth(std::size_t from, std::size_t to) const {
        int width = 0;
        for (std::size_t index = from; index < to; ++index)
            width += buttons_[index]->sizeHint().width() + (index > from ? buttonSpacing : 0);
        return width;
    }
    int rowHeight() const {
        int height = 0;
        for (const QPushButton *button : buttons_)
            height = std::max(height, button->sizeHint().height());
        return height;
    }
    bool fitsOneRow(int width) const { return rowWidth(0, buttons_.size()) <= width; }

    void place() {
        const bool oneRow = fitsOneRow(width());
        int x = 0;
        int y = 0;
        for (std::size_t index = 0; index < buttons_.size(); ++index) {
            if (!oneRow && index == firstRowCount) {
                x = 0;
                y += rowHeight() + buttonSpacing;
            }
            const QSize size(buttons_[index]->sizeHint().width(), rowHeight());
            buttons_[index]->setGeometry(QRect(QPoint(x, y), size));
            x += size.width() + buttonSpacing;
        }
    }

    std::vector<QPushButton *> buttons_;
};

// The chosen kind is drawn in the accent colour, which stands out in light and dark themes alike
// where a pressed-in look does not.
class KindButton final : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void paintEvent(QPaintEvent *event) override {
        if (!isChecked()) {
            QPushButton::paintEvent(event);
            return;
        }
        QStyleOptionButton option;
        initStyleOption(&option);
        option.state &= ~(QStyle::State_On | QStyle::State_Sunken);
        option.state |= QStyle::State_Raised;
        const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
        // A shade darker than the accent, as the style lightens buttons and the title is white.
        option.palette.setColor(QPalette::Button, palette().color(group, QPalette::Highlight).darker(125));
        option.palette.setColor(QPalette::ButtonText, palette().color(group, QPalette::HighlightedText));
        QPainter painter(this);
        style()->drawControl(QStyle::CE_PushButton, &option, &painter, this);
    }
};

QLabel *headline(const QString &text, QWidget *parent) {
    return welcomeStyle::label(text, TextStyle::headline, false, parent);
}

} // namespace

WelcomeSamplePage::WelcomeSamplePage(const OnboardingContext &context, QWidget *parent)
    : QWidget(parent), context_(context) {
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(10);
    layout->addWidget(new WelcomeGuideHeader(
        tr("Try Glyphmill"), tr("See how quickly Glyphmill can format your text."), false, this));

    layout->addWidget(headline(tr("Original Text"), this));
    editor_ = new QPlainTextEdit(initialSample, this);
    editor_->setObjectName(QStringLiteral("sampleEditor"));
    editor_->setAccessibleName(tr("Original Text"));
    editor_->setFont(welcomeStyle::font(TextStyle::body));
    editor_->setTabChangesFocus(true);
    editor_->setMinimumHeight(56);
    editor_->setMaximumHeight(64);
    editor_->document()->setDocumentMargin(6);
    welcomeStyle::frameAsBox(*editor_, welcomeStyle::BoxFill::textBackground);
    layout->addWidget(editor_);

    auto *kinds = new KindButtonRows(this);
    for (std::size_t index = 0; index < allTextTransformKinds.size(); ++index) {
        const TextTransformKind kind = allTextTransformKinds[index];
        auto *button = new KindButton(QString::fromStdU16String(std::u16string(displayTitle(kind))), kinds);
        button->setCheckable(true);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, kind] { selectKind(kind); });
        kindButtons_[index] = button;
        kinds->add(button);
    }
    layout->addWidget(kinds);

    layout->addWidget(headline(tr("Result"), this));
    result_ = welcomeStyle::label(QString(), TextStyle::body, false, this);
    result_->setObjectName(QStringLiteral("sampleResult"));
    result_->setAccessibleName(tr("Result"));
    result_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    result_->setMinimumHeight(36);
    welcomeStyle::makeSelectable(*result_);
    welcomeStyle::followPalette(*result_, [](const QPalette &colours) {
        return QStringLiteral("#sampleResult { background: %1; border: 1px solid %2; border-radius: 6px; "
                              "padding: 8px; }")
            .arg(welcomeStyle::cssColour(colours.color(QPalette::Button)),
                 welcomeStyle::cssColour(welcomeStyle::separatorColour(colours, 0.25)));
    });
    layout->addWidget(result_);

    auto *actions = new QHBoxLayout;
    actions->setSpacing(8);
    copy_ = new QPushButton(tr("Copy Result"), this);
    copy_->setAutoDefault(false);
    reset_ = new QPushButton(tr("Reset Sample"), this);
    reset_->setAutoDefault(false);
    actions->addWidget(copy_);
    actions->addWidget(reset_);
    actions->addStretch(1);
    layout->addLayout(actions);

    auto *terms = new QVBoxLayout;
    terms->setSpacing(2);
    terms->addWidget(welcomeStyle::label(
        tr("Protected Terms keep names like LLC, macOS, and iPhone correctly capitalized."),
        TextStyle::callout, true, this));
    editTerms_ = welcomeStyle::linkButton(tr("Edit Protected Terms"), this);
    terms->addWidget(editTerms_, 0, Qt::AlignLeft);
    layout->addLayout(terms);

    connect(editor_, &QPlainTextEdit::textChanged, this, &WelcomeSamplePage::refresh);
    connect(copy_, &QPushButton::clicked, this, &WelcomeSamplePage::copyResult);
    connect(reset_, &QPushButton::clicked, this, &WelcomeSamplePage::resetSample);
    connect(editTerms_, &QPushButton::clicked, this, [this] {
        if (windowActions().showSettingsWindow)
            windowActions().showSettingsWindow(context_.store);
    });
    AppSettings &settings = context_.settings;
    for (auto changed :
         {&AppSettings::preserveProtectedTermsChanged, &AppSettings::preserveURLsChanged,
          &AppSettings::preserveEmailsChanged, &AppSettings::preserveFilePathsChanged,
          &AppSettings::preserveHashtagsAndMentionsChanged, &AppSettings::correctAllUppercaseProseChanged})
        connect(&settings, changed, this, &WelcomeSamplePage::refresh);
    observerToken_ = context_.store.addObserver([this](const auto &) { refresh(); });
    refresh();
}

WelcomeSamplePage::~WelcomeSamplePage() {
    context_.store.removeObserver(observerToken_);
}

QString WelcomeSamplePage::sample() const {
    return editor_->toPlainText();
}

void WelcomeSamplePage::selectKind(TextTransformKind kind) {
    selectedKind_ = kind;
    setDidCopy(false);
    refresh();
}

QString WelcomeSamplePage::transformedSample() const {
    return context_.transformed(selectedKind_, sample());
}

QString WelcomeSamplePage::result() const {
    return result_->text();
}

void WelcomeSamplePage::copyResult() {
    // "Copied" only when the clipboard took the text.
    if (!pasteboardText::writePlainText(context_.pasteboard, transformedSample().toStdU16String()))
        return;
    setDidCopy(true);
    const int token = ++copyToken_;
    // Only the latest copy may turn "Copied" back; earlier pending resets find a newer token.
    QTimer::singleShot(copiedDuration, Qt::PreciseTimer, this, [this, token] {
        if (copyToken_ == token)
            setDidCopy(false);
    });
}

void WelcomeSamplePage::resetSample() {
    editor_->setPlainText(initialSample);
    selectKind(TextTransformKind::smartCase);
}

QPushButton &WelcomeSamplePage::kindButton(TextTransformKind kind) const {
    const auto found = std::find(allTextTransformKinds.begin(), allTextTransformKinds.end(), kind);
    return *kindButtons_[static_cast<std::size_t>(found - allTextTransformKinds.begin())];
}

void WelcomeSamplePage::setDidCopy(bool didCopy) {
    didCopy_ = didCopy;
    copy_->setText(didCopy ? tr("Copied") : tr("Copy Result"));
}

void WelcomeSamplePage::refresh() {
    const QString transformed = transformedSample();
    result_->setText(transformed.isEmpty() ? QStringLiteral(" ") : transformed);
    result_->setAccessibleDescription(transformed);
    copy_->setEnabled(!transformed.trimmed().isEmpty());
    for (std::size_t index = 0; index < allTextTransformKinds.size(); ++index)
        kindButtons_[index]->setChecked(allTextTransformKinds[index] == selectedKind_);
}

} // namespace glyphmill

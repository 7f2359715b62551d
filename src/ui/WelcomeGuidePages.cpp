#include "ui/WelcomeGuidePages.h"

#include "app/menu/AppIcons.h"
#include "settings/KeyboardShortcut.h"
#include "ui/FloatingPaletteIllustration.h"
#include "ui/OnboardingContext.h"
#include "ui/WelcomeGuideStyle.h"
#include "ui/WindowActions.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace glyphmill {

using welcomeStyle::TextStyle;

namespace {

constexpr int headerIconSize = 56;
constexpr int symbolColumnWidth = 22;

// Draws an icon without being a label, so screen readers have nothing to announce.
class DecorativeIcon final : public QWidget {
public:
    DecorativeIcon(QIcon icon, QSize size, int iconExtent, QWidget *parent)
        : QWidget(parent), icon_(std::move(icon)), iconExtent_(iconExtent) {
        setFixedSize(size);
        setFocusPolicy(Qt::NoFocus);
    }

protected:
    void paintEvent(QPaintEvent *) override {
        if (icon_.isNull())
            return;
        QPainter painter(this);
        const QRect target((width() - iconExtent_) / 2, 0, iconExtent_, iconExtent_);
        icon_.paint(&painter, target, Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled);
    }

private:
    QIcon icon_;
    int iconExtent_;
};

QWidget *symbol(const QString &iconName, QWidget *parent) {
    const int extent = QFontMetrics(welcomeStyle::font(TextStyle::body)).height();
    const QIcon icon = iconName.isEmpty() ? QIcon() : QIcon::fromTheme(iconName);
    return new DecorativeIcon(icon, QSize(symbolColumnWidth, extent), std::min(extent, symbolColumnWidth),
                              parent);
}

// A symbol beside one line of text, read as that text alone.
QWidget *symbolLabel(const QString &iconName, const QString &text, TextStyle style, bool secondary,
                     QWidget *parent) {
    auto *row = new QWidget(parent);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(symbol(iconName, row), 0, Qt::AlignTop);
    layout->addWidget(welcomeStyle::label(text, style, secondary, row), 1);
    row->setAccessibleName(text);
    return row;
}

QVBoxLayout *pageLayout(QWidget *page, int spacing) {
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

QVBoxLayout *stack(QVBoxLayout *parentLayout, QWidget *page, int spacing) {
    auto *holder = new QWidget(page);
    auto *layout = new QVBoxLayout(holder);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    parentLayout->addWidget(holder);
    return layout;
}

QString text(std::u16string_view utf16) {
    return QString::fromStdU16String(std::u16string(utf16));
}

} // namespace

WelcomeGuideHeader::WelcomeGuideHeader(const QString &title, const QString &subtitle, bool showsIcon,
                                       QWidget *parent)
    : QWidget(parent) {
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    if (showsIcon) {
        const QIcon icon = appIcons::applicationIcon();
        if (!icon.isNull())
            layout->addWidget(
                new DecorativeIcon(icon, QSize(headerIconSize, headerIconSize), headerIconSize, this), 0,
                Qt::AlignLeft);
    }
    QLabel *titleLabel = welcomeStyle::label(title, TextStyle::title, false, this);
    titleLabel->setObjectName(QStringLiteral("welcomeHeaderTitle"));
    layout->addWidget(titleLabel);
    layout->addWidget(welcomeStyle::label(subtitle, TextStyle::body, true, this));
}

WelcomeFeatureRow::WelcomeFeatureRow(const QString &iconName, const QString &title, const QString &message,
                                     QWidget *parent)
    : QWidget(parent), title_(title) {
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(10);
    layout->addWidget(symbol(iconName, this), 0, Qt::AlignTop);
    auto *texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(welcomeStyle::label(title, TextStyle::headline, false, this));
    message_ = welcomeStyle::label(message, TextStyle::callout, true, this);
    texts->addWidget(message_);
    layout->addLayout(texts, 1);
    setMessage(message);
}

void WelcomeFeatureRow::setMessage(const QString &message) {
    message_->setText(message);
    setAccessibleName(title_ + QStringLiteral(". ") + message);
}

QString WelcomeFeatureRow::message() const {
    return message_->text();
}

QWidget *makeIntroductionPage(QWidget *parent) {
    auto *page = new QWidget(parent);
    QVBoxLayout *layout = pageLayout(page, 12);
    layout->addWidget(new WelcomeGuideHeader(QStringLiteral("Welcome to Glyphmill"),
                                             QStringLiteral("The fastest way to format text on your Mac."),
                                             true, page));
    QVBoxLayout *rows = stack(layout, page, 10);
    rows->addWidget(new WelcomeFeatureRow(
        QStringLiteral("font-x-generic"), QStringLiteral("Instant Text Formatting"),
        QStringLiteral("Convert text to Smart Case, Title Case, UPPERCASE, lowercase, and Capitalize Words."),
        page));
    rows->addWidget(new WelcomeFeatureRow(
        QString(), QStringLiteral("Work Anywhere"),
        QStringLiteral("Format text using the menu bar, floating palette, or macOS Services."), page));
    rows->addWidget(
        new WelcomeFeatureRow(QStringLiteral("tools-check-spelling"), QStringLiteral("More Text Tools"),
                              QStringLiteral("Capture text from your screen, process lines, clean "
                                             "formatting, and restore clipboard history."),
                              page));
    layout->addWidget(symbolLabel(QStringLiteral("security-high"),
                                  QStringLiteral("All text processing happens locally on your Mac."),
                                  TextStyle::callout, true, page));
    return page;
}

PaletteAndServicesPage::PaletteAndServicesPage(const OnboardingContext &context, QWidget *parent)
    : QWidget(parent), context_(context) {
    QVBoxLayout *layout = pageLayout(this, 14);
    layout->addWidget(new WelcomeGuideHeader(
        QStringLiteral("Format Text Anywhere"),
        QStringLiteral("Select text in another app and format it instantly."), false, this));
    illustration_ =
        new FloatingPaletteIllustration(QStringLiteral("WELCOME TO ACME LLC"),
                                        {QStringLiteral("Smart Case"), QStringLiteral("Title Case"),
                                         QStringLiteral("UPPERCASE"), QStringLiteral("lowercase")},
                                        this);
    layout->addWidget(illustration_);

    QVBoxLayout *shortcut = stack(layout, this, 4);
    heading_ = welcomeStyle::label(QString(), TextStyle::title2, false, this);
    heading_->setObjectName(QStringLiteral("paletteShortcutHeading"));
    shortcut->addWidget(heading_);
    message_ = welcomeStyle::label(QString(), TextStyle::body, true, this);
    shortcut->addWidget(message_);

    QVBoxLayout *services = stack(layout, this, 6);
    services->addWidget(symbolLabel(QStringLiteral("emblem-ok"), QStringLiteral("Services"),
                                    TextStyle::headline, false, this));
    services->addWidget(welcomeStyle::label(
        QStringLiteral(
            "This Mac App Store version does not use Accessibility Access to replace selected text. "
            "Choose Services \u2192 Glyphmill to transform a selection in place. Text is processed "
            "locally and is never transmitted."),
        TextStyle::body, true, this));
    QPushButton *help = welcomeStyle::linkButton(QStringLiteral("How to Use Services\u2026"), this);
    connect(help, &QPushButton::clicked, this, [] {
        if (windowActions().showServicesHelp)
            windowActions().showServicesHelp();
    });
    services->addWidget(help);
    services->addWidget(welcomeStyle::label(
        QStringLiteral("Clipboard formatting and macOS Services work without Accessibility Access."),
        TextStyle::callout, true, this));

    AppSettings &settings = context_.settings;
    connect(&settings, &AppSettings::paletteShortcutChanged, this, &PaletteAndServicesPage::refresh);
    connect(&settings, &AppSettings::paletteShortcutRegistrationFailedChanged, this,
            &PaletteAndServicesPage::refresh);
    for (auto changed :
         {&AppSettings::preserveProtectedTermsChanged, &AppSettings::preserveURLsChanged,
          &AppSettings::preserveEmailsChanged, &AppSettings::preserveFilePathsChanged,
          &AppSettings::preserveHashtagsAndMentionsChanged, &AppSettings::correctAllUppercaseProseChanged})
        connect(&settings, changed, this, &PaletteAndServicesPage::refresh);
    observerToken_ = context_.store.addObserver([this](const auto &) { refresh(); });
    refresh();
}

PaletteAndServicesPage::~PaletteAndServicesPage() {
    context_.store.removeObserver(observerToken_);
}

void PaletteAndServicesPage::refresh() {
    illustration_->setResult(
        context_.transformed(TextTransformKind::smartCase, QStringLiteral("WELCOME TO ACME LLC")));
    if (context_.settings.paletteShortcutRegistrationFailed()) {
        heading_->setText(QStringLiteral("Palette shortcut unavailable"));
        message_->setText(
            QStringLiteral("The floating palette shortcut could not be registered. Open it from the "
                           "Glyphmill menu, or choose another shortcut in Settings."));
    } else {
        heading_->setText(text(displayString(context_.settings.shortcut(KeyboardShortcutID::palette))));
        message_->setText(
            QStringLiteral("Opens the floating palette near your pointer so you can format clipboard text."));
    }
}

QString PaletteAndServicesPage::shortcutHeading() const {
    return heading_->text();
}

QString PaletteAndServicesPage::shortcutMessage() const {
    return message_->text();
}

QString PaletteAndServicesPage::exampleResult() const {
    return illustration_->result();
}

ReadyPage::ReadyPage(const OnboardingContext &context, QWidget *parent) : QWidget(parent), context_(context) {
    QVBoxLayout *layout = pageLayout(this, 14);
    layout->addWidget(new WelcomeGuideHeader(
        QStringLiteral("You're Ready!"),
        QStringLiteral("Glyphmill is now available from your Mac's menu bar."), true, this));
    QVBoxLayout *rows = stack(layout, this, 12);
    paletteRow_ = new WelcomeFeatureRow(QStringLiteral("input-keyboard"), QStringLiteral("Floating Palette"),
                                        QString(), this);
    rows->addWidget(paletteRow_);
    rows->addWidget(new WelcomeFeatureRow(
        QString(), QStringLiteral("Menu Bar Tools"),
        QStringLiteral(
            "Format clipboard text, capture text from your screen, and access additional utilities."),
        this));
    rows->addWidget(new WelcomeFeatureRow(
        QStringLiteral("preferences-system"), QStringLiteral("Make It Yours"),
        QStringLiteral("Customize Protected Terms, shortcuts, and preferences in Settings."), this));
    layout->addWidget(welcomeStyle::label(
        QStringLiteral("Glyphmill runs quietly in your menu bar, even when its windows are closed."),
        TextStyle::callout, true, this));

    connect(&context_.settings, &AppSettings::paletteShortcutChanged, this, &ReadyPage::refresh);
    connect(&context_.settings, &AppSettings::paletteShortcutRegistrationFailedChanged, this,
            &ReadyPage::refresh);
    refresh();
}

void ReadyPage::refresh() {
    if (context_.settings.paletteShortcutRegistrationFailed()) {
        paletteRow_->setMessage(QStringLiteral("Open the floating palette from the Glyphmill menu to format "
                                               "clipboard text. To change a selection in place, use Services "
                                               "\u2192 Glyphmill."));
        return;
    }
    paletteRow_->setMessage(QStringLiteral("Press ") +
                            text(displayString(context_.settings.shortcut(KeyboardShortcutID::palette))) +
                            QStringLiteral(" to format clipboard text. To change a selection in place, use "
                                           "Services \u2192 Glyphmill."));
}

QString ReadyPage::paletteRowMessage() const {
    return paletteRow_->message();
}

} // namespace glyphmill

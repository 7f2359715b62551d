#include "ui/WelcomeGuidePages.h"

#include "common/KeyboardShortcut.h"
#include "ui/AppIcons.h"
#include "ui/FloatingPaletteIllustration.h"
#include "ui/OnboardingContext.h"
#include "ui/WelcomeGuideStyle.h"
#include "ui/WindowActions.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QVBoxLayout>

#include <cmath>
#include <utility>

namespace glyphmill {

using welcomeStyle::TextStyle;

namespace {

constexpr int headerIconSize = 56;
constexpr int symbolColumnWidth = 22;

// Simple line drawings shown where the icon theme has no icon for a symbol.
enum class Glyph {
    none,
    textFormat,
    cursorRays,
    textCheck,
    lockShield,
    checkCircle,
    keyboard,
    menuBar,
    gear
};

Glyph glyphFor(const QString &iconName) {
    static const std::pair<const char *, Glyph> glyphs[] = {
        {"font-x-generic", Glyph::textFormat},      {"input-mouse", Glyph::cursorRays},
        {"tools-check-spelling", Glyph::textCheck}, {"security-high", Glyph::lockShield},
        {"emblem-ok", Glyph::checkCircle},          {"input-keyboard", Glyph::keyboard},
        {"user-desktop", Glyph::menuBar},           {"preferences-system", Glyph::gear},
    };
    for (const auto &[name, glyph] : glyphs)
        if (iconName == QLatin1String(name))
            return glyph;
    return Glyph::none;
}

QPainterPath check(QPointF origin, qreal size) {
    QPainterPath path(origin + QPointF(0, size * 0.5));
    path.lineTo(origin + QPointF(size * 0.38, size * 0.85));
    path.lineTo(origin + QPointF(size, 0));
    return path;
}

// Draws the glyph in the square box, in the painter's pen.
void drawGlyph(QPainter &painter, Glyph glyph, const QRectF &box) {
    const qreal e = box.width();
    const QPointF o = box.topLeft();
    const auto at = [&](qreal x, qreal y) { return o + QPointF(x * e, y * e); };
    switch (glyph) {
    case Glyph::none:
        return;
    case Glyph::textFormat: {
        QFont font = painter.font();
        font.setPixelSize(std::max(6, static_cast<int>(e * 0.78)));
        font.setBold(true);
        painter.setFont(font);
        painter.drawText(box, Qt::AlignCenter, QStringLiteral("Aa"));
        return;
    }
    case Glyph::cursorRays: {
        QPolygonF arrow;
        for (const auto &[x, y] : {std::pair{0.38, 0.3},
                                   {0.38, 0.95},
                                   {0.53, 0.8},
                                   {0.64, 1.0},
                                   {0.74, 0.95},
                                   {0.64, 0.76},
                                   {0.85, 0.74}})
            arrow << at(x, y);
        painter.drawPolygon(arrow);
        painter.drawLine(at(0.25, 0.17), at(0.12, 0.04));
        painter.drawLine(at(0.2, 0.32), at(0.02, 0.32));
        painter.drawLine(at(0.38, 0.13), at(0.38, 0.0));
        return;
    }
    case Glyph::textCheck:
        painter.drawLine(at(0.05, 0.2), at(0.9, 0.2));
        painter.drawLine(at(0.05, 0.45), at(0.9, 0.45));
        painter.drawLine(at(0.05, 0.7), at(0.4, 0.7));
        painter.drawPath(check(at(0.52, 0.62), e * 0.42));
        return;
    case Glyph::lockShield: {
        QPainterPath shield(at(0.5, 0.02));
        shield.lineTo(at(0.9, 0.17));
        shield.cubicTo(at(0.9, 0.6), at(0.75, 0.85), at(0.5, 0.98));
        shield.cubicTo(at(0.25, 0.85), at(0.1, 0.6), at(0.1, 0.17));
        shield.closeSubpath();
        painter.drawPath(shield);
        painter.drawRect(QRectF(at(0.36, 0.45), at(0.64, 0.68)));
        painter.drawArc(QRectF(at(0.4, 0.3), at(0.6, 0.58)), 0, 180 * 16);
        return;
    }
    case Glyph::checkCircle:
        painter.drawEllipse(QRectF(at(0.04, 0.04), at(0.96, 0.96)));
        painter.drawPath(check(at(0.3, 0.34), e * 0.4));
        return;
    case Glyph::keyboard:
        painter.drawRoundedRect(QRectF(at(0.0, 0.2), at(1.0, 0.8)), e * 0.1, e * 0.1);
        for (const qreal x : {0.18, 0.34, 0.5, 0.66, 0.82})
            painter.drawPoint(at(x, 0.4));
        painter.drawLine(at(0.28, 0.62), at(0.72, 0.62));
        return;
    case Glyph::menuBar:
        painter.drawRoundedRect(QRectF(at(0.02, 0.12), at(0.98, 0.88)), e * 0.1, e * 0.1);
        painter.drawLine(at(0.02, 0.34), at(0.98, 0.34));
        return;
    case Glyph::gear: {
        const QPointF centre = at(0.5, 0.5);
        QPen teeth = painter.pen();
        teeth.setWidthF(e * 0.16);
        teeth.setCapStyle(Qt::FlatCap);
        painter.save();
        painter.setPen(teeth);
        for (int tooth = 0; tooth < 8; ++tooth) {
            const qreal angle = tooth * 3.14159265358979 / 4;
            const QPointF direction(std::cos(angle), std::sin(angle));
            painter.drawLine(centre + direction * (e * 0.3), centre + direction * (e * 0.48));
        }
        painter.restore();
        painter.drawEllipse(centre, e * 0.3, e * 0.3);
        painter.drawEllipse(centre, e * 0.12, e * 0.12);
        return;
    }
    }
}

// Draws an icon without being a label, so screen readers have nothing to announce. Without a
// theme icon, draws its own glyph in the secondary text colour.
class DecorativeIcon final : public QWidget {
public:
    DecorativeIcon(QIcon icon, QSize size, int iconExtent, QWidget *parent, Glyph fallback = Glyph::none)
        : QWidget(parent), icon_(std::move(icon)), iconExtent_(iconExtent), fallback_(fallback) {
        setFixedSize(size);
        setFocusPolicy(Qt::NoFocus);
    }

protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        const QRect target((width() - iconExtent_) / 2, (height() - iconExtent_) / 2, iconExtent_,
                           iconExtent_);
        if (!icon_.isNull()) {
            icon_.paint(&painter, target, Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled);
            return;
        }
        if (fallback_ == Glyph::none)
            return;
        painter.setRenderHint(QPainter::Antialiasing);
        QPen pen(palette().color(QPalette::PlaceholderText), std::max(1.0, iconExtent_ / 12.0));
        pen.setCapStyle(Qt::RoundCap);
        pen.setJoinStyle(Qt::RoundJoin);
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        // Inset so strokes stay inside the column and line up with the text beside them.
        const qreal inset = iconExtent_ * 0.06;
        drawGlyph(painter, fallback_, QRectF(target).adjusted(inset, inset, -inset, -inset));
    }

private:
    QIcon icon_;
    int iconExtent_;
    Glyph fallback_;
};

// Sized to one line of body text, or larger beside a title and its message.
QWidget *symbol(const QString &iconName, QWidget *parent, bool large = false) {
    const int lineHeight = QFontMetrics(welcomeStyle::font(TextStyle::body)).height();
    const int extent = large ? symbolColumnWidth - 2 : std::min(lineHeight, symbolColumnWidth);
    const QIcon icon = iconName.isEmpty() ? QIcon() : QIcon::fromTheme(iconName);
    return new DecorativeIcon(icon, QSize(symbolColumnWidth, std::max(extent, lineHeight)), extent, parent,
                              glyphFor(iconName));
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
    layout->addWidget(symbol(iconName, this, true), 0, Qt::AlignTop);
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
    layout->addWidget(new WelcomeGuideHeader(
        QCoreApplication::translate("glyphmill::WelcomeGuide", "Welcome to Glyphmill"),
        QCoreApplication::translate("glyphmill::WelcomeGuide",
                                    "The fastest way to format text on this computer."),
        true, page));
    QVBoxLayout *rows = stack(layout, page, 10);
    rows->addWidget(new WelcomeFeatureRow(
        QStringLiteral("font-x-generic"),
        QCoreApplication::translate("glyphmill::WelcomeGuide", "Instant Text Formatting"),
        QCoreApplication::translate(
            "glyphmill::WelcomeGuide",
            "Convert text to Smart Case, Title Case, UPPERCASE, lowercase, and Capitalize Words."),
        page));
    rows->addWidget(new WelcomeFeatureRow(
        QStringLiteral("input-mouse"),
        QCoreApplication::translate("glyphmill::WelcomeGuide", "Work Anywhere"),
        QCoreApplication::translate(
            "glyphmill::WelcomeGuide",
            "Format text using the system tray menu, floating palette, or Glyphmill's Services "
            "(D-Bus and the glyphmill service command)."),
        page));
    rows->addWidget(new WelcomeFeatureRow(
        QStringLiteral("tools-check-spelling"),
        QCoreApplication::translate("glyphmill::WelcomeGuide", "More Text Tools"),
        QCoreApplication::translate("glyphmill::WelcomeGuide",
                                    "Capture text from your screen, process lines, clean "
                                    "formatting, and restore clipboard history."),
        page));
    layout->addWidget(
        symbolLabel(QStringLiteral("security-high"),
                    QCoreApplication::translate("glyphmill::WelcomeGuide",
                                                "All text processing happens locally on this computer."),
                    TextStyle::callout, true, page));
    return page;
}

PaletteAndServicesPage::PaletteAndServicesPage(const OnboardingContext &context, QWidget *parent)
    : QWidget(parent), context_(context) {
    QVBoxLayout *layout = pageLayout(this, 14);
    layout->addWidget(new WelcomeGuideHeader(
        tr("Format Text Anywhere"), tr("Select text in another app and format it instantly."), false, this));
    illustration_ = new FloatingPaletteIllustration(
        QStringLiteral("WELCOME TO ACME LLC"),
        {tr("Smart Case"), tr("Title Case"), tr("UPPERCASE"), tr("lowercase")}, this);
    layout->addWidget(illustration_);

    QVBoxLayout *shortcut = stack(layout, this, 4);
    heading_ = welcomeStyle::label(QString(), TextStyle::title2, false, this);
    heading_->setObjectName(QStringLiteral("paletteShortcutHeading"));
    shortcut->addWidget(heading_);
    message_ = welcomeStyle::label(QString(), TextStyle::body, true, this);
    shortcut->addWidget(message_);

    QVBoxLayout *services = stack(layout, this, 6);
    services->addWidget(
        symbolLabel(QStringLiteral("emblem-ok"), tr("Services"), TextStyle::headline, false, this));
    services->addWidget(welcomeStyle::label(
        tr("This build does not use Accessibility Access to replace selected text: it works through "
           "the clipboard and a synthetic paste. To transform a selection in place, filter it through "
           "the glyphmill service command from your editor. Text is processed locally and is never "
           "transmitted."),
        TextStyle::body, true, this));
    QPushButton *help = welcomeStyle::linkButton(tr("How to Use Services\u2026"), this);
    connect(help, &QPushButton::clicked, this, [] {
        if (windowActions().showServicesHelp)
            windowActions().showServicesHelp();
    });
    services->addWidget(help);
    services->addWidget(welcomeStyle::label(
        tr("Clipboard formatting and Glyphmill's Services (D-Bus and the glyphmill service "
           "command) work without Accessibility Access."),
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
        heading_->setText(tr("Palette shortcut unavailable"));
        message_->setText(tr("The floating palette shortcut could not be registered. Open it from the "
                             "Glyphmill menu, or choose another shortcut in Settings."));
    } else {
        heading_->setText(text(displayString(context_.settings.shortcut(KeyboardShortcutID::palette))));
        message_->setText(
            tr("Opens the floating palette near your pointer so you can format clipboard text."));
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
        tr("You're Ready!"), tr("Glyphmill is now available from the system tray."), true, this));
    QVBoxLayout *rows = stack(layout, this, 12);
    paletteRow_ =
        new WelcomeFeatureRow(QStringLiteral("input-keyboard"), tr("Floating Palette"), QString(), this);
    rows->addWidget(paletteRow_);
    rows->addWidget(new WelcomeFeatureRow(
        QStringLiteral("user-desktop"), tr("System Tray Tools"),
        tr("Format clipboard text, capture text from your screen, and access additional utilities."), this));
    rows->addWidget(new WelcomeFeatureRow(
        QStringLiteral("preferences-system"), tr("Make It Yours"),
        tr("Customize Protected Terms, shortcuts, and preferences in Settings."), this));
    layout->addWidget(welcomeStyle::label(
        tr("Glyphmill runs quietly in the system tray, even when its windows are closed."),
        TextStyle::callout, true, this));

    connect(&context_.settings, &AppSettings::paletteShortcutChanged, this, &ReadyPage::refresh);
    connect(&context_.settings, &AppSettings::paletteShortcutRegistrationFailedChanged, this,
            &ReadyPage::refresh);
    refresh();
}

void ReadyPage::refresh() {
    if (context_.settings.paletteShortcutRegistrationFailed()) {
        paletteRow_->setMessage(tr("Open the floating palette from the Glyphmill menu to format "
                                   "clipboard text. To change a selection in place, use the "
                                   "glyphmill service command."));
        return;
    }
    paletteRow_->setMessage(
        tr("Press %1 to format clipboard text. To change a selection in place, use the "
           "glyphmill service command.")
            .arg(text(displayString(context_.settings.shortcut(KeyboardShortcutID::palette)))));
}

QString ReadyPage::paletteRowMessage() const {
    return paletteRow_->message();
}

} // namespace glyphmill

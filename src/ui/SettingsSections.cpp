#include "ui/SettingsSections.h"

#include "platform/PlatformServices.h"
#include "platform/UrlOpener.h"
#include "settings/AppSettings.h"
#include "ui/ShortcutRecorder.h"
#include "ui/WelcomeGuideStyle.h"
#include "ui/WindowActions.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include <utility>

namespace glyphmill {

namespace {

using BoolGetter = bool (AppSettings::*)() const;
using BoolSetter = void (AppSettings::*)(bool);
using BoolSignal = void (AppSettings::*)(bool);

QString chordText(const AppSettings &settings, KeyboardShortcutID id) {
    const auto text = displayString(settings.shortcut(id));
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

// Secondary-colour text, a little smaller than the body, wrapped to the form's width.
QLabel *secondaryLabel(const QString &text, qreal scale, QWidget *parent) {
    auto *label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    QFont font = label->font();
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * scale);
        label->setFont(font);
    }
    welcomeStyle::makeSecondary(*label);
    return label;
}

QColor mix(const QColor &from, const QColor &to, double amount) {
    const auto channel = [amount](int a, int b) { return static_cast<int>(a + (b - a) * amount + 0.5); };
    return QColor(channel(from.red(), to.red()), channel(from.green(), to.green()),
                  channel(from.blue(), to.blue()));
}

// A rounded panel holding one section's controls. Light themes get the text background; dark
// themes a shade lighter than the window, so controls drawn on the (darker) base colour, such as
// check boxes, still stand out. Painted from the current palette, so theme switches follow.
class SectionPanel final : public QFrame {
public:
    using QFrame::QFrame;

protected:
    void paintEvent(QPaintEvent *) override {
        const QPalette &colours = palette();
        const QColor window = colours.color(QPalette::Window);
        const QColor base = colours.color(QPalette::Base);
        const QColor fill = base.lightness() > window.lightness()
                                ? base
                                : mix(window, colours.color(QPalette::WindowText), 0.06);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(welcomeStyle::separatorColour(colours, 0.16), 1));
        painter.setBrush(fill);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
    }
};

class FormBuilder {
public:
    FormBuilder(const SettingsFormContext &context, QWidget *form)
        : context_(context), settings_(context.settings), form_(form), layout_(new QVBoxLayout(form)) {
        layout_->setContentsMargins(16, 14, 16, 16);
        layout_->setSpacing(6);
    }

    // Header, then the group that the following controls go into.
    void beginSection(const QString &header) {
        if (layout_->count() > 0)
            layout_->addSpacing(14);
        auto *title = new QLabel(header, form_);
        QFont font = title->font();
        font.setBold(true);
        title->setFont(font);
        title->setAccessibleName(header);
        layout_->addWidget(title);
        group_ = new SectionPanel(form_);
        groupLayout_ = new QVBoxLayout(group_);
        groupLayout_->setContentsMargins(12, 10, 12, 10);
        groupLayout_->setSpacing(8);
        layout_->addWidget(group_);
    }

    QLabel *footer(const QString &text, const QString &objectName) {
        auto *label = secondaryLabel(text, 0.9, form_);
        label->setObjectName(objectName);
        layout_->addWidget(label);
        return label;
    }

    QCheckBox *toggle(const QString &title, const QString &accessibleName, BoolGetter get, BoolSetter set,
                      BoolSignal changed) {
        auto *box = new QCheckBox(title, group_);
        box->setAccessibleName(accessibleName);
        box->setChecked((settings_.*get)());
        AppSettings *settings = &settings_;
        QObject::connect(box, &QCheckBox::toggled, box, [settings, set](bool on) { (settings->*set)(on); });
        QObject::connect(settings, changed, box, [box](bool on) { box->setChecked(on); });
        groupLayout_->addWidget(box);
        return box;
    }

    QPushButton *button(const QString &title, std::function<void()> action) {
        auto *pushButton = new QPushButton(title, group_);
        pushButton->setAccessibleName(title);
        QObject::connect(pushButton, &QPushButton::clicked, pushButton, [action = std::move(action)] {
            if (action)
                action();
        });
        auto *row = new QHBoxLayout;
        row->addWidget(pushButton);
        row->addStretch(1);
        groupLayout_->addLayout(row);
        return pushButton;
    }

    void recorderRow(const QString &title, KeyboardShortcutID id) {
        groupLayout_->addWidget(new ShortcutRecorderRow(title, id, settings_, context_.monitor, group_));
    }

    // Shown only while the flag is raised.
    void failureNote(const QString &text, const QString &objectName, BoolGetter flag, BoolSignal changed) {
        auto *note = secondaryLabel(text, 0.82, group_);
        note->setObjectName(objectName);
        note->setVisible((settings_.*flag)());
        QObject::connect(&settings_, changed, note, [note](bool raised) { note->setVisible(raised); });
        groupLayout_->addWidget(note);
    }

    QWidget *addToGroup(QWidget *widget) {
        widget->setParent(group_);
        groupLayout_->addWidget(widget);
        return widget;
    }

    // A button styled as a link; disabled when it has nowhere to go.
    void link(const QString &title, const QString &accessibleName, const QString &hint, std::string address) {
        auto *linkButton = welcomeStyle::linkButton(title, group_);
        linkButton->setAccessibleName(accessibleName);
        if (!hint.isEmpty())
            linkButton->setAccessibleDescription(hint);
        linkButton->setEnabled(!address.empty());
        QObject::connect(linkButton, &QPushButton::clicked, linkButton,
                         [address = std::move(address)] { installedUrlOpener().openUrl(address); });
        auto *row = new QHBoxLayout;
        row->addWidget(linkButton);
        row->addStretch(1);
        groupLayout_->addLayout(row);
    }

    void finish() { layout_->addStretch(1); }

    const SettingsFormContext &context_;
    AppSettings &settings_;
    QWidget *form_;
    QVBoxLayout *layout_;
    QFrame *group_ = nullptr;
    QVBoxLayout *groupLayout_ = nullptr;
};

QString generalFooterText(const AppSettings &settings) {
    return QCoreApplication::translate("glyphmill::SettingsWindow",
                                       "Automatically Clear Formatting replaces copied rich text with plain "
                                       "text. %1 applies Title Case to the clipboard. %2 opens the floating "
                                       "palette. %3 captures text from the screen.")
        .arg(chordText(settings, KeyboardShortcutID::titleCase),
             chordText(settings, KeyboardShortcutID::palette),
             chordText(settings, KeyboardShortcutID::screenCapture));
}

QString screenCaptureFooterText(const AppSettings &settings) {
    return QCoreApplication::translate("glyphmill::SettingsWindow",
                                       "Press %1 and drag to copy text visible on screen, including images. "
                                       "This uses Screen Recording only for that capture. Recognition stays "
                                       "on this computer and is not retained.")
        .arg(chordText(settings, KeyboardShortcutID::screenCapture));
}

void buildGeneral(FormBuilder &form) {
    auto &settings = form.settings_;
    ProtectedTermsStore *terms = &form.context_.terms;
    form.beginSection(QCoreApplication::translate("glyphmill::SettingsWindow", "General"));
    form.toggle(QCoreApplication::translate("glyphmill::SettingsWindow", "Launch at Login"),
                QCoreApplication::translate("glyphmill::SettingsWindow", "Launch Glyphmill at login"),
                &AppSettings::launchAtLogin, &AppSettings::setLaunchAtLogin,
                &AppSettings::launchAtLoginChanged);
    form.toggle(QCoreApplication::translate("glyphmill::SettingsWindow", "Automatically Clear Formatting"),
                QCoreApplication::translate("glyphmill::SettingsWindow",
                                            "Automatically clear formatting from the clipboard"),
                &AppSettings::automaticallyClearFormatting, &AppSettings::setAutomaticallyClearFormatting,
                &AppSettings::automaticallyClearFormattingChanged);
    form.button(QCoreApplication::translate("glyphmill::SettingsWindow", "Show Welcome Guide"), [terms] {
        if (const auto &show = windowActions().showWelcomeGuide)
            show(terms);
    });
    auto *footer = form.footer(generalFooterText(settings), QStringLiteral("generalFooter"));
    const auto update = [footer, &settings] { footer->setText(generalFooterText(settings)); };
    for (auto changed : {&AppSettings::titleCaseShortcutChanged, &AppSettings::paletteShortcutChanged,
                         &AppSettings::screenCaptureShortcutChanged})
        QObject::connect(&settings, changed, footer, update);
}

void buildKeyboardShortcuts(FormBuilder &form) {
    auto &monitor = form.context_.monitor;
    auto &settings = form.settings_;
    form.beginSection(QCoreApplication::translate("glyphmill::SettingsWindow", "Keyboard Shortcuts"));
    form.recorderRow(QCoreApplication::translate("glyphmill::SettingsWindow", "Floating Palette"),
                     KeyboardShortcutID::palette);
    form.recorderRow(QCoreApplication::translate("glyphmill::SettingsWindow", "Title Case"),
                     KeyboardShortcutID::titleCase);
    form.recorderRow(QCoreApplication::translate("glyphmill::SettingsWindow", "Capture Text from Screen"),
                     KeyboardShortcutID::screenCapture);
    const auto allCaps = QCoreApplication::translate("glyphmill::SettingsWindow",
                                                     "Apply Smart Case when captured text is ALL CAPS");
    form.toggle(allCaps, allCaps, &AppSettings::applySmartCaseToAllCapsCaptures,
                &AppSettings::setApplySmartCaseToAllCapsCaptures,
                &AppSettings::applySmartCaseToAllCapsCapturesChanged);
    form.recorderRow(QCoreApplication::translate("glyphmill::SettingsWindow", "Paste as Plain Text"),
                     KeyboardShortcutID::pastePlainText);
    form.button(QCoreApplication::translate("glyphmill::SettingsWindow", "Restore Default Shortcuts"),
                [&monitor, &settings] {
                    monitor.endRecording();
                    settings.restoreDefaultShortcuts();
                });
    form.failureNote(
        QCoreApplication::translate(
            "glyphmill::SettingsWindow",
            "The floating palette shortcut could not be registered because another app may be using it."),
        QStringLiteral("paletteShortcutNote"), &AppSettings::paletteShortcutRegistrationFailed,
        &AppSettings::paletteShortcutRegistrationFailedChanged);
    form.failureNote(
        QCoreApplication::translate(
            "glyphmill::SettingsWindow",
            "The Title Case shortcut could not be registered because another app may be using it."),
        QStringLiteral("titleCaseShortcutNote"), &AppSettings::titleCaseShortcutRegistrationFailed,
        &AppSettings::titleCaseShortcutRegistrationFailedChanged);
    form.failureNote(
        QCoreApplication::translate(
            "glyphmill::SettingsWindow",
            "The screen capture shortcut could not be registered because another app may be using it."),
        QStringLiteral("screenCaptureShortcutNote"), &AppSettings::screenCaptureShortcutRegistrationFailed,
        &AppSettings::screenCaptureShortcutRegistrationFailedChanged);
    form.failureNote(QCoreApplication::translate(
                         "glyphmill::SettingsWindow",
                         "The Paste as Plain Text shortcut could not be registered because another "
                         "app may be using it."),
                     QStringLiteral("pastePlainTextShortcutNote"),
                     &AppSettings::pastePlainTextShortcutRegistrationFailed,
                     &AppSettings::pastePlainTextShortcutRegistrationFailedChanged);
    form.footer(QCoreApplication::translate(
                    "glyphmill::SettingsWindow",
                    "Click a shortcut, then press a new combination. Combinations must include "
                    "Super, Ctrl, or Alt. Press Delete to restore that shortcut’s default."),
                QStringLiteral("keyboardShortcutsFooter"));
}

void buildSmartCase(FormBuilder &form) {
    struct Switch {
        const char *title;
        BoolGetter get;
        BoolSetter set;
        BoolSignal changed;
    };
    const Switch switches[] = {
        {QT_TRANSLATE_NOOP("glyphmill::SettingsWindow", "Preserve protected terms"),
         &AppSettings::preserveProtectedTerms, &AppSettings::setPreserveProtectedTerms,
         &AppSettings::preserveProtectedTermsChanged},
        {QT_TRANSLATE_NOOP("glyphmill::SettingsWindow", "Preserve URLs"), &AppSettings::preserveURLs,
         &AppSettings::setPreserveURLs, &AppSettings::preserveURLsChanged},
        {QT_TRANSLATE_NOOP("glyphmill::SettingsWindow", "Preserve email addresses"),
         &AppSettings::preserveEmails, &AppSettings::setPreserveEmails, &AppSettings::preserveEmailsChanged},
        {QT_TRANSLATE_NOOP("glyphmill::SettingsWindow", "Preserve file paths"),
         &AppSettings::preserveFilePaths, &AppSettings::setPreserveFilePaths,
         &AppSettings::preserveFilePathsChanged},
        {QT_TRANSLATE_NOOP("glyphmill::SettingsWindow", "Preserve hashtags and mentions"),
         &AppSettings::preserveHashtagsAndMentions, &AppSettings::setPreserveHashtagsAndMentions,
         &AppSettings::preserveHashtagsAndMentionsChanged},
        {QT_TRANSLATE_NOOP("glyphmill::SettingsWindow", "Correct all-uppercase prose"),
         &AppSettings::correctAllUppercaseProse, &AppSettings::setCorrectAllUppercaseProse,
         &AppSettings::correctAllUppercaseProseChanged},
    };
    form.beginSection(QCoreApplication::translate("glyphmill::SettingsWindow", "Smart Case"));
    for (const auto &each : switches) {
        const auto title = QCoreApplication::translate("glyphmill::SettingsWindow", each.title);
        form.toggle(title, title, each.get, each.set, each.changed);
    }
    form.footer(QCoreApplication::translate(
                    "glyphmill::SettingsWindow",
                    "Smart Case fixes inconsistent capitalization while protecting brands, links, and "
                    "similar spans."),
                QStringLiteral("smartCaseFooter"));
}

void buildScreenTextCapture(FormBuilder &form) {
    auto &settings = form.settings_;
    form.beginSection(QCoreApplication::translate("glyphmill::SettingsWindow", "Screen Text Capture"));
    form.button(QCoreApplication::translate("glyphmill::SettingsWindow", "Open Screen Recording Settings"),
                [] {
                    if (const auto &open = windowActions().openScreenRecordingSettings)
                        open();
                });
    auto *footer = form.footer(screenCaptureFooterText(settings), QStringLiteral("screenTextCaptureFooter"));
    QObject::connect(&settings, &AppSettings::screenCaptureShortcutChanged, footer,
                     [footer, &settings] { footer->setText(screenCaptureFooterText(settings)); });
}

void buildServices(FormBuilder &form) {
    form.beginSection(QCoreApplication::translate("glyphmill::SettingsWindow", "Services"));
    form.button(QCoreApplication::translate("glyphmill::SettingsWindow", "How to Use Services…"), [] {
        if (const auto &show = windowActions().showServicesHelp)
            show();
    });
    form.button(QCoreApplication::translate("glyphmill::SettingsWindow", "Open Services Shortcuts Settings"),
                [] {
                    if (const auto &open = windowActions().openKeyboardShortcutsSettings)
                        open();
                });
    form.footer(QCoreApplication::translate(
                    "glyphmill::SettingsWindow",
                    "Select text in an editor, then filter it through the glyphmill service command, "
                    "or send it to Glyphmill over D-Bus. Services work without special permissions."),
                QStringLiteral("servicesFooter"));
}

void buildProtectedTerms(FormBuilder &form) {
    form.beginSection(QCoreApplication::translate("glyphmill::SettingsWindow", "Protected Terms"));
    auto *open = new SettingsNavigationButton(
        QCoreApplication::translate("glyphmill::SettingsWindow", "Protected Terms…"),
        form.context_.showProtectedTermsList);
    open->setAccessibleName(QCoreApplication::translate("glyphmill::SettingsWindow", "Protected Terms"));
    open->setAccessibleDescription(
        QCoreApplication::translate("glyphmill::SettingsWindow", "Opens the list of protected terms"));
    form.addToGroup(open);
    form.footer(QCoreApplication::translate(
                    "glyphmill::SettingsWindow",
                    "Matching is case-insensitive. Converted text uses the spelling shown in the list."),
                QStringLiteral("protectedTermsFooter"));
}

void buildAbout(FormBuilder &form) {
    const auto &links = form.context_.links;
    form.beginSection(QCoreApplication::translate("glyphmill::SettingsWindow", "About"));
    auto *versionRow = new QWidget;
    auto *row = new QHBoxLayout(versionRow);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(
        new QLabel(QCoreApplication::translate("glyphmill::SettingsWindow", "Version"), versionRow));
    row->addStretch(1);
    auto *version = new QLabel(form.context_.version, versionRow);
    version->setObjectName(QStringLiteral("versionValue"));
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    row->addWidget(version);
    form.addToGroup(versionRow);
    form.addToGroup(secondaryLabel(
        QCoreApplication::translate("glyphmill::SettingsWindow",
                                    "Screen Text Capture is processed on this computer and is not retained."),
        0.9, nullptr));
    const auto review = QCoreApplication::translate("glyphmill::SettingsWindow",
                                                    "Love Glyphmill? Your review helps us grow!");
    form.link(review, review,
              QCoreApplication::translate("glyphmill::SettingsWindow",
                                          "Opens Glyphmill's review page so you can write a review"),
              links.reviewUrl);
    form.link(QCoreApplication::translate("glyphmill::SettingsWindow", "Feedback / Questions"),
              QCoreApplication::translate("glyphmill::SettingsWindow", "Send feedback or questions by email"),
              {}, links.feedbackAddress.empty() ? std::string() : "mailto:" + links.feedbackAddress);
    form.link(
        QCoreApplication::translate("glyphmill::SettingsWindow", "More Apps"),
        QCoreApplication::translate("glyphmill::SettingsWindow", "Visit Quillory website for more apps"), {},
        links.websiteUrl);
}

} // namespace

SettingsNavigationButton::SettingsNavigationButton(const QString &title, std::function<void()> action,
                                                   QWidget *parent)
    : QPushButton(title, parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    welcomeStyle::followPalette(*this, [](const QPalette &colours) {
        const QColor fill = colours.color(QPalette::Button);
        const QColor pressed = mix(fill, colours.color(QPalette::ButtonText), 0.12);
        return QStringLiteral("QPushButton { text-align: left; padding: 8px 12px; border-radius: 6px; "
                              "color: %1; background-color: %2; border: 1px solid %3; }"
                              "QPushButton:pressed { background-color: %4; }"
                              "QPushButton:focus { border-color: %5; }")
            .arg(welcomeStyle::cssColour(colours.color(QPalette::ButtonText)), welcomeStyle::cssColour(fill),
                 welcomeStyle::cssColour(welcomeStyle::separatorColour(colours, 0.35)),
                 welcomeStyle::cssColour(pressed),
                 welcomeStyle::cssColour(colours.color(QPalette::Highlight)));
    });
    connect(this, &QPushButton::clicked, this, [action = std::move(action)] {
        if (action)
            action();
    });
}

QWidget *buildSettingsForm(const SettingsFormContext &context) {
    auto *form = new QWidget;
    FormBuilder builder(context, form);
    buildGeneral(builder);
    buildKeyboardShortcuts(builder);
    buildSmartCase(builder);
    buildScreenTextCapture(builder);
    buildServices(builder);
    buildProtectedTerms(builder);
    buildAbout(builder);
    builder.finish();
    return form;
}

} // namespace glyphmill

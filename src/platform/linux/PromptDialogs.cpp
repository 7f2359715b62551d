#include "platform/linux/PromptDialogs.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QResizeEvent>
#include <QStyle>

#include <algorithm>

namespace glyphmill {

namespace {

// Where the texts of the alert and the prompts wrap, unless the prompt's control is wider.
constexpr int messageWrapWidth = 360;

QString toQString(std::u16string_view text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

void makeBold(QLabel *label) {
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
}

// The container of the Find & Replace prompt. Its five controls sit at fixed offsets from each
// other; rows take the height of their field so that each label's text is centred on its field.
class FindReplaceFields final : public QWidget {
public:
    static constexpr int panelWidth = 320;
    static constexpr int panelHeight = 94;
    static constexpr int labelWidth = 108;
    static constexpr int labelToField = 8;
    static constexpr int topMargin = 2;
    static constexpr int rowGap = 12;

    FindReplaceFields()
        : findLabel(new QLabel(QStringLiteral("Find:"), this)), findField(new QLineEdit(this)),
          replaceLabel(new QLabel(QStringLiteral("Replace With:"), this)), replaceField(new QLineEdit(this)),
          matchCaseBox(new QCheckBox(QStringLiteral("Match Case"), this)) {
        setFixedSize(panelWidth, panelHeight);
        findField->setPlaceholderText(QStringLiteral("Find"));
        replaceField->setPlaceholderText(QStringLiteral("Replace With"));
        for (QLabel *label : {findLabel, replaceLabel}) {
            label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
            label->setTextFormat(Qt::PlainText);
        }
        // Screen readers name each field after its label.
        findLabel->setBuddy(findField);
        replaceLabel->setBuddy(replaceField);
    }

    QLabel *findLabel;
    QLineEdit *findField;
    QLabel *replaceLabel;
    QLineEdit *replaceField;
    QCheckBox *matchCaseBox;

protected:
    void resizeEvent(QResizeEvent *event) override {
        QWidget::resizeEvent(event);
        placeControls();
    }
    void changeEvent(QEvent *event) override {
        QWidget::changeEvent(event);
        if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
            placeControls();
    }

private:
    void placeControls() {
        const int checkBoxHeight = matchCaseBox->sizeHint().height();
        const int fieldHeight = std::max(findField->sizeHint().height(), replaceField->sizeHint().height());
        const int labelHeight = std::max(findLabel->sizeHint().height(), replaceLabel->sizeHint().height());
        // A large font must not push the check box out of the container: rows give way first.
        const int roomPerRow = (panelHeight - topMargin - 2 * rowGap - checkBoxHeight) / 2;
        const int rowHeight = std::min(std::max(fieldHeight, labelHeight), roomPerRow);
        const int fieldLeft = labelWidth + labelToField;
        const int fieldWidth = panelWidth - fieldLeft;

        auto placeRow = [&](QLabel *label, QLineEdit *field, int top) {
            label->setGeometry(0, top, labelWidth, rowHeight);
            const int shownFieldHeight = std::min(fieldHeight, rowHeight);
            field->setGeometry(fieldLeft, top + (rowHeight - shownFieldHeight) / 2, fieldWidth,
                               shownFieldHeight);
        };
        placeRow(findLabel, findField, topMargin);
        const int replaceTop = topMargin + rowHeight + rowGap;
        placeRow(replaceLabel, replaceField, replaceTop);
        matchCaseBox->setGeometry(fieldLeft, replaceTop + rowHeight + rowGap,
                                  std::min(matchCaseBox->sizeHint().width(), fieldWidth), checkBoxHeight);
    }
};

} // namespace

QIcon applicationIcon() {
    QIcon icon = QGuiApplication::windowIcon();
    if (!icon.isNull())
        return icon;
    icon = QIcon::fromTheme(QStringLiteral("glyphmill"));
    if (!icon.isNull()) {
        QGuiApplication::setWindowIcon(icon);
        return icon;
    }
    return QApplication::style()->standardIcon(QStyle::SP_MessageBoxInformation);
}

std::unique_ptr<QMessageBox> makeAlertBox(std::u16string_view title, std::u16string_view message) {
    auto box = std::make_unique<QMessageBox>();
    box->setWindowModality(Qt::ApplicationModal);
    // The alert reports on something the user started elsewhere; it does not take the focus.
    box->setAttribute(Qt::WA_ShowWithoutActivating);
    box->setIcon(QMessageBox::Warning);
    box->setWindowTitle(toQString(title));
    box->setTextFormat(Qt::PlainText);
    box->setText(toQString(title));
    box->setInformativeText(toQString(message));
    box->setStandardButtons(QMessageBox::Ok);
    if (auto *titleLabel = box->findChild<QLabel *>(QStringLiteral("qt_msgbox_label")))
        makeBold(titleLabel);
    // QMessageBox sizes itself by the short title line and would wrap even a one-line message.
    if (auto *messageLabel = box->findChild<QLabel *>(QStringLiteral("qt_msgbox_informativelabel"))) {
        messageLabel->setTextFormat(Qt::PlainText);
        messageLabel->setMinimumWidth(
            std::min(messageLabel->fontMetrics().horizontalAdvance(messageLabel->text()), messageWrapWidth));
    }
    return box;
}

PromptDialog::PromptDialog(std::u16string_view title, std::u16string_view message, const QString &acceptTitle,
                           QWidget *control)
    : control_(control), acceptButton_(new QPushButton(acceptTitle, this)),
      cancelButton_(new QPushButton(QStringLiteral("Cancel"), this)) {
    setWindowModality(Qt::ApplicationModal);
    setWindowTitle(QGuiApplication::applicationDisplayName());

    const int iconSize = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    auto *iconLabel = new QLabel(this);
    iconLabel->setPixmap(applicationIcon().pixmap(iconSize, iconSize));
    iconLabel->setAlignment(Qt::AlignTop | Qt::AlignHCenter);

    const int textWidth = std::max(control->width(), messageWrapWidth);
    auto *titleLabel = new QLabel(toQString(title), this);
    auto *messageLabel = new QLabel(toQString(message), this);
    for (QLabel *label : {titleLabel, messageLabel}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setFixedWidth(textWidth);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    makeBold(titleLabel);

    acceptButton_->setDefault(true);
    cancelButton_->setAutoDefault(false);
    connect(acceptButton_, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancelButton_, &QPushButton::clicked, this, &QDialog::reject);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(acceptButton_);
    buttons->addWidget(cancelButton_);

    auto *grid = new QGridLayout(this);
    grid->setSizeConstraint(QLayout::SetFixedSize);
    grid->setHorizontalSpacing(16);
    grid->addWidget(iconLabel, 0, 0, 3, 1, Qt::AlignTop);
    grid->addWidget(titleLabel, 0, 1);
    grid->addWidget(messageLabel, 1, 1);
    grid->addWidget(control, 2, 1, Qt::AlignLeft);
    grid->setRowMinimumHeight(2, control->height() + 8);
    grid->addLayout(buttons, 3, 0, 1, 2);
}

void PromptDialog::bringToFront() {
    show();
    raise();
    activateWindow();
}

namespace {
QComboBox *makePopUp(const std::vector<std::u16string> &options) {
    auto *popUp = new QComboBox;
    popUp->setFixedSize(280, 26);
    popUp->setEditable(false);
    for (const auto &option : options)
        popUp->addItem(toQString(option));
    return popUp;
}

QLineEdit *makeField(std::u16string_view placeholder) {
    auto *field = new QLineEdit;
    field->setFixedSize(260, 24);
    field->setPlaceholderText(toQString(placeholder));
    return field;
}
} // namespace

ChoicePrompt::ChoicePrompt(std::u16string_view title, std::u16string_view message,
                           const std::vector<std::u16string> &options, std::ptrdiff_t defaultIndex)
    : PromptDialog(title, message, QStringLiteral("OK"), makePopUp(options)),
      popUp_(static_cast<QComboBox *>(control())) {
    const auto last = static_cast<std::ptrdiff_t>(options.size()) - 1;
    popUp_->setCurrentIndex(
        static_cast<int>(std::clamp<std::ptrdiff_t>(defaultIndex, 0, std::max<std::ptrdiff_t>(last, 0))));
    popUp_->setFocus();
}

ChoiceAnswer ChoicePrompt::answer() const {
    if (!accepted() || popUp_->currentIndex() < 0)
        return {0, true};
    return {popUp_->currentIndex(), false};
}

TextPrompt::TextPrompt(std::u16string_view title, std::u16string_view message,
                       std::u16string_view placeholder)
    : PromptDialog(title, message, QStringLiteral("OK"), makeField(placeholder)),
      field_(static_cast<QLineEdit *>(control())) {
    field_->setFocus();
}

std::optional<std::u16string> TextPrompt::answer() const {
    if (!accepted())
        return std::nullopt;
    return field_->text().toStdU16String();
}

FindReplacePrompt::FindReplacePrompt(bool replaceEnabled)
    : PromptDialog(u"Find & Replace Clipboard", u"Replace every matching occurrence in the clipboard text.",
                   QStringLiteral("Replace All"), new FindReplaceFields) {
    auto *fields = static_cast<FindReplaceFields *>(control());
    fieldsPanel_ = fields;
    findField_ = fields->findField;
    replaceField_ = fields->replaceField;
    matchCaseBox_ = fields->matchCaseBox;
    acceptButton()->setEnabled(replaceEnabled);
    findField_->setFocus();
}

std::optional<FindReplaceRequest> FindReplacePrompt::answer() const {
    if (!accepted())
        return std::nullopt;
    return FindReplaceRequest{findField_->text().toStdU16String(), replaceField_->text().toStdU16String(),
                              matchCaseBox_->isChecked()};
}

bool FindReplacePrompt::focusNextPrevChild(bool next) {
    const Qt::FocusReason reason = next ? Qt::TabFocusReason : Qt::BacktabFocusReason;
    if (focusWidget() == findField_) {
        replaceField_->setFocus(reason);
        return true;
    }
    if (focusWidget() == replaceField_) {
        findField_->setFocus(reason);
        return true;
    }
    return QDialog::focusNextPrevChild(next);
}

} // namespace glyphmill

#include "platform/linux/QtDialogs.h"

#include "platform/linux/PromptDialogs.h"

#include <QMessageBox>
#include <QPushButton>

namespace glyphmill {

namespace {
QString toQString(std::u16string_view text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}
} // namespace

void QtDialogs::showAlert(std::u16string_view title, std::u16string_view message) {
    makeAlertBox(title, message)->exec();
}

ChoiceAnswer QtDialogs::promptForChoice(std::u16string_view title, std::u16string_view message,
                                        const std::vector<std::u16string> &options,
                                        std::ptrdiff_t defaultIndex) {
    if (options.empty())
        return {0, true};
    ChoicePrompt prompt(title, message, options, defaultIndex);
    prompt.bringToFront();
    prompt.exec();
    return prompt.answer();
}

std::optional<std::u16string> QtDialogs::promptForText(std::u16string_view title, std::u16string_view message,
                                                       std::u16string_view placeholder) {
    TextPrompt prompt(title, message, placeholder);
    prompt.bringToFront();
    prompt.exec();
    return prompt.answer();
}

std::optional<FindReplaceRequest> QtDialogs::promptFindReplace(bool replaceEnabled) {
    FindReplacePrompt prompt(replaceEnabled);
    prompt.bringToFront();
    prompt.exec();
    return prompt.answer();
}

bool QtDialogs::confirm(std::u16string_view title, std::u16string_view message, std::u16string_view confirmTitle,
                        std::u16string_view cancelTitle) {
    auto box = makeAlertBox(title, message);
    box->setAttribute(Qt::WA_ShowWithoutActivating, false);
    const QIcon icon = applicationIcon();
    if (icon.isNull())
        box->setIcon(QMessageBox::Information);
    else
        box->setIconPixmap(icon.pixmap(64, 64));
    box->setStandardButtons(QMessageBox::NoButton);
    QPushButton *confirmButton = box->addButton(toQString(confirmTitle), QMessageBox::AcceptRole);
    box->addButton(toQString(cancelTitle), QMessageBox::RejectRole);
    box->setDefaultButton(confirmButton);
    box->show();
    box->raise();
    box->activateWindow();
    box->exec();
    return box->clickedButton() == confirmButton;
}

} // namespace glyphmill

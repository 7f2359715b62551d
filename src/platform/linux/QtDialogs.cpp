#include "platform/linux/QtDialogs.h"

#include "platform/linux/PromptDialogs.h"

#include <QMessageBox>

namespace glyphmill {

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

} // namespace glyphmill

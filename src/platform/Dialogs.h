// The modal conversations the clipboard commands have with the user: the warning alert and the
// three prompts. Every call blocks until the user answers.
#pragma once

#include "common/FindReplaceRequest.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glyphmill {

struct ChoiceAnswer {
    std::ptrdiff_t index = 0;
    bool cancelled = true;
    friend bool operator==(const ChoiceAnswer &, const ChoiceAnswer &) = default;
};

class Dialogs {
public:
    virtual ~Dialogs() = default;

    // Warning style, one "OK" button; the application is not brought to the front for it.
    virtual void showAlert(std::u16string_view title, std::u16string_view message) = 0;

    // The prompts show the application icon and bring the application to the front.
    // An empty option list answers (0, cancelled) without showing anything.
    virtual ChoiceAnswer promptForChoice(std::u16string_view title, std::u16string_view message,
                                         const std::vector<std::u16string> &options,
                                         std::ptrdiff_t defaultIndex) = 0;
    // The field's text exactly as typed on "OK", none on "Cancel".
    virtual std::optional<std::u16string> promptForText(std::u16string_view title,
                                                        std::u16string_view message,
                                                        std::u16string_view placeholder) = 0;
    virtual std::optional<FindReplaceRequest> promptFindReplace(bool replaceEnabled) = 0;
    // Informational alert with the application icon and two buttons, the confirming one first;
    // brings the application to the front. True when the confirming button was pressed.
    virtual bool confirm(std::u16string_view title, std::u16string_view message,
                         std::u16string_view confirmTitle, std::u16string_view cancelTitle) = 0;
};

} // namespace glyphmill

// The alert and the prompts as Qt dialogs. Each runs its own modal loop on the main thread, so
// the event loop keeps serving the clipboard and the tray while it is open.
#pragma once

#include "platform/Dialogs.h"

namespace glyphmill {

// Needs a QApplication; use it on the main thread only.
class QtDialogs final : public Dialogs {
public:
    void showAlert(std::u16string_view title, std::u16string_view message) override;
    ChoiceAnswer promptForChoice(std::u16string_view title, std::u16string_view message,
                                 const std::vector<std::u16string> &options,
                                 std::ptrdiff_t defaultIndex) override;
    std::optional<std::u16string> promptForText(std::u16string_view title, std::u16string_view message,
                                                std::u16string_view placeholder) override;
    std::optional<FindReplaceRequest> promptFindReplace(bool replaceEnabled) override;
    bool confirm(std::u16string_view title, std::u16string_view message, std::u16string_view confirmTitle,
                 std::u16string_view cancelTitle) override;
};

} // namespace glyphmill

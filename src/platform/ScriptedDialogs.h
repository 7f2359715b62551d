// Dialogs answered from a script, for tests: each prompt takes the next queued answer of its
// kind (cancel when none is queued), and every alert and prompt is recorded in order.
#pragma once

#include "platform/Dialogs.h"

#include <deque>

namespace glyphmill {

class ScriptedDialogs final : public Dialogs {
public:
    struct Shown {
        enum class Kind { alert, choice, text, findReplace, confirm } kind;
        std::u16string title;
        std::u16string message;
        std::vector<std::u16string> options; // choice; confirm: its two button titles
        std::ptrdiff_t defaultIndex = 0;     // choice only
        std::u16string placeholder;          // text only
        bool replaceEnabled = false;         // findReplace only
    };

    void showAlert(std::u16string_view title, std::u16string_view message) override;
    ChoiceAnswer promptForChoice(std::u16string_view title, std::u16string_view message,
                                 const std::vector<std::u16string> &options,
                                 std::ptrdiff_t defaultIndex) override;
    std::optional<std::u16string> promptForText(std::u16string_view title, std::u16string_view message,
                                                std::u16string_view placeholder) override;
    std::optional<FindReplaceRequest> promptFindReplace(bool replaceEnabled) override;
    bool confirm(std::u16string_view title, std::u16string_view message, std::u16string_view confirmTitle,
                 std::u16string_view cancelTitle) override;

    void answerChoice(std::ptrdiff_t index) { choices_.push_back({index, false}); }
    void answerText(std::u16string text) { texts_.emplace_back(std::move(text)); }
    void cancelText() { texts_.emplace_back(std::nullopt); }
    void answerFindReplace(FindReplaceRequest request) { findReplaces_.emplace_back(std::move(request)); }
    void answerConfirm(bool confirmed) { confirms_.push_back(confirmed); }

    const std::vector<Shown> &shown() const { return shown_; }
    // The messages of the alerts shown so far, in order.
    std::vector<std::u16string> alertMessages() const;

private:
    std::deque<ChoiceAnswer> choices_;
    std::deque<std::optional<std::u16string>> texts_;
    std::deque<std::optional<FindReplaceRequest>> findReplaces_;
    std::deque<bool> confirms_;
    std::vector<Shown> shown_;
};

} // namespace glyphmill

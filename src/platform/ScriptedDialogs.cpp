#include "platform/ScriptedDialogs.h"

namespace glyphmill {

namespace {
template <typename Answer> Answer takeFront(std::deque<Answer> &queue, Answer whenEmpty) {
    if (queue.empty())
        return whenEmpty;
    Answer answer = std::move(queue.front());
    queue.pop_front();
    return answer;
}
} // namespace

void ScriptedDialogs::showAlert(std::u16string_view title, std::u16string_view message) {
    shown_.push_back({Shown::Kind::alert, std::u16string(title), std::u16string(message), {}, 0, {}, false});
}

ChoiceAnswer ScriptedDialogs::promptForChoice(std::u16string_view title, std::u16string_view message,
                                              const std::vector<std::u16string> &options,
                                              std::ptrdiff_t defaultIndex) {
    if (options.empty())
        return {0, true};
    shown_.push_back({Shown::Kind::choice,
                      std::u16string(title),
                      std::u16string(message),
                      options,
                      defaultIndex,
                      {},
                      false});
    return takeFront(choices_, ChoiceAnswer{0, true});
}

std::optional<std::u16string> ScriptedDialogs::promptForText(std::u16string_view title,
                                                             std::u16string_view message,
                                                             std::u16string_view placeholder) {
    shown_.push_back({Shown::Kind::text,
                      std::u16string(title),
                      std::u16string(message),
                      {},
                      0,
                      std::u16string(placeholder),
                      false});
    return takeFront(texts_, std::optional<std::u16string>{});
}

std::optional<FindReplaceRequest> ScriptedDialogs::promptFindReplace(bool replaceEnabled) {
    shown_.push_back({Shown::Kind::findReplace, {}, {}, {}, 0, {}, replaceEnabled});
    return takeFront(findReplaces_, std::optional<FindReplaceRequest>{});
}

std::vector<std::u16string> ScriptedDialogs::alertMessages() const {
    std::vector<std::u16string> messages;
    for (const auto &entry : shown_)
        if (entry.kind == Shown::Kind::alert)
            messages.push_back(entry.message);
    return messages;
}

bool ScriptedDialogs::confirm(std::u16string_view title, std::u16string_view message,
                              std::u16string_view confirmTitle, std::u16string_view cancelTitle) {
    shown_.push_back({Shown::Kind::confirm,
                      std::u16string(title),
                      std::u16string(message),
                      {std::u16string(confirmTitle), std::u16string(cancelTitle)},
                      0,
                      {},
                      false});
    return takeFront(confirms_, false);
}

} // namespace glyphmill

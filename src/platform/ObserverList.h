// Callbacks registered under tokens. Calling them goes by token, so that an observer may add or
// remove observers (itself included) while being called: one removed meanwhile is not called,
// one added meanwhile waits for the next call.
#pragma once

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace glyphmill {

template <typename... Arguments> class ObserverList {
public:
    using Observer = std::function<void(Arguments...)>;

    int add(Observer observer) {
        const int token = nextToken_++;
        observers_.emplace_back(token, std::move(observer));
        return token;
    }

    void remove(int token) {
        std::erase_if(observers_, [token](const auto &entry) { return entry.first == token; });
    }

    void notify(const Arguments &...arguments) const {
        std::vector<int> tokens;
        tokens.reserve(observers_.size());
        for (const auto &entry : observers_)
            tokens.push_back(entry.first);
        for (int token : tokens) {
            auto found = std::find_if(observers_.begin(), observers_.end(),
                                      [token](const auto &entry) { return entry.first == token; });
            if (found == observers_.end())
                continue;
            const Observer observer = found->second; // survives its own removal during the call
            observer(arguments...);
        }
    }

private:
    std::vector<std::pair<int, Observer>> observers_;
    int nextToken_ = 1;
};

} // namespace glyphmill

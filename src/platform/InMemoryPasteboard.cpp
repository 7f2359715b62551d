#include "platform/InMemoryPasteboard.h"

#include "common/Utf8.h"

#include <algorithm>

namespace glyphmill {

std::vector<std::string> InMemoryPasteboard::types() const {
    std::vector<std::string> names;
    for (const auto &[type, bytes] : representations_)
        names.push_back(type);
    return names;
}

std::optional<PasteboardData> InMemoryPasteboard::data(std::string_view type) const {
    for (const auto &[held, bytes] : representations_)
        if (held == type)
            return bytes;
    return std::nullopt;
}

std::optional<std::u16string> InMemoryPasteboard::string(std::string_view type) const {
    auto bytes = data(type);
    if (!bytes)
        return std::nullopt;
    return utf8::decodeLossy(std::string_view(reinterpret_cast<const char *>(bytes->data()), bytes->size()));
}

bool InMemoryPasteboard::clearContents() {
    ++writeCount_;
    if (refusesWrites_)
        return false;
    representations_.clear();
    ++changeCount_;
    return true;
}

bool InMemoryPasteboard::setString(std::u16string_view text, std::string_view type) {
    ++writeCount_;
    if (refusesWrites_)
        return false;
    std::string encoded = utf8::encode(text);
    setData(PasteboardData(encoded.begin(), encoded.end()), type);
    return true;
}

void InMemoryPasteboard::setData(PasteboardData bytes, std::string_view type) {
    auto held = std::find_if(representations_.begin(), representations_.end(),
                             [&](const auto &entry) { return entry.first == type; });
    if (held != representations_.end())
        held->second = std::move(bytes);
    else
        representations_.emplace_back(std::string(type), std::move(bytes));
    ++changeCount_;
}

void InMemoryPasteboard::copyFromOtherApplication(
    std::vector<std::pair<std::string, PasteboardData>> representations) {
    representations_ = std::move(representations);
    ++changeCount_;
}

void InMemoryPasteboard::copyTextFromOtherApplication(std::u16string_view text) {
    std::string encoded = utf8::encode(text);
    representations_.assign(
        1, {std::string(pasteboardType::plainText), PasteboardData(encoded.begin(), encoded.end())});
    ++changeCount_;
}

} // namespace glyphmill

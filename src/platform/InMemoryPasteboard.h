// A clipboard that lives in memory, for tests: it holds typed strings and data the way another
// program would have put them there, and counts changes like the real one.
#pragma once

#include "platform/Pasteboard.h"

#include <utility>

namespace glyphmill {

class InMemoryPasteboard final : public Pasteboard {
public:
    std::vector<std::string> types() const override;
    std::optional<std::u16string> string(std::string_view type) const override;
    std::optional<PasteboardData> data(std::string_view type) const override;
    bool clearContents() override;
    bool setString(std::u16string_view text, std::string_view type) override;
    std::int64_t changeCount() const override { return changeCount_; }

    // What another application does when the user copies: replace everything at once.
    void copyFromOtherApplication(std::vector<std::pair<std::string, PasteboardData>> representations);
    void copyTextFromOtherApplication(std::u16string_view text);
    void setData(PasteboardData bytes, std::string_view type);
    static PasteboardData bytes(std::string_view text) { return PasteboardData(text.begin(), text.end()); }

    // Calls of clearContents and setString, for tests that check nothing was written.
    int writeCount() const { return writeCount_; }
    // While refusing, clearContents and setString change nothing and answer false, as when the
    // window system gives the clipboard to someone else.
    void setRefusesWrites(bool refuses) { refusesWrites_ = refuses; }

private:
    // Kept in the order they were put there, as a real clipboard lists them.
    std::vector<std::pair<std::string, PasteboardData>> representations_;
    std::int64_t changeCount_ = 0;
    int writeCount_ = 0;
    bool refusesWrites_ = false;
};

} // namespace glyphmill

// The texts of the most recent screen captures, newest first, kept across restarts as JSON in
// the preference store and written through on every change. A capture is added to the stored
// list as it is at that moment, and a list changed elsewhere is taken in when the preference
// store announces it.
#pragma once

#include "platform/PreferenceStore.h"

#include <QObject>
#include <QUuid>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glyphmill {

struct CaptureHistoryItem {
    QUuid id;
    std::u16string text;
    // Seconds since 2001-01-01 00:00:00 UTC, the reference date of the stored form.
    double capturedAt = 0;

    friend bool operator==(const CaptureHistoryItem &, const CaptureHistoryItem &) = default;
};

class CaptureHistory final : public QObject {
    Q_OBJECT

public:
    using Clock = std::function<double()>;

    static constexpr std::string_view preferenceKey = "captureHistory.items";
    static constexpr std::size_t maxItems = 10;
    static constexpr std::size_t menuTitleLimit = 56;

    // Loads the stored list at once. The clock gives the current time as seconds since the
    // reference date; tests pass their own.
    explicit CaptureHistory(PreferenceStore &userDefaults, Clock now = currentTime,
                            QObject *parent = nullptr);
    ~CaptureHistory() override;

    // Made on first use from the installed platform services; never destroyed.
    static CaptureHistory &shared();

    static double currentTime();

    const std::vector<CaptureHistoryItem> &items() const { return items_; }

    // A stored value that cannot be read in full gives an empty list and stays as it is.
    void load();
    void save();
    // Blank texts are ignored; an equal text already listed moves to the top as a new item.
    void add(std::u16string_view text);
    std::optional<std::u16string> textForID(const QUuid &id) const;
    // Writes nothing when the list is already empty.
    void clear();

    // The text on one line, runs of white space as one space, cut to limit characters
    // (grapheme clusters) with a final "…"; "Captured Text" when nothing is left.
    static std::u16string menuTitle(std::u16string_view text, std::size_t limit);

signals:
    void itemsChanged();

private:
    void setItems(std::vector<CaptureHistoryItem> items);

    void followStoredItems();

    PreferenceStore &userDefaults_;
    Clock now_;
    std::vector<CaptureHistoryItem> items_;
    int storeObserverToken_ = 0;
};

} // namespace glyphmill

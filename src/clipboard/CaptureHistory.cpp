#include "clipboard/CaptureHistory.h"

#include "clipboard/text/TextClasses.h"
#include "common/Utf8.h"
#include "platform/PlatformServices.h"
#include "transform/TextModel.h"

#include <QLatin1StringView>

#include <nlohmann/json.hpp>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace glyphmill {

namespace {

using OrderedJson = nlohmann::ordered_json;

// 2001-01-01 00:00:00 UTC in seconds since the Unix epoch.
constexpr double referenceDateInUnixSeconds = 978307200.0;

constexpr std::u16string_view emptyMenuTitle = u"Captured Text";
constexpr char16_t ellipsis = u'\u2026';

icu::UnicodeString aliasOf(std::u16string_view text) {
    return icu::UnicodeString(false, text.data(), int32_t(text.size()));
}

// Equal under canonical equivalence: a composed "é" equals "e" and a combining acute accent.
bool canonicallyEqual(std::u16string_view a, std::u16string_view b) {
    if (a == b)
        return true;
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *nfd = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status))
        return false;
    const icu::UnicodeString decomposedA = nfd->normalize(aliasOf(a), status);
    const icu::UnicodeString decomposedB = nfd->normalize(aliasOf(b), status);
    return U_SUCCESS(status) && decomposedA == decomposedB;
}

// 32 hexadecimal digits in groups of 8-4-4-4-12, in either letter case, as written by UUID
// formatters everywhere; braces and other spellings QUuid would take are refused.
bool isUuidText(std::string_view text) {
    if (text.size() != 36)
        return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool isHyphenPosition = i == 8 || i == 13 || i == 18 || i == 23;
        const bool isHexDigit = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
        if (isHyphenPosition ? c != '-' : !isHexDigit)
            return false;
    }
    return true;
}

std::optional<CaptureHistoryItem> decodeItem(const nlohmann::json &element) {
    if (!element.is_object())
        return std::nullopt;
    const auto id = element.find("id");
    const auto text = element.find("text");
    const auto capturedAt = element.find("capturedAt");
    if (id == element.end() || !id->is_string() || text == element.end() || !text->is_string() ||
        capturedAt == element.end() || !capturedAt->is_number())
        return std::nullopt;

    const auto &idText = id->get_ref<const std::string &>();
    if (!isUuidText(idText))
        return std::nullopt;
    CaptureHistoryItem item;
    item.id = QUuid::fromString(QLatin1StringView(idText.data(), qsizetype(idText.size())));
    if (utf8::decode(text->get_ref<const std::string &>(), item.text))
        return std::nullopt;
    item.capturedAt = capturedAt->get<double>();
    if (!std::isfinite(item.capturedAt))
        return std::nullopt;
    return item;
}

// None when any part of the value is not a list of complete items.
std::optional<std::vector<CaptureHistoryItem>> decodeItems(const PreferenceData &bytes) {
    const nlohmann::json document = nlohmann::json::parse(bytes.begin(), bytes.end(), nullptr, false);
    if (document.is_discarded() || !document.is_array())
        return std::nullopt;
    std::vector<CaptureHistoryItem> items;
    items.reserve(document.size());
    for (const auto &element : document) {
        auto item = decodeItem(element);
        if (!item)
            return std::nullopt;
        items.push_back(std::move(*item));
    }
    return items;
}

// None when a text cannot be written as UTF-8 (an unpaired surrogate).
std::optional<std::string> encodeItems(const std::vector<CaptureHistoryItem> &items) {
    OrderedJson document = OrderedJson::array();
    for (const CaptureHistoryItem &item : items) {
        std::string text;
        if (!utf8::encodeStrict(item.text, text))
            return std::nullopt;
        OrderedJson element = OrderedJson::object();
        element["id"] = item.id.toString(QUuid::WithoutBraces).toUpper().toStdString();
        element["text"] = std::move(text);
        element["capturedAt"] = item.capturedAt;
        document.push_back(std::move(element));
    }
    try {
        return document.dump();
    } catch (const nlohmann::json::exception &) {
        return std::nullopt;
    }
}

// A stored value that cannot be read in full gives an empty list.
std::vector<CaptureHistoryItem> storedItems(const std::optional<PreferenceValue> &stored) {
    std::vector<CaptureHistoryItem> items;
    if (const auto *bytes = stored ? std::get_if<PreferenceData>(&*stored) : nullptr)
        if (auto decoded = decodeItems(*bytes))
            items = std::move(*decoded);
    if (items.size() > CaptureHistory::maxItems)
        items.resize(CaptureHistory::maxItems);
    return items;
}

} // namespace

CaptureHistory::CaptureHistory(PreferenceStore &userDefaults, Clock now, QObject *parent)
    : QObject(parent), userDefaults_(userDefaults), now_(std::move(now)) {
    load();
    storeObserverToken_ = userDefaults_.addObserver([this] { followStoredItems(); });
}

CaptureHistory::~CaptureHistory() {
    userDefaults_.removeObserver(storeObserverToken_);
}

CaptureHistory &CaptureHistory::shared() {
    static CaptureHistory *instance = new CaptureHistory(*platformServices().preferences);
    return *instance;
}

double CaptureHistory::currentTime() {
    const std::chrono::duration<double> sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return sinceEpoch.count() - referenceDateInUnixSeconds;
}

void CaptureHistory::load() {
    setItems(storedItems(userDefaults_.value(preferenceKey)));
}

void CaptureHistory::followStoredItems() {
    auto items = storedItems(userDefaults_.value(preferenceKey));
    if (items != items_)
        setItems(std::move(items));
}

void CaptureHistory::save() {
    if (auto encoded = encodeItems(items_))
        userDefaults_.setValue(preferenceKey, PreferenceData(encoded->begin(), encoded->end()));
}

void CaptureHistory::add(std::u16string_view text) {
    if (textClasses::isBlank(text))
        return;
    const CaptureHistoryItem added{QUuid::createUuid(), std::u16string(text), now_()};
    std::vector<CaptureHistoryItem> items;
    userDefaults_.updateValue(preferenceKey, [&](const std::optional<PreferenceValue> &stored) {
        items = storedItems(stored);
        std::erase_if(items,
                      [text](const CaptureHistoryItem &item) { return canonicallyEqual(item.text, text); });
        items.insert(items.begin(), added);
        if (items.size() > maxItems)
            items.resize(maxItems);
        // A text that cannot be stored is still listed until the program ends.
        auto encoded = encodeItems(items);
        return encoded ? std::optional<PreferenceValue>(PreferenceData(encoded->begin(), encoded->end()))
                       : std::nullopt;
    });
    setItems(std::move(items));
}

std::optional<std::u16string> CaptureHistory::textForID(const QUuid &id) const {
    const auto found = std::find_if(items_.begin(), items_.end(),
                                    [&id](const CaptureHistoryItem &item) { return item.id == id; });
    if (found == items_.end())
        return std::nullopt;
    return found->text;
}

void CaptureHistory::clear() {
    if (items_.empty())
        return;
    setItems({});
    save();
}

std::u16string CaptureHistory::menuTitle(std::u16string_view text, std::size_t limit) {
    std::u16string collapsed;
    bool pendingSpace = false;
    for (std::size_t i = 0; i < text.size();) {
        const char32_t codePoint = text::codePointAt(text, i);
        const std::size_t length = text::codeUnitCount(codePoint);
        if (textClasses::hasWhiteSpaceProperty(codePoint)) {
            pendingSpace = !collapsed.empty();
        } else {
            if (pendingSpace)
                collapsed.push_back(u' ');
            pendingSpace = false;
            collapsed.append(text.substr(i, length));
        }
        i += length;
    }
    if (collapsed.empty())
        return std::u16string(emptyMenuTitle);
    if (text::graphemeCount(collapsed) <= limit)
        return collapsed;

    const std::size_t kept = limit > 0 ? limit - 1 : 0;
    const text::GraphemeCursor cursor(collapsed);
    std::size_t end = 0;
    for (std::size_t count = 0; count < kept; ++count)
        end = cursor.next(end);
    collapsed.resize(end);
    collapsed.push_back(ellipsis);
    return collapsed;
}

void CaptureHistory::setItems(std::vector<CaptureHistoryItem> items) {
    items_ = std::move(items);
    emit itemsChanged();
}

} // namespace glyphmill

#include "Corpus.h"

#include "CorpusVocabulary.h"
#include "SeededRandom.h"

#include "common/Utf8.h"
#include "settings/preferences/ProtectedTermsStore.h"

#include <unicode/ucasemap.h>

#include <cstdint>
#include <memory>
#include <set>
#include <stdexcept>

namespace glyphmill::bench {
namespace {

using namespace vocabulary;

using Random = SeededRandom;

constexpr std::uint64_t corpusSeed = 0x676C7970686D696CULL;
constexpr std::uint64_t brandSeed = 0x6272616E64730001ULL;

enum class SpanKind {
    linkWithScheme,
    linkWithoutScheme,
    email,
    systemPath,
    homePath,
    windowsPath,
    hashtag,
    mention,
    code,
    term,
    count
};

char asciiLower(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}
char asciiUpper(char c) {
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

std::string asciiLowered(std::string_view text) {
    std::string out(text);
    for (char &c : out)
        c = asciiLower(c);
    return out;
}
std::string asciiUppered(std::string_view text) {
    std::string out(text);
    for (char &c : out)
        c = asciiUpper(c);
    return out;
}

// The text as written, or in one of the letter cases people actually type it in.
std::string inVariedCase(std::string_view text, Random &random) {
    switch (random.below(4)) {
    case 0:
        return asciiLowered(text);
    case 1:
        return asciiUppered(text);
    default:
        return std::string(text);
    }
}

std::vector<std::string> generatedBrandNames(std::size_t count) {
    Random random(brandSeed);
    std::vector<std::string> names;
    std::set<std::string> seenLowered;
    while (names.size() < count) {
        std::string head(random.pick(brandHeads));
        std::string tail(random.pick(brandTails));
        std::string name;
        switch (random.below(5)) {
        case 0: // ZenTrek
            head[0] = asciiUpper(head[0]);
            tail[0] = asciiUpper(tail[0]);
            name = head + tail;
            break;
        case 1: // zenTrek
            tail[0] = asciiUpper(tail[0]);
            name = head + tail;
            break;
        case 2: // eZenTrek
            head[0] = asciiUpper(head[0]);
            tail[0] = asciiUpper(tail[0]);
            name = "e" + head + tail;
            break;
        case 3: // ZENtrek
            name = asciiUppered(head) + tail;
            break;
        default: // Zentrek360
            head[0] = asciiUpper(head[0]);
            name = head + tail + std::to_string(random.between(2, 999));
            break;
        }
        if (random.percent(20))
            name += random.pick(brandExtraWords);
        if (seenLowered.insert(asciiLowered(name)).second)
            names.push_back(std::move(name));
    }
    return names;
}

constexpr std::size_t occurringBrandStride = 10;

// Writes prose and spans, upper-casing the prose when asked. Sizes are counted before
// upper-casing so that both letterings hold the same sentences.
class CorpusWriter {
public:
    explicit CorpusWriter(Lettering lettering) : lettering_(lettering) {
        UErrorCode status = U_ZERO_ERROR;
        caseMap_.reset(ucasemap_open("", 0, &status)); // root locale: no Turkish or Greek tailoring
        if (U_FAILURE(status))
            throw std::runtime_error("ucasemap_open failed");
    }

    void prose(std::string_view text) {
        pendingProse_ += text;
        written_ += text.size();
        lineLength_ = text.ends_with('\n') ? 0 : lineLength_ + text.size();
    }
    void span(std::string_view text) {
        flush();
        out_ += text;
        written_ += text.size();
        lineLength_ += text.size();
    }
    std::size_t written() const { return written_; }
    std::size_t lineLength() const { return lineLength_; }

    std::string finish() {
        flush();
        return std::move(out_);
    }

private:
    struct CaseMapCloser {
        void operator()(UCaseMap *map) const { ucasemap_close(map); }
    };

    void flush() {
        if (lettering_ == Lettering::mixed || pendingProse_.empty()) {
            out_ += pendingProse_;
            pendingProse_.clear();
            return;
        }
        // Full mapping may grow the text (ß becomes SS); three times is the worst case.
        std::string upper(pendingProse_.size() * 3, '\0');
        UErrorCode status = U_ZERO_ERROR;
        int32_t length =
            ucasemap_utf8ToUpper(caseMap_.get(), upper.data(), static_cast<int32_t>(upper.size()),
                                 pendingProse_.data(), static_cast<int32_t>(pendingProse_.size()), &status);
        if (U_FAILURE(status))
            throw std::runtime_error("ucasemap_utf8ToUpper failed");
        upper.resize(static_cast<std::size_t>(length));
        out_ += upper;
        pendingProse_.clear();
    }

    Lettering lettering_;
    std::unique_ptr<UCaseMap, CaseMapCloser> caseMap_;
    std::string out_;
    std::string pendingProse_;
    std::size_t written_ = 0;
    std::size_t lineLength_ = 0;
};

class ProseGenerator {
public:
    ProseGenerator(std::size_t minimumBytes, Lettering lettering)
        : random_(corpusSeed), writer_(lettering), minimumBytes_(minimumBytes) {
        for (const auto &term : ProtectedTermsStore::defaultTerms())
            defaultTerms_.push_back(utf8::encode(term));
        auto brands = generatedBrandNames(largeTermListSize - defaultTerms_.size());
        for (std::size_t i = 0; i < brands.size(); i += occurringBrandStride)
            occurringBrands_.push_back(std::move(brands[i]));
        scheduleNextSpan();
    }

    std::string generate() {
        while (writer_.written() < minimumBytes_) {
            if (random_.percent(12))
                list();
            else if (random_.percent(8))
                heading();
            else
                paragraph();
        }
        return writer_.finish();
    }

private:
    void paragraph() {
        // Half the paragraphs are hard-wrapped like mail, the others are one long line.
        wrapColumn_ = random_.percent(50) ? random_.between(60, 80) : 0;
        std::size_t sentences = random_.between(2, 7);
        for (std::size_t i = 0; i < sentences && writer_.written() < minimumBytes_; ++i) {
            if (i > 0)
                separator();
            sentence(random_.between(5, 20));
        }
        writer_.prose("\n\n");
    }

    void list() {
        wrapColumn_ = 0;
        bool numbered = random_.percent(50);
        std::size_t items = random_.between(2, 5);
        for (std::size_t i = 1; i <= items; ++i) {
            writer_.prose(numbered ? std::to_string(i) + ". " : std::string("- "));
            words(random_.between(3, 9), random_.percent(50));
            writer_.prose("\n");
        }
        writer_.prose("\n");
    }

    void heading() {
        wrapColumn_ = 0;
        words(random_.between(3, 8), true);
        writer_.prose("\n\n");
    }

    void sentence(std::size_t wordCount) {
        words(wordCount, true);
        std::size_t ending = random_.below(10);
        writer_.prose(ending < 8 ? "." : ending == 8 ? "?" : "!");
    }

    void words(std::size_t count, bool capitalizeFirst) {
        for (std::size_t i = 0; i < count; ++i) {
            if (i > 0) {
                if (random_.percent(7))
                    writer_.prose(",");
                separator();
            }
            if (writer_.written() >= nextSpanAt_) {
                protectedSpan();
                scheduleNextSpan();
                continue;
            }
            word(i == 0 && capitalizeFirst);
        }
    }

    void word(bool capitalized) {
        if (random_.percent(4)) {
            writer_.prose(random_.pick(internationalWords));
            return;
        }
        if (random_.percent(2)) {
            writer_.prose(inVariedCase(random_.pick(occurringBrands_), random_));
            return;
        }
        std::string text(random_.pick(commonWords));
        if (capitalized)
            text[0] = asciiUpper(text[0]);
        writer_.prose(text);
    }

    void separator() {
        if (wrapColumn_ > 0 && writer_.lineLength() >= wrapColumn_)
            writer_.prose("\n");
        else
            writer_.prose(" ");
    }

    void protectedSpan() {
        auto kind = static_cast<SpanKind>(nextSpanKind_);
        nextSpanKind_ = (nextSpanKind_ + 1) % static_cast<std::size_t>(SpanKind::count);
        switch (kind) {
        case SpanKind::linkWithScheme:
            return writer_.span(random_.pick(linksWithScheme));
        case SpanKind::linkWithoutScheme:
            return writer_.span(random_.pick(linksWithoutScheme));
        case SpanKind::email:
            return writer_.span(random_.pick(emailAddresses));
        case SpanKind::systemPath:
            return writer_.span(random_.pick(systemPaths));
        case SpanKind::homePath:
            return writer_.span(random_.pick(homePaths));
        case SpanKind::windowsPath:
            return writer_.span(random_.pick(windowsPaths));
        case SpanKind::hashtag:
            return writer_.span(random_.pick(hashtags));
        case SpanKind::mention:
            return writer_.span(random_.pick(mentions));
        case SpanKind::code:
            return writer_.span(random_.pick(codeSpans));
        case SpanKind::term:
        case SpanKind::count:
            // Terms are words of the prose: a shouted text has them in capitals too.
            return writer_.prose(inVariedCase(random_.pick(defaultTerms_), random_));
        }
    }

    void scheduleNextSpan() { nextSpanAt_ = writer_.written() + random_.between(150, 250); }

    Random random_;
    CorpusWriter writer_;
    std::size_t minimumBytes_;
    std::vector<std::string> defaultTerms_;
    std::vector<std::string> occurringBrands_;
    std::size_t nextSpanAt_ = 0;
    std::size_t nextSpanKind_ = 0;
    std::size_t wrapColumn_ = 0;
};

} // namespace

std::string makeCorpus(std::size_t minimumBytes, Lettering lettering) {
    return ProseGenerator(minimumBytes, lettering).generate();
}

std::vector<std::u16string> makeLargeTermList() {
    std::vector<std::u16string> terms = ProtectedTermsStore::defaultTerms();
    for (const auto &name : generatedBrandNames(largeTermListSize - terms.size()))
        terms.push_back(utf8::decodeLossy(name));
    return terms;
}

} // namespace glyphmill::bench

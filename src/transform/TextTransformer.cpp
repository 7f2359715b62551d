#include "TextTransformer.h"

#include "CaseRules.h"
#include "LineChunks.h"
#include "ProtectedSpans.h"
#include "TermMatcher.h"
#include "TextModel.h"

namespace glyphmill {

std::u16string_view displayTitle(TextTransformKind kind) {
    switch (kind) {
    case TextTransformKind::smartCase:
        return u"Smart Case";
    case TextTransformKind::titleCase:
        return u"Title Case";
    case TextTransformKind::uppercase:
        return u"UPPERCASE";
    case TextTransformKind::lowercase:
        return u"lowercase";
    case TextTransformKind::capitalizeWords:
        return u"Capitalize Words";
    }
    return {};
}

std::optional<TextTransformKind> textTransformKindFromTitle(std::u16string_view title) {
    for (auto kind : allTextTransformKinds)
        if (displayTitle(kind) == title)
            return kind;
    return std::nullopt;
}

namespace {

// The terms split a plain run into pieces that each kind maps on its own.
void appendSimpleBody(TextTransformKind kind, std::u16string_view source,
                      const std::vector<std::u16string> &terms, std::u16string &body) {
    body.reserve(body.size() + source.size() + source.size() / 8);
    auto transformPlain = [&](std::u16string_view plain) {
        switch (kind) {
        case TextTransformKind::uppercase:
            text::appendUpperMapped(body, plain);
            break;
        case TextTransformKind::lowercase:
            text::appendLowerMapped(body, plain);
            break;
        default:
            body.append(capitalizeWordRuns(plain));
            break;
        }
    };
    std::size_t runStart = 0;
    if (!source.empty() && !terms.empty())
        TermMatcher(terms).forEachMatch(source,
                                        [&](std::size_t start, std::size_t end, const std::u16string &term) {
                                            if (start > runStart)
                                                transformPlain(source.substr(runStart, start - runStart));
                                            body.append(term);
                                            runStart = end;
                                        });
    if (runStart < source.size())
        transformPlain(source.substr(runStart));
}

} // namespace

std::u16string TextTransformer::apply(TextTransformKind kind, std::u16string_view text) const {
    if (kind == TextTransformKind::smartCase)
        return smartCaseText(text, protectedTerms, protectionOptions);
    // The term switch belongs to Smart Case; the other kinds always keep the terms.
    MaskedText masked = maskProtectedSpans(text, protectionOptions);
    auto transformBody = [&](std::u16string_view source, std::u16string &body) {
        if (kind == TextTransformKind::titleCase)
            body = titleCaseText(source, protectedTerms);
        else
            appendSimpleBody(kind, source, protectedTerms, body);
    };
    return transformAndRestore(masked.text, masked.placeholders, termsStayWithinLines(protectedTerms),
                               transformBody);
}

} // namespace glyphmill

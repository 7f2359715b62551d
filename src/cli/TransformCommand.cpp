#include "cli/Commands.h"

#include "cli/InputOutput.h"
#include "cli/ProtectionSwitches.h"
#include "cli/UserPreferences.h"
#include "settings/preferences/ProtectedTermsStore.h"

namespace glyphmill::cli {
namespace {

// The terms named on the command line; none when the user's list is wanted.
std::optional<std::vector<std::u16string>> termsFromArguments(const TransformRequest &request) {
    switch (request.termsSource) {
    case TermsSource::user:
        return std::nullopt;
    case TermsSource::none:
        return std::vector<std::u16string>{};
    case TermsSource::builtIn:
        return ProtectedTermsStore::defaultTerms();
    case TermsSource::given:
        break;
    }
    std::vector<std::u16string> terms;
    terms.reserve(request.givenTerms.size());
    for (const auto &term : request.givenTerms)
        terms.push_back(decodeText(term, "a --term value"));
    return terms;
}

std::u16string readText(const TransformRequest &request) {
    if (request.text)
        return decodeText(*request.text, "input");
    InputBytes input = request.file ? InputBytes::fromFile(*request.file) : InputBytes::fromStandardInput();
    return decodeText(input.bytes(), "input");
}

} // namespace

ExitStatus runTransform(const TransformRequest &request) {
    // Arguments and preferences are checked before a possibly long input is read.
    auto terms = termsFromArguments(request);
    UserPreferences preferences;
    if (!terms)
        terms = ProtectedTermsStore(preferences.store()).terms();
    TextProtectionOptions options =
        request.ignorePreferences ? allProtectionSwitchesOn() : protectionOptionsFromPreferences(preferences);
    for (const auto &override : request.optionOverrides)
        options.*override.field = override.value;

    std::u16string text = readText(request);

    std::u16string result = TextTransformer{std::move(*terms), options}.apply(request.kind, text);
    std::u16string().swap(text);
    writeStandardOutput(result);
    return ExitStatus::success;
}

} // namespace glyphmill::cli

#include "cli/Commands.h"

#include "cli/InputOutput.h"
#include "cli/UserPreferences.h"
#include "common/Utf8.h"
#include "settings/preferences/ProtectedTermsStore.h"

namespace glyphmill::cli {

ExitStatus runTerms(const TermsRequest &request) {
    // A term that is not text is refused before the preference file is touched.
    std::u16string text;
    if (request.action == TermsAction::add || request.action == TermsAction::remove)
        text = decodeText(request.text, "the term");

    UserPreferences preferences;
    ProtectedTermsStore store(preferences.store());
    switch (request.action) {
    case TermsAction::list: {
        std::string listing;
        for (const auto &term : store.terms()) {
            utf8::encode(term, listing);
            listing += '\n';
        }
        writeStandardOutput(listing);
        return ExitStatus::success;
    }
    case TermsAction::add:
        store.addTerm(text);
        break;
    case TermsAction::remove:
        store.removeTerm(text);
        break;
    case TermsAction::restoreDefaults:
        store.restoreDefaultTerms();
        break;
    }
    if (preferences.writeFailed())
        fail(ExitStatus::preferencesUnusable,
             "cannot save the protected terms to " + quoted(preferences.path()));
    return ExitStatus::success;
}

} // namespace glyphmill::cli

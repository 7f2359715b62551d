// The names under which the running application answers on the session bus.
#pragma once

#include "cli/AppCommandLine.h"

#include <QString>

namespace glyphmill::dbusNames {

inline const QString serviceName = QStringLiteral("org.glyphmill.Glyphmill");
inline const QString objectPath = QStringLiteral("/org/glyphmill/Glyphmill");
inline const QString servicesInterface = QStringLiteral("org.glyphmill.Services");
inline const QString applicationInterface = QStringLiteral("org.glyphmill.Application");
// Answered when a request names a piece this build does not have.
inline const QString notAvailableError = QStringLiteral("org.glyphmill.Error.NotAvailable");
// Answered when a clipboard request found nothing to do (no text, nothing to restore).
inline const QString nothingToDoError = QStringLiteral("org.glyphmill.Error.NothingToDo");
// Answered when the clipboard could not be written.
inline const QString notWrittenError = QStringLiteral("org.glyphmill.Error.ClipboardNotWritten");

// transformSmartCase, transformTitleCase, transformUppercase, transformLowercase,
// transformCapitalizeWords.
QString servicesMethod(TextTransformKind kind);
// activate, palette, clipboard, pastePlain, restore, quit, settings, capture; none for service.
QString applicationMethod(appCommands::Command command);

} // namespace glyphmill::dbusNames

#include "app/DBusNames.h"

namespace glyphmill::dbusNames {

QString servicesMethod(TextTransformKind kind) {
    switch (kind) {
    case TextTransformKind::smartCase:
        return QStringLiteral("transformSmartCase");
    case TextTransformKind::titleCase:
        return QStringLiteral("transformTitleCase");
    case TextTransformKind::uppercase:
        return QStringLiteral("transformUppercase");
    case TextTransformKind::lowercase:
        return QStringLiteral("transformLowercase");
    case TextTransformKind::capitalizeWords:
        return QStringLiteral("transformCapitalizeWords");
    }
    return {};
}

QString applicationMethod(appCommands::Command command) {
    using appCommands::Command;
    switch (command) {
    case Command::launch:
        return QStringLiteral("activate");
    case Command::palette:
        return QStringLiteral("palette");
    case Command::clipboard:
        return QStringLiteral("clipboard");
    case Command::pastePlain:
        return QStringLiteral("pastePlain");
    case Command::restore:
        return QStringLiteral("restore");
    case Command::quit:
        return QStringLiteral("quit");
    case Command::settings:
        return QStringLiteral("settings");
    case Command::capture:
        return QStringLiteral("capture");
    case Command::service:
        break;
    }
    return {};
}

} // namespace glyphmill::dbusNames

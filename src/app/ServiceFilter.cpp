#include "app/ServiceFilter.h"

#include "app/DBusNames.h"
#include "app/SingleInstance.h"
#include "cli/Failure.h"
#include "clipboard/text/TextClasses.h"
#include "common/Utf8.h"
#include "platform/JsonFilePreferenceStore.h"
#include "settings/preferences/ProtectedTermsStore.h"
#include "settings/preferences/SettingsPreferences.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>

namespace glyphmill {
namespace {

using cli::ExitStatus;

int report(ExitStatus status, const std::string &message) {
    std::fprintf(stderr, "glyphmill: %s\n", message.c_str());
    return static_cast<int>(status);
}

std::optional<std::string> readStandardInput() {
    std::string bytes;
    char buffer[65536];
    while (std::size_t count = std::fread(buffer, 1, sizeof buffer, stdin))
        bytes.append(buffer, count);
    if (std::ferror(stdin))
        return std::nullopt;
    return bytes;
}

bool writeStandardOutput(std::string_view bytes) {
    return std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() && std::fflush(stdout) == 0;
}

// None when no instance runs or it did not answer; the caller then transforms here.
std::optional<std::u16string> transformInRunningInstance(TextTransformKind kind, const std::u16string &text) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !singleInstance::isRunning(bus))
        return std::nullopt;
    QDBusMessage call =
        QDBusMessage::createMethodCall(dbusNames::serviceName, dbusNames::objectPath,
                                       dbusNames::servicesInterface, dbusNames::servicesMethod(kind));
    call << QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
    call.setAutoStartService(false);
    QDBusMessage answer = bus.call(call);
    const QList<QVariant> values = answer.arguments();
    if (answer.type() != QDBusMessage::ReplyMessage || values.size() != 2 || !values[0].toBool())
        return std::nullopt;
    const QString result = values[1].toString();
    return std::u16string(reinterpret_cast<const char16_t *>(result.utf16()),
                          static_cast<std::size_t>(result.size()));
}

std::u16string transformHere(TextTransformKind kind, const std::u16string &text,
                             PreferenceStore &preferences) {
    return TextTransformer{ProtectedTermsStore(preferences).terms(), readTextProtectionOptions(preferences)}
        .apply(kind, text);
}

} // namespace

int runServiceFilter(TextTransformKind kind) {
    std::optional<std::string> input = readStandardInput();
    if (!input)
        return report(ExitStatus::unreadableInput,
                      std::string("cannot read standard input: ") + std::strerror(errno));
    std::u16string text;
    if (auto error = utf8::decode(*input, text))
        return report(ExitStatus::invalidText,
                      "input is not valid UTF-8 (at byte " + std::to_string(error->byteOffset) + ")");
    // Nothing to transform: the text goes back as it came, so a filter never loses a selection.
    const bool blank = textClasses::isBlank(text);
    std::string output = *input;
    if (!blank) {
        std::optional<std::u16string> result = transformInRunningInstance(kind, text);
        if (!result) {
            JsonFilePreferenceStore preferences;
            // The defaults in their place would give a result the user did not choose.
            if (auto failure = preferences.readFailure())
                return report(ExitStatus::preferencesUnusable, "cannot read the preference file " +
                                                                   cli::quoted(failure->file) + ": " +
                                                                   failure->reason);
            result = transformHere(kind, text, preferences);
        }
        output = utf8::encode(*result);
    }
    if (!writeStandardOutput(output))
        return report(ExitStatus::cannotWriteOutput,
                      std::string("cannot write the output: ") + std::strerror(errno));
    return blank ? 1 : 0;
}

} // namespace glyphmill

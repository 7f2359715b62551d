// The ways a glyphmill command can fail, each with the exit status scripts can test for.
#pragma once

#include <string>
#include <string_view>

namespace glyphmill::cli {

// The values follow <sysexits.h>, which shell scripts already know.
enum class ExitStatus : int {
    success = 0,
    notDone = 1, // an application command that found nothing to do, or could not write

    usage = 64,
    invalidText = 65,
    unreadableInput = 66,
    unavailable = 69,
    internalError = 71,       // out of memory, or another failure inside the program
    preferencesUnusable = 73, // the preference file could not be read, or a change not saved
    cannotWriteOutput = 74,
};

// Thrown by a command to stop with a one-line message on standard error; main reports it.
struct Failure {
    ExitStatus status;
    std::string message; // without the "glyphmill: " prefix and without a line break
};

[[noreturn]] void fail(ExitStatus status, std::string message);
[[noreturn]] void failUsage(std::string message);

// The text between quotes, with control characters escaped so that a message stays on one line.
std::string quoted(std::string_view text);

} // namespace glyphmill::cli

#include "cli/Failure.h"

#include <cstdio>

namespace glyphmill::cli {

void fail(ExitStatus status, std::string message) {
    throw Failure{status, std::move(message)};
}

void failUsage(std::string message) {
    fail(ExitStatus::usage, std::move(message));
}

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (char c : text) {
        auto byte = static_cast<unsigned char>(c);
        if (byte == '"' || byte == '\\') {
            out += '\\';
            out += c;
        } else if (byte < 0x20 || byte == 0x7F) {
            char escaped[5];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
            out += escaped;
        } else {
            out += c;
        }
    }
    out += '"';
    return out;
}

} // namespace glyphmill::cli

// The system log for failures the user cannot act on (syslog on Linux).
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace glyphmill {

class SystemLog {
public:
    virtual ~SystemLog() = default;
    // One line at error level; the category leads the message.
    virtual void error(std::string_view category, std::string_view message) = 0;
};

class RecordingSystemLog final : public SystemLog {
public:
    void error(std::string_view category, std::string_view message) override {
        lines.push_back(std::string(category) + ": " + std::string(message));
    }
    std::vector<std::string> lines;
};

} // namespace glyphmill

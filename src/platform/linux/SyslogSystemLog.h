// The system log on Linux: syslog (the journal on systemd machines) under the identifier
// "glyphmill", the category leading each message.
#pragma once

#include "platform/SystemLog.h"

#include <string>

namespace glyphmill {

class SyslogSystemLog final : public SystemLog {
public:
    SyslogSystemLog();
    ~SyslogSystemLog() override;

    void error(std::string_view category, std::string_view message) override;

    // "Category: message".
    static std::string line(std::string_view category, std::string_view message);
};

} // namespace glyphmill

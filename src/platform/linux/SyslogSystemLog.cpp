#include "platform/linux/SyslogSystemLog.h"

#include <syslog.h>

namespace glyphmill {

SyslogSystemLog::SyslogSystemLog() {
    // The identifier must stay valid while the log is open: a literal does.
    openlog("glyphmill", LOG_PID, LOG_USER);
}

SyslogSystemLog::~SyslogSystemLog() {
    closelog();
}

void SyslogSystemLog::error(std::string_view category, std::string_view message) {
    syslog(LOG_ERR, "%s", line(category, message).c_str());
}

std::string SyslogSystemLog::line(std::string_view category, std::string_view message) {
    std::string text;
    text.reserve(category.size() + 2 + message.size());
    text.append(category).append(": ").append(message);
    return text;
}

} // namespace glyphmill

// Opens an address in the program the desktop chooses for it: web pages in the browser, mailto:
// addresses in the mail program, and the system settings pages named by the application in the
// desktop's own settings where it has a matching page.
#pragma once

#include <string_view>

namespace glyphmill {

class UrlOpener {
public:
    virtual ~UrlOpener() = default;
    // True when something was started for the address; false when nothing could open it.
    virtual bool openUrl(std::string_view address) = 0;
};

} // namespace glyphmill

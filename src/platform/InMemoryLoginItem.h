// A login item that only remembers whether it is registered, for tests. It can be told to
// refuse, as a system without autostart support would.
#pragma once

#include "platform/LoginItem.h"

namespace glyphmill {

class InMemoryLoginItem final : public LoginItem {
public:
    bool registerLoginItem() override {
        ++registerCalls;
        if (refuses)
            return false;
        registered = true;
        return true;
    }
    bool unregisterLoginItem() override {
        ++unregisterCalls;
        if (refuses)
            return false;
        registered = false;
        return true;
    }

    bool refuses = false;
    bool registered = false;
    int registerCalls = 0;
    int unregisterCalls = 0;
};

} // namespace glyphmill

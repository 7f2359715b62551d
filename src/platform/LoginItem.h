// Starting Glyphmill when the user logs in.
#pragma once

namespace glyphmill {

class LoginItem {
public:
    virtual ~LoginItem() = default;

    // False when the system refused; callers ignore it, the user's choice stays stored.
    virtual bool registerLoginItem() = 0;
    virtual bool unregisterLoginItem() = 0;
};

} // namespace glyphmill

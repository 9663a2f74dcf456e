// Static objects that threads of the library use.
#pragma once

#include "thread.h"

namespace quorvane::platform {

// Lasts as long as there are threads that may use it: a process that ends beside them ends without
// destroying it, and a library that is unloaded has none.
template <class Object>
union Lasting {
    Lasting() : object() {}
    ~Lasting() {
        if (!ThreadsRun()) object.~Object();
    }
    Lasting(const Lasting&) = delete;
    Lasting& operator=(const Lasting&) = delete;

    Object object;
};

}  // namespace quorvane::platform

// Settings that the client changes while workers read them.
#pragma once

#include <memory>
#include <mutex>
#include <utility>

#include "component/settings.h"

namespace quorvane {

// Readers get a snapshot that no later change touches, and copy no text for it. Any thread.
class SharedSettings {
public:
    std::shared_ptr<const SmtpSettings> Get() const {
        const std::lock_guard lock(mutex_);
        return current_;
    }

    // Has the function change a copy, which then takes the place of the current settings. They stay
    // as they are when it throws.
    template <class Change>
    void Put(Change&& change) {
        const std::lock_guard lock(mutex_);
        const auto changed = std::make_shared<SmtpSettings>(*current_);
        std::forward<Change>(change)(*changed);
        current_ = changed;
    }

private:
    mutable std::mutex mutex_;
    std::shared_ptr<const SmtpSettings> current_ = std::make_shared<const SmtpSettings>();
};

}  // namespace quorvane

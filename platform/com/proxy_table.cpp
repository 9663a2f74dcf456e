#include "proxy_table.h"

#include "proxy.h"

namespace quorvane::platform {

ProxyTable::ProxyTable() = default;
ProxyTable::~ProxyTable() = default;

Proxy* ProxyTable::Get(const std::shared_ptr<Apartment>& owner, const ObjectReference& target) {
    auto made = std::make_unique<Proxy>(owner, target);
    const std::lock_guard lock(mutex_);
    Entry& entry = entries_[target.key()];
    if (!entry.proxy) entry.proxy = std::move(made);
    ++entry.references;
    return entry.proxy.get();
}

ULONG ProxyTable::AddRef(const Key& key) {
    const std::lock_guard lock(mutex_);
    return ++entries_.at(key).references;
}

ULONG ProxyTable::Release(const Key& key) {
    std::unique_ptr<Proxy> last;  // goes after the lock
    const std::lock_guard lock(mutex_);
    const auto found = entries_.find(key);
    const ULONG left = --found->second.references;
    if (left == 0) {
        last = std::move(found->second.proxy);
        entries_.erase(found);
    }
    return left;
}

}  // namespace quorvane::platform

// The proxies of one apartment: one an object, however often it comes in.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "object_table.h"

namespace quorvane::platform {

class Apartment;
class ObjectReference;
class Proxy;

// Owns the proxies and their counts. Any thread.
class ProxyTable {
public:
    using Key = std::pair<Apartment*, ObjectTable::Number>;

    ProxyTable();
    ~ProxyTable();
    ProxyTable(const ProxyTable&) = delete;
    ProxyTable& operator=(const ProxyTable&) = delete;

    // The proxy of the object, made when there is none, with one more reference. `owner`: the
    // apartment whose table this is.
    Proxy* Get(const std::shared_ptr<Apartment>& owner, const ObjectReference& target);

    // Count what clients hold of a proxy; it goes with the last reference.
    ULONG AddRef(const Key& key);
    ULONG Release(const Key& key);

private:
    struct Entry {
        std::unique_ptr<Proxy> proxy;
        ULONG references = 0;
    };

    std::mutex mutex_;
    std::map<Key, Entry> entries_;
};

}  // namespace quorvane::platform

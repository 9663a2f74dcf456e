// The objects of one apartment that other apartments refer to.
#pragma once

#include <oaidl.h>

#include <map>
#include <memory>
#include <mutex>

#include "held.h"

namespace quorvane::platform {

// The interfaces of an object that go from one apartment to another.
struct ExportedObject {
    Held<IUnknown> identity;
    Held<IDispatch> dispatch;  // null when the object has none
};

// Objects are entered, looked up and let go on threads of their apartment only; the counts of their
// users are for any thread. Foreign code never runs under the lock.
class ObjectTable {
public:
    using Number = unsigned long long;

    // Enters the object, or finds it, with one more user. Null when the table is closed.
    std::shared_ptr<ExportedObject> Add(IUnknown* object, Number& number);
    // Null when the object has been let go.
    std::shared_ptr<ExportedObject> Find(Number number);

    void AddUser(Number number);
    // True when that was the last one: ReleaseUnused is to be called in the apartment.
    bool RemoveUser(Number number);
    bool Has(Number number);

    void ReleaseUnused(Number number);
    // Closes the table and lets go of all objects.
    void ReleaseAll();
    // Closes the table and keeps the references for ever, since it is too late to call the objects.
    void Forget();

private:
    struct Entry {
        std::shared_ptr<ExportedObject> object;
        ULONG users = 0;
    };

    std::mutex mutex_;
    bool closed_ = false;
    Number lastNumber_ = 0;
    std::map<Number, Entry> entries_;
    std::map<IUnknown*, Number> numbers_;  // by identity
};

}  // namespace quorvane::platform

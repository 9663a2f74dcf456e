// The reference count of an object that deletes itself with its last reference.
#pragma once

#include <windows.h>
#include <ole2.h>

#include <atomic>

#include "automation/module.h"

namespace quorvane {

// Reference count of an object that only its apartment's thread touches.
class PlainCount {
public:
    ULONG Increment() { return ++count_; }
    ULONG Decrement() { return --count_; }

private:
    ULONG count_ = 0;
};

// Reference count of an object that other threads hold too.
class AtomicCount {
public:
    ULONG Increment() { return count_.fetch_add(1, std::memory_order_relaxed) + 1; }
    ULONG Decrement() { return count_.fetch_sub(1, std::memory_order_acq_rel) - 1; }

private:
    std::atomic<ULONG> count_{0};
};

// Counts the references of an object on the heap with these interfaces, and holds the library for
// as long as the object lives. It starts without references.
template <class Count, class... Interfaces>
class Counted : public Interfaces... {
public:
    Counted() = default;
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

    STDMETHODIMP_(ULONG) AddRef() override { return count_.Increment(); }

    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = count_.Decrement();
        if (left == 0) delete this;
        return left;
    }

protected:
    virtual ~Counted() = default;

private:
    Count count_;
    ModuleReference module_;
};

}  // namespace quorvane

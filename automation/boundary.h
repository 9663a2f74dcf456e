// The boundary of interface methods: exceptions stay inside, enumerations carry any integer.
#pragma once

#include <windows.h>

#include <cstring>
#include <new>
#include <stdexcept>

namespace quorvane {

// Runs the body of an interface method and turns what it throws into a status: E_OUTOFMEMORY when
// memory ran out or a text would outgrow its limit, E_FAIL for anything else.
template <class Body>
HRESULT Guarded(Body&& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const std::length_error&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_FAIL;
    }
}

// Callers may pass any 32-bit integer where an interface says enumeration. Copying the bytes keeps
// values outside the enumeration well defined.
template <class Enumeration>
LONG EnumerationValue(const Enumeration& enumeration) {
    static_assert(sizeof(Enumeration) == sizeof(LONG));
    LONG value;
    std::memcpy(&value, &enumeration, sizeof value);
    return value;
}

template <class Enumeration>
void StoreEnumeration(LONG value, Enumeration* out) {
    static_assert(sizeof(Enumeration) == sizeof(LONG));
    std::memcpy(out, &value, sizeof value);
}

}  // namespace quorvane

// Objects that live in another apartment, called through their proxies.
#pragma once

#include <windows.h>
#include <ole2.h>
#include <oleauto.h>

#include <string>
#include <vector>

#include "automation/com_ptr.h"
#include "automation/wide_string.h"
#include "tests/support/message_pump.h"

namespace quorvane::testing {

// A single-threaded apartment of this thread.
class Apartment {
public:
    Apartment() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    ~Apartment() { CoUninitialize(); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
};

// Whether proxies have the interfaces themselves, or IDispatch only.
extern const bool kInterfacesCross;

enum class Way { kDispatch, kTable };
std::vector<Way> Ways();

// A value on its way into or out of a call; owns what it holds.
class Value {
public:
    Value() = default;
    Value(LONG number);
    Value(bool truth);
    Value(const WCHAR* text);
    Value(IDispatch* object);
    Value(const Value& other);
    Value& operator=(Value other);
    ~Value() { VariantClear(&value); }

    // The kind and the value, as messages show it.
    std::string Text() const;

    VARIANT value{};
};

// An object of one of the library's classes, made in the apartment of the thread `home`, as a
// client in the apartment of this thread sees it.
class Remote {
public:
    Remote(PumpingThread& home, REFCLSID clsid, REFIID dual);
    ~Remote();
    Remote(const Remote&) = delete;
    Remote& operator=(const Remote&) = delete;

    // Through IDispatch, or through the interface's own table of functions. Arguments in the
    // order in which they are written; those in `outs` get what the call stores through the
    // references that it has for its last parameters, all but the result.
    HRESULT Call(Way way, const WCHAR* member, WORD flags, const std::vector<Value>& arguments,
                 std::vector<VARIANT> outs, Value& result) const;
    HRESULT Put(Way way, const WCHAR* member, const Value& value) const;
    Value Get(Way way, const WCHAR* member) const;

    IDispatch* proxy() const { return proxy_.Get(); }
    // What the object's own apartment knows it as; not to be called.
    const void* object() const { return object_; }

private:
    PumpingThread& home_;
    IID dual_;
    DWORD cookie_ = 0;
    const void* object_ = nullptr;
    ComPtr<IDispatch> proxy_;
    ComPtr<ITypeInfo> type_;
};

}  // namespace quorvane::testing

// Quorvane's COM side for C++ programs: owners for interface pointers, automation strings and
// variants, UTF-8 text, and exceptions in place of status codes. quorvane.hpp is made of these;
// use them for what it leaves out.
//
//     auto message = qv::Create<IMailMessage>();
//     qv::Check(message->put_MessageSubject(qv::Bstr("Hello")), message);
//
// Text is UTF-8 in and out; embedded NULs survive the conversions, but the component's own text
// properties end at the first one.
#pragma once

#ifndef __cpp_concepts
#error "quorvane.hpp needs C++20: -std=c++20, or /std:c++20"
#endif

#include <windows.h>
#include <objbase.h>
#include <oleauto.h>

#include <cstdio>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "Quorvane.h"

namespace quorvane::client {

// ------------------------------------------------------------------------------------------------
// Text

namespace detail {

constexpr char32_t kReplacement = 0xFFFD;

// Takes one code point off the front of UTF-8 text; a malformed sequence gives U+FFFD and
// advances past the bytes that could have begun a character.
inline char32_t NextCodePoint(std::string_view& text) {
    const auto first = static_cast<unsigned char>(text.front());
    text.remove_prefix(1);
    if (first < 0x80) return first;
    const int following = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (first < 0xC2 || first > 0xF4) return kReplacement;
    char32_t point = first & (0x3F >> following);
    for (int i = 0; i < following; ++i) {
        const auto next = text.empty() ? 0u : static_cast<unsigned char>(text.front());
        // The second byte also tells over-long forms, surrogates and what lies above U+10FFFF.
        const unsigned low = i > 0 ? 0x80u : first == 0xE0 ? 0xA0u : first == 0xF0 ? 0x90u : 0x80u;
        const unsigned high = i > 0 ? 0xBFu : first == 0xED ? 0x9Fu : first == 0xF4 ? 0x8Fu : 0xBFu;
        if (next < low || next > high) return kReplacement;
        point = point << 6 | (next & 0x3F);
        text.remove_prefix(1);
    }
    return point;
}

inline void AppendUtf8(char32_t point, std::string& out) {
    if (point < 0x80) {
        out += static_cast<char>(point);
        return;
    }
    const int following = point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
    constexpr unsigned char kLead[] = {0, 0xC0, 0xE0, 0xF0};
    out += static_cast<char>(kLead[following] | point >> (6 * following));
    for (int i = following - 1; i >= 0; --i) {
        out += static_cast<char>(0x80 | (point >> (6 * i) & 0x3F));
    }
}

template <typename Unit>
std::string Utf16ToUtf8(const Unit* text, std::size_t units) {
    std::string out;
    out.reserve(units);
    for (std::size_t i = 0; i < units; ++i) {
        const char32_t unit = static_cast<char16_t>(text[i]);
        if (unit < 0xD800 || unit > 0xDFFF) {
            AppendUtf8(unit, out);
            continue;
        }
        const char32_t next = i + 1 < units ? static_cast<char16_t>(text[i + 1]) : 0;
        if (unit < 0xDC00 && next >= 0xDC00 && next <= 0xDFFF) {
            AppendUtf8(0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00), out);
            ++i;
        } else {
            AppendUtf8(kReplacement, out);
        }
    }
    return out;
}

}  // namespace detail

// Converts UTF-8 to UTF-16; each malformed sequence becomes U+FFFD.
inline std::u16string ToUtf16(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const char32_t point = detail::NextCodePoint(text);
        if (point < 0x10000) {
            out += static_cast<char16_t>(point);
        } else {
            out += static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10));
            out += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
        }
    }
    return out;
}

// Converts UTF-16 to UTF-8; an unpaired surrogate becomes U+FFFD.
inline std::string ToUtf8(std::u16string_view text) {
    return detail::Utf16ToUtf8(text.data(), text.size());
}

// Owns an automation string. Text of any kind becomes one, UTF-8 or UTF-16, and it passes as a BSTR
// wherever a method takes one.
class Bstr {
public:
    Bstr() = default;
    Bstr(std::u16string_view text)
        : text_(SysAllocStringLen(nullptr, static_cast<UINT>(text.size()))) {
        if (!text_) throw std::bad_alloc();
        for (std::size_t i = 0; i < text.size(); ++i) text_[i] = static_cast<OLECHAR>(text[i]);
    }
    Bstr(const std::u16string& text) : Bstr(std::u16string_view(text)) {}
    Bstr(const char16_t* text) : Bstr(std::u16string_view(text)) {}
    Bstr(std::string_view utf8) : Bstr(std::u16string_view(ToUtf16(utf8))) {}
    Bstr(const std::string& utf8) : Bstr(std::string_view(utf8)) {}
    Bstr(const char* utf8) : Bstr(std::string_view(utf8)) {}
    Bstr(Bstr&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
    Bstr& operator=(Bstr&& other) noexcept {
        std::swap(text_, other.text_);
        return *this;
    }
    ~Bstr() { SysFreeString(text_); }

    operator BSTR() const { return text_; }

    // For out-parameters: frees what is held and gives the place for a new string.
    BSTR* Put() {
        SysFreeString(std::exchange(text_, nullptr));
        return &text_;
    }

    // Gives up the string to the caller, who frees it.
    BSTR Detach() { return std::exchange(text_, nullptr); }

    std::string utf8() const { return detail::Utf16ToUtf8(text_, SysStringLen(text_)); }
    std::u16string utf16() const { return {text_, text_ + SysStringLen(text_)}; }

private:
    BSTR text_ = nullptr;
};

// Owns a variant.
class Variant {
public:
    Variant() { VariantInit(&value_); }
    explicit Variant(Bstr text) : Variant() {
        value_.vt = VT_BSTR;
        value_.bstrVal = text.Detach();
    }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { VariantClear(&value_); }

    const VARIANT& get() const { return value_; }
    // The text of a string variant; empty for any other type.
    std::string utf8() const {
        if (value_.vt != VT_BSTR) return {};
        return detail::Utf16ToUtf8(value_.bstrVal, SysStringLen(value_.bstrVal));
    }

    // For out-parameters: clears what is held and gives the place for a new value.
    VARIANT* Put() {
        VariantClear(&value_);
        return &value_;
    }

private:
    VARIANT value_;
};

// ------------------------------------------------------------------------------------------------
// Interface pointers

// Owns one reference to an interface of an object.
template <typename Interface>
class ComPtr {
public:
    ComPtr() = default;
    // Adds a reference of its own.
    explicit ComPtr(Interface* object) : object_(object) {
        if (object_) object_->AddRef();
    }
    ComPtr(const ComPtr& other) : ComPtr(other.object_) {}
    ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~ComPtr() {
        if (object_) object_->Release();
    }

    Interface* get() const { return object_; }
    operator Interface*() const { return object_; }
    Interface* operator->() const { return object_; }

    // For out-parameters: releases what is held and gives the place for a new reference.
    Interface** Put() {
        *this = ComPtr();
        return &object_;
    }

    // Another interface of the same object; null when it has none such.
    template <typename Other>
    ComPtr<Other> As() const {
        ComPtr<Other> other;
        if (object_) {
            object_->QueryInterface(__uuidof(Other), reinterpret_cast<void**>(other.Put()));
        }
        return other;
    }

private:
    Interface* object_ = nullptr;
};

// ------------------------------------------------------------------------------------------------
// Failures

// A call that failed. what() is the component's own text where it gave one, in UTF-8.
class Error : public std::runtime_error {
public:
    Error(HRESULT status, const std::string& text) : std::runtime_error(text), status_(status) {}
    HRESULT status() const { return status_; }

private:
    HRESULT status_;
};

namespace detail {

inline std::string StatusText(HRESULT status) {
    char text[48];
    std::snprintf(text, sizeof text, "The call failed with status 0x%08X.",
                  static_cast<unsigned>(status));
    return text;
}

// The text that a failed call left for this thread. It is taken for this call's only when the
// object says that it sets any for the interface and the information names that interface: it may
// be left over from another call, whose failure nobody asked about.
inline std::string ErrorText(IUnknown* object, REFIID interfaceId) {
    auto support = ComPtr<IUnknown>(object).As<ISupportErrorInfo>();
    if (!support || support->InterfaceSupportsErrorInfo(interfaceId) != S_OK) return {};
    ComPtr<IErrorInfo> info;
    GUID about{};
    Bstr text;
    if (GetErrorInfo(0, info.Put()) != S_OK || FAILED(info->GetGUID(&about)) ||
        about != interfaceId || FAILED(info->GetDescription(text.Put()))) {
        return {};
    }
    return text.utf8();
}

}  // namespace detail

// Throws Error when a call failed. Of calls on an object, name the object too, so that the error
// carries its text. Returns the status: S_OK, or S_FALSE of a send that was refused.
inline HRESULT Check(HRESULT status) {
    if (FAILED(status)) throw Error(status, detail::StatusText(status));
    return status;
}
template <typename Interface>
HRESULT Check(HRESULT status, const ComPtr<Interface>& object) {
    if (SUCCEEDED(status)) return status;
    const std::string text = detail::ErrorText(object, __uuidof(Interface));
    throw Error(status, text.empty() ? detail::StatusText(status) : text);
}

// ------------------------------------------------------------------------------------------------
// Objects

// Keeps the calling thread in a single-threaded apartment, which the classes want. Outlives every
// object that the thread creates.
class Apartment {
public:
    Apartment() { Check(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment() { CoUninitialize(); }
};

namespace detail {

template <typename Interface>
struct ClassOf;
template <>
struct ClassOf<ISmtpMail> {
    using Type = SmtpMail;
};
template <>
struct ClassOf<IMailMessage> {
    using Type = MailMessage;
};
template <>
struct ClassOf<IMailAddress> {
    using Type = MailAddress;
};
template <>
struct ClassOf<IMailAttachment> {
    using Type = MailAttachment;
};

}  // namespace detail

// A new object: Create<IMailMessage>() makes a MailMessage, and so on. Throws Error.
template <typename Interface>
ComPtr<Interface> Create() {
    ComPtr<IClassFactory> factory;
    Check(DllGetClassObject(__uuidof(typename detail::ClassOf<Interface>::Type),
                            __uuidof(IClassFactory), reinterpret_cast<void**>(factory.Put())));
    ComPtr<Interface> object;
    Check(factory->CreateInstance(nullptr, __uuidof(Interface),
                                  reinterpret_cast<void**>(object.Put())));
    return object;
}

}  // namespace quorvane::client

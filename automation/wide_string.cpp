#include "automation/wide_string.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <stdexcept>

namespace quorvane {
namespace {

// The platform's conversions take 32-bit lengths.
int ConversionLength(std::size_t size) {
    if (size > static_cast<std::size_t>(INT_MAX)) throw std::length_error("text too long");
    return static_cast<int>(size);
}

// Units that are looked at together; loops of this length become vector instructions.
constexpr std::size_t kBlock = 8;

// ASCII is the same in every code page that can be a thread's; most texts are nothing else.
bool IsAscii(WideView text) {
    unsigned all = 0;
    for (; text.size() >= kBlock; text.remove_prefix(kBlock)) {
        for (std::size_t i = 0; i < kBlock; ++i) all |= text[i];
    }
    for (const WCHAR c : text) all |= c;
    return all < 0x80;
}

void AppendNarrow(UINT codePage, WideView text, std::string& out) {
    if (IsAscii(text)) return AppendLowBytes(text, out);
    const int units = ConversionLength(text.size());
    // A character that only resembles one of the code page must not turn into it: what looks like
    // a letter of an address could become a bracket. UTF-8 as a code page doesn't know the flag.
    DWORD flags = codePage == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS;
    int bytes =
        WideCharToMultiByte(codePage, flags, text.data(), units, nullptr, 0, nullptr, nullptr);
    if (bytes == 0 && flags != 0) {
        flags = 0;
        bytes =
            WideCharToMultiByte(codePage, flags, text.data(), units, nullptr, 0, nullptr, nullptr);
    }
    const std::size_t start = out.size();
    out.resize(start + static_cast<std::size_t>(std::max(bytes, 0)));
    WideCharToMultiByte(codePage, flags, text.data(), units, out.data() + start, bytes, nullptr,
                        nullptr);
}

std::string Narrow(UINT codePage, WideView text) {
    std::string out;
    AppendNarrow(codePage, text, out);
    return out;
}

WideString Widen(UINT codePage, std::string_view bytes) {
    WideString out;
    if (bytes.empty()) return out;
    const int size = ConversionLength(bytes.size());
    const int units = MultiByteToWideChar(codePage, 0, bytes.data(), size, nullptr, 0);
    out.resize(static_cast<std::size_t>(std::max(units, 0)));
    MultiByteToWideChar(codePage, 0, bytes.data(), size, out.data(), units);
    return out;
}

template <class Character>
constexpr Character FoldAscii(Character c) {
    return c >= Character('A') && c <= Character('Z') ? Character(c + 32) : c;
}

template <class View>
View DropLeadingSpace(View text) {
    while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
    return text;
}

template <class View>
View DropTrailingSpace(View text) {
    while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
    return text;
}

template <class View>
bool EqualFolded(View a, View b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](auto x, auto y) { return FoldAscii(x) == FoldAscii(y); });
}

}  // namespace

void AppendAnsi(WideView text, std::string& out) {
    AppendNarrow(CP_THREAD_ACP, text, out);
}

std::string ToAnsi(WideView text) {
    return Narrow(CP_THREAD_ACP, text);
}

WideString FromAnsi(std::string_view bytes) {
    return Widen(CP_THREAD_ACP, bytes);
}

std::string ToUtf8(WideView text) {
    return Narrow(CP_UTF8, text);
}

WideString FromUtf8(std::string_view bytes) {
    return Widen(CP_UTF8, bytes);
}

WideString WidenBytes(std::string_view bytes) {
    WideString out(bytes.size(), WCHAR(0));
    std::transform(bytes.begin(), bytes.end(), out.begin(),
                   [](char c) { return static_cast<WCHAR>(static_cast<unsigned char>(c)); });
    return out;
}

void AppendLowBytes(WideView text, std::string& out) {
    const std::size_t start = out.size();
    out.resize(start + text.size());
    char* to = out.data() + start;
    for (; text.size() >= kBlock; text.remove_prefix(kBlock)) {
        for (std::size_t i = 0; i < kBlock; ++i) to[i] = static_cast<char>(text[i] & 0xFF);
        to += kBlock;
    }
    for (const WCHAR c : text) *to++ = static_cast<char>(c & 0xFF);
}

std::string LowBytes(WideView text) {
    std::string out;
    AppendLowBytes(text, out);
    return out;
}

WideString FromBstr(BSTR text) {
    return text ? WideString(text) : WideString();
}

HRESULT ToBstr(WideView text, BSTR* out) {
    if (!out) return E_INVALIDARG;
    *out = nullptr;
    if (text.size() > UINT_MAX / sizeof(WCHAR)) return E_OUTOFMEMORY;
    *out = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return *out ? S_OK : E_OUTOFMEMORY;
}

WideView TrimLeft(WideView text) {
    return DropLeadingSpace(text);
}

WideView TrimRight(WideView text) {
    return DropTrailingSpace(text);
}

std::string_view Trim(std::string_view text) {
    return DropLeadingSpace(DropTrailingSpace(text));
}

bool EqualIgnoreCase(WideView a, WideView b) {
    return EqualFolded(a, b);
}

bool EqualIgnoreCase(std::string_view a, std::string_view b) {
    return EqualFolded(a, b);
}

bool StartsWithIgnoreCase(WideView text, WideView prefix) {
    return EqualFolded(text.substr(0, prefix.size()), prefix);
}

std::size_t HashIgnoreCase(WideView text) {
    std::uint64_t hash = 0xCBF29CE484222325;  // FNV-1a, a unit at a time
    for (const WCHAR c : text) hash = (hash ^ FoldAscii(c)) * 0x100000001B3;
    return static_cast<std::size_t>(hash ^ hash >> 32);
}

}  // namespace quorvane

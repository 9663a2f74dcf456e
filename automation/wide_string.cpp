#include "automation/wide_string.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <type_traits>

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
template <class Character>
bool IsAscii(std::basic_string_view<Character> text) {
    using Unsigned = std::make_unsigned_t<Character>;
    unsigned all = 0;
    for (; text.size() >= kBlock; text.remove_prefix(kBlock)) {
        for (std::size_t i = 0; i < kBlock; ++i) all |= static_cast<Unsigned>(text[i]);
    }
    for (const Character c : text) all |= static_cast<Unsigned>(c);
    return all < 0x80;
}

// Puts each unit of the text there, made narrower or wider.
template <class From, class To>
void CopyUnits(std::basic_string_view<From> text, To* to) {
    const auto convert = [](From c) {
        return static_cast<To>(static_cast<std::make_unsigned_t<From>>(c));
    };
    for (; text.size() >= kBlock; text.remove_prefix(kBlock)) {
        // By way of units that overlap nothing, which lets this be vector instructions.
        std::array<To, kBlock> units;
        for (std::size_t i = 0; i < kBlock; ++i) units[i] = convert(text[i]);
        std::memcpy(to, units.data(), sizeof(units));
        to += kBlock;
    }
    for (const From c : text) *to++ = convert(c);
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

void AssignWide(UINT codePage, std::string_view bytes, WideString& out) {
    if (IsAscii(bytes)) {
        out.resize(bytes.size());
        return CopyUnits(bytes, out.data());
    }
    const int size = ConversionLength(bytes.size());
    const int units = MultiByteToWideChar(codePage, 0, bytes.data(), size, nullptr, 0);
    out.resize(static_cast<std::size_t>(std::max(units, 0)));
    MultiByteToWideChar(codePage, 0, bytes.data(), size, out.data(), units);
}

WideString Widen(UINT codePage, std::string_view bytes) {
    WideString out;
    AssignWide(codePage, bytes, out);
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

void AssignAnsi(std::string_view bytes, WideString& out) {
    AssignWide(CP_THREAD_ACP, bytes, out);
}

std::string ToUtf8(WideView text) {
    return Narrow(CP_UTF8, text);
}

WideString FromUtf8(std::string_view bytes) {
    return Widen(CP_UTF8, bytes);
}

WideString WidenBytes(std::string_view bytes) {
    WideString out(bytes.size(), WCHAR(0));
    CopyUnits(bytes, out.data());
    return out;
}

void AppendLowBytes(WideView text, std::string& out) {
    const std::size_t start = out.size();
    out.resize(start + text.size());
    CopyUnits(text, out.data() + start);
}

std::string LowBytes(WideView text) {
    std::string out;
    AppendLowBytes(text, out);
    return out;
}

WideView BstrView(BSTR text) {
    return text ? WideView(text) : WideView();
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

// Text inside the component is UTF-16; this header names the string types and the conversions
// where it meets 8-bit text and automation strings.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <string>
#include <string_view>

namespace quorvane {

// UTF-16 text. WCHAR is the platform's 16-bit character; literals are written OLESTR("...").
using WideString = std::basic_string<WCHAR>;
using WideView = std::basic_string_view<WCHAR>;

// Converts with the calling thread's ANSI code page. Characters that the code page can't
// represent become its default character.
void AppendAnsi(WideView text, std::string& out);
std::string ToAnsi(WideView text);
WideString FromAnsi(std::string_view bytes);
// The same into a string that exists, whose room is used.
void AssignAnsi(std::string_view bytes, WideString& out);

// Converts to UTF-8 without a byte-order mark; an unpaired surrogate becomes U+FFFD.
std::string ToUtf8(WideView text);
// Converts from UTF-8; each malformed sequence becomes U+FFFD.
WideString FromUtf8(std::string_view bytes);

// Widens each byte to one UTF-16 unit, unchanged.
WideString WidenBytes(std::string_view bytes);
// Reduces each UTF-16 unit to its low 8 bits: the ISO 8859-1 form of text up to U+00FF.
void AppendLowBytes(WideView text, std::string& out);
std::string LowBytes(WideView text);

// The text of an automation string up to its first NUL; a null string is empty. The view lasts as
// long as the string.
WideView BstrView(BSTR text);
inline WideString FromBstr(BSTR text) {
    return WideString(BstrView(text));
}
// Gives *out a new automation string with a copy of the text, embedded NULs included, which the
// caller owns. E_OUTOFMEMORY when it can't be allocated; E_INVALIDARG for a null out.
HRESULT ToBstr(WideView text, BSTR* out);

// True for the characters that the C library calls white space: blank, tab, LF, VT, FF, CR.
template <class Character>
constexpr bool IsSpace(Character c) {
    return c == Character(' ') || (c >= Character('\t') && c <= Character('\r'));
}
// Without the white space at the beginning, at the end, at both.
WideView TrimLeft(WideView text);
WideView TrimRight(WideView text);
inline WideView Trim(WideView text) {
    return TrimLeft(TrimRight(text));
}
std::string_view Trim(std::string_view text);

// Compares, ignoring the case of ASCII letters only.
bool EqualIgnoreCase(WideView a, WideView b);
bool EqualIgnoreCase(std::string_view a, std::string_view b);
bool StartsWithIgnoreCase(WideView text, WideView prefix);
// The same for texts that EqualIgnoreCase calls equal.
std::size_t HashIgnoreCase(WideView text);

}  // namespace quorvane

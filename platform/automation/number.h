// Numbers as conversions between variants see them.
#pragma once

#include <oleauto.h>

#include <string>
#include <string_view>
#include <variant>

namespace quorvane::platform {

// A signed, an unsigned or a real number.
using Number = std::variant<LONGLONG, ULONGLONG, double>;

// The number in a variant of a numeric type, VT_BOOL or VT_EMPTY; false for any other type.
bool NumberOf(const VARIANT& value, Number& number);

// The number that the text is, blanks around it left out: digits with an optional sign, decimal
// point and exponent. False for any other text.
bool ParseNumber(std::u16string_view text, Number& number);

// Shortest decimal form with at most `digits` significant digits.
std::u16string FormatNumber(const Number& number, int digits);

// Makes a variant of a numeric type or VT_BOOL. Real numbers are rounded, halves to the even
// neighbour. DISP_E_OVERFLOW when the type can't hold it, DISP_E_TYPEMISMATCH for any other type.
HRESULT StoreNumber(const Number& number, VARTYPE type, VARIANT& value);

}  // namespace quorvane::platform

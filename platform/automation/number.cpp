#include "number.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace quorvane::platform {
namespace {

template <class... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};
template <class... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

// Rounds to an integer of 64 bits, halves to the even neighbour; false when it doesn't fit.
template <class Integer>
bool Round(double real, Integer& integer) {
    // Not std::nearbyint, which goes by the rounding mode of the host.
    const double lower = std::floor(real);
    const double half = real - lower;
    const bool up = half > 0.5 || (half == 0.5 && std::fmod(lower, 2) != 0);
    const double rounded = up ? lower + 1 : lower;
    constexpr int kBits = std::numeric_limits<Integer>::digits;
    constexpr double kEnd = static_cast<double>(Integer{1} << (kBits - 1)) * 2;
    if (!(rounded >= static_cast<double>(std::numeric_limits<Integer>::min())) || rounded >= kEnd) {
        return false;
    }
    integer = static_cast<Integer>(rounded);
    return true;
}

// Stores the number in an integer member; DISP_E_OVERFLOW when it doesn't fit.
template <class Integer>
HRESULT StoreInteger(const Number& number, Integer& member) {
    const auto store = [&member](auto value) {
        if (!std::in_range<Integer>(value)) return DISP_E_OVERFLOW;
        member = static_cast<Integer>(value);
        return S_OK;
    };
    if (const double* const real = std::get_if<double>(&number)) {
        LONGLONG integer;
        ULONGLONG positive;
        if (Round(*real, integer)) return store(integer);
        return Round(*real, positive) ? store(positive) : DISP_E_OVERFLOW;
    }
    if (const LONGLONG* const integer = std::get_if<LONGLONG>(&number)) return store(*integer);
    return store(std::get<ULONGLONG>(number));
}

double ToReal(const Number& number) {
    return std::visit([](auto value) { return static_cast<double>(value); }, number);
}

HRESULT StoreSingle(const Number& number, float& member) {
    const double real = ToReal(number);
    if (std::abs(real) > static_cast<double>(std::numeric_limits<float>::max()) &&
        !std::isinf(real)) {
        return DISP_E_OVERFLOW;
    }
    member = static_cast<float>(real);
    return S_OK;
}

bool IsBlank(char16_t c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r');
}

std::u16string Widen(std::string_view text) {
    return {text.begin(), text.end()};
}

std::u16string FormatReal(double real, int digits) {
    if (real == 0) return u"0";  // -0 too
    std::array<char, 64> text;
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), real,
                                            std::chars_format::general, digits);
    std::u16string result = Widen({text.data(), static_cast<std::size_t>(end - text.data())});
    for (char16_t& c : result) {
        if (c == u'e') c = u'E';
    }
    return result;
}

}  // namespace

bool NumberOf(const VARIANT& value, Number& number) {
    switch (value.vt) {
        case VT_EMPTY:
            number = LONGLONG{0};
            return true;
        case VT_I1:
            number = LONGLONG{static_cast<signed char>(value.cVal)};
            return true;
        case VT_I2:
        case VT_BOOL:
            number = LONGLONG{value.iVal};
            return true;
        case VT_I4:
        case VT_INT:
            number = LONGLONG{value.lVal};
            return true;
        case VT_I8:
            number = value.llVal;
            return true;
        case VT_UI1:
            number = LONGLONG{value.bVal};
            return true;
        case VT_UI2:
            number = LONGLONG{value.uiVal};
            return true;
        case VT_UI4:
        case VT_UINT:
            number = LONGLONG{value.ulVal};
            return true;
        case VT_UI8:
            number = value.ullVal;
            return true;
        case VT_R4:
            number = static_cast<double>(value.fltVal);
            return true;
        case VT_R8:
            number = value.dblVal;
            return true;
        default:
            return false;
    }
}

bool ParseNumber(std::u16string_view text, Number& number) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    if (!text.empty() && text.front() == u'+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == u'-') return false;
    }
    std::string digits;
    for (const char16_t c : text) {
        // No letter but that of an exponent: "inf" and "nan" are no numbers.
        const bool allowed = (c >= u'0' && c <= u'9') || c == u'.' || c == u'-' || c == u'+' ||
                             c == u'e' || c == u'E';
        if (!allowed) return false;
        digits += static_cast<char>(c);
    }
    const char* const start = digits.data();
    const char* const end = start + digits.size();
    LONGLONG integer;
    if (const auto parsed = std::from_chars(start, end, integer);
        parsed.ec == std::errc() && parsed.ptr == end) {
        number = integer;
        return true;
    }
    double real;
    const auto parsed = std::from_chars(start, end, real);
    number = real;
    return parsed.ec == std::errc() && parsed.ptr == end;
}

std::u16string FormatNumber(const Number& number, int digits) {
    return std::visit(Overloaded{[digits](double real) { return FormatReal(real, digits); },
                                 [](auto integer) { return Widen(std::to_string(integer)); }},
                      number);
}

HRESULT StoreNumber(const Number& number, VARTYPE type, VARIANT& value) {
    switch (type) {
        case VT_I1: {
            signed char small = 0;
            const HRESULT hr = StoreInteger(number, small);
            value.cVal = static_cast<CHAR>(small);
            return hr;
        }
        case VT_I2:
            return StoreInteger(number, value.iVal);
        case VT_I4:
        case VT_INT:
            return StoreInteger(number, value.lVal);
        case VT_I8:
            return StoreInteger(number, value.llVal);
        case VT_UI1:
            return StoreInteger(number, value.bVal);
        case VT_UI2:
            return StoreInteger(number, value.uiVal);
        case VT_UI4:
        case VT_UINT:
            return StoreInteger(number, value.ulVal);
        case VT_UI8:
            return StoreInteger(number, value.ullVal);
        case VT_R4:
            return StoreSingle(number, value.fltVal);
        case VT_R8:
            value.dblVal = ToReal(number);
            return S_OK;
        case VT_BOOL:
            value.boolVal = ToReal(number) != 0 ? VARIANT_TRUE : VARIANT_FALSE;
            return S_OK;
        default:
            return DISP_E_TYPEMISMATCH;
    }
}

}  // namespace quorvane::platform

#include "model/address_entry.h"

#include <algorithm>

namespace quorvane {
namespace {

// Place of the first of the two, or npos.
std::size_t FindEither(WideView text, WCHAR a, WCHAR b) {
    const auto found =
        std::find_if(text.begin(), text.end(), [=](WCHAR c) { return c == a || c == b; });
    return found == text.end() ? WideView::npos : static_cast<std::size_t>(found - text.begin());
}

}  // namespace

void ParseAddressText(WideView text, CAddressEntry& entry) {
    entry.name.clear();
    entry.address.clear();
    const std::size_t open = FindEither(text, '<', '[');
    const std::size_t close = FindEither(text, '>', ']');
    // A pair of brackets with at least one character between them, in this order.
    if (open != WideView::npos && close != WideView::npos && close > open && close - open > 1) {
        entry.name = Trim(text.substr(0, open));
        entry.address = text.substr(open + 1, close - open - 1);
    } else {
        entry.address = Trim(text);
    }
}

CAddressEntry MakeAddressEntry(WideView addressText, WideView nameText) {
    CAddressEntry entry;
    ParseAddressText(addressText, entry);
    if (!nameText.empty()) entry.name = nameText;
    return entry;
}

}  // namespace quorvane

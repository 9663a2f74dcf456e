#include "model/address_entry.h"

namespace quorvane {

void ParseAddressText(WideView text, CAddressEntry& entry) {
    entry.name.clear();
    entry.address.clear();
    const std::size_t open = text.find_first_of(OLESTR("<["));
    const std::size_t close = text.find_first_of(OLESTR(">]"));
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

// A name and an address as messages keep them.
#pragma once

#include "automation/wide_string.h"

namespace quorvane {

struct CAddressEntry {
    WideString name;     // display name; may be empty
    WideString address;  // bare address without angle brackets; may be empty
};

// Splits a text of the form 'name <address>' or 'name [address]' into the name, trimmed, and the
// address between the brackets, as it stands. Anything else is an address as a whole, trimmed.
void ParseAddressText(WideView text, CAddressEntry& entry);

// Parses the address text; a name text that is not empty replaces the name found in it.
CAddressEntry MakeAddressEntry(WideView addressText, WideView nameText);

}  // namespace quorvane

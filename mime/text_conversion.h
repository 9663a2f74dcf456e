// From UTF-16 to the bytes of a message.
#pragma once

#include <cstddef>
#include <string>

#include "automation/wide_string.h"

namespace quorvane {

// Name of the character set that stands for UTF-8.
inline constexpr WideView kUnicodeCharset = OLESTR("unicode");

// True for the name "unicode" in any case: such text goes out as UTF-8. Text of every other
// character set goes out as the low byte of each UTF-16 unit.
bool IsUnicodeCharset(WideView charset);

// The name that a receiver needs for the bytes.
std::string CharsetLabel(WideView charset);

// Appends the bytes of the text in the character set. An unpaired surrogate becomes U+FFFD.
void AppendConverted(WideView text, WideView charset, std::string& out);

// Takes a piece of at least `size` units off the text, if it has as many, that ends with a line: so
// line-based encoders can take the pieces one after the other.
WideView TakeLines(WideView& text, std::size_t size);

}  // namespace quorvane

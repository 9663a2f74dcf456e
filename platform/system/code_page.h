// Conversions between UTF-16 and 8-bit text on views, for the functions of winnls.h and for the
// names that the stand-in passes to Linux.
#pragma once

#include <winnls.h>

#include <string>
#include <string_view>

namespace quorvane::platform {

// UTF-8 of the text; false when it has an unpaired surrogate.
bool ToUtf8(std::u16string_view text, std::string& out);
// UTF-16 of the bytes; malformed sequences become U+FFFD.
std::u16string FromUtf8(std::string_view bytes);

}  // namespace quorvane::platform

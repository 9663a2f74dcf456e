// Lines of unencoded text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvane {

enum class TextBytes {
    SevenBit,  // each byte from 0x7F on is written as '?'
    EightBit,  // all bytes are written as they are
};

// Appends the text in lines of at most 76 bytes. A longer line is cut behind the last of the
// characters "\t -:;.,?!" that fits, or after 76 bytes when there is none. A CR, with or without a
// LF, ends a line; a LF elsewhere stays as it is. Lines that begin with a dot get a second one
// (RFC 5321 section 4.5.2), which the 76 don't count.
void WrapLines(std::string_view text, TextBytes bytes, std::string& out);

// Size of what WrapLines appends, for text with ordinary lines; text with many bare CRs or leading
// dots can take more.
std::size_t WrapLinesSizeEstimate(std::size_t textSize);

}  // namespace quorvane

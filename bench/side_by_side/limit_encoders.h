// Encoders without checks, for the machine that they run on: how far one could get.
#pragma once

#include <cstddef>

namespace quorvane::bench {

constexpr std::size_t kLineBytes = 57;  // of a Base64 line

// Base64 in lines of 76 characters with CRLF. Writes up to 32 bytes beyond. Returns the end.
char* AppendBase64(const char* bytes, std::size_t size, char* out);

// Quoted-printable of text whose lines end in CRLF. Writes and reads up to 32 bytes beyond. Returns
// the end.
char* AppendQuotedPrintable(const char* text, std::size_t size, char* out);

}  // namespace quorvane::bench

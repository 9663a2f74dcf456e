// The inner loops of Base64. They write into memory that the caller has made large enough.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string_view>
#include <vector>

namespace quorvane {

inline constexpr std::string_view kBase64Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Writes Base64Size(size) characters without line breaks; returns their end.
char* EncodeBase64(const BYTE* bytes, std::size_t size, char* out);

// Writes Base64LinesSize(size) characters: lines of 76 characters and a shorter last one, each
// with CRLF behind it. Never reads or writes a byte outside of the two ranges.
using Base64LineEncoder = void (*)(const BYTE* bytes, std::size_t size, char* out);

void EncodeBase64LinesPortable(const BYTE* bytes, std::size_t size, char* out);

// All that this processor can run, the fastest first: with 32-byte vectors (AVX2), with 16-byte
// vectors (SSSE3), and the portable one.
std::vector<Base64LineEncoder> Base64LineEncoders();

Base64LineEncoder FastestBase64LineEncoder();

}  // namespace quorvane

// The inner loops of Base64. They write into memory that the caller has made large enough.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string_view>

namespace quorvane {

inline constexpr std::string_view kBase64Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Writes Base64Size(size) characters without line breaks; returns their end.
char* EncodeBase64(const BYTE* bytes, std::size_t size, char* out);

// Writes Base64LinesSize(size) characters: lines of 76 characters and a shorter last one, each
// with CRLF behind it. Never reads or writes a byte outside of the two ranges.
using Base64LineEncoder = void (*)(const BYTE* bytes, std::size_t size, char* out);

void EncodeBase64LinesPortable(const BYTE* bytes, std::size_t size, char* out);

// The same with 16-byte vectors; null on a processor without the instructions (SSSE3).
Base64LineEncoder VectorBase64LineEncoder();

// The fastest one that this processor can run.
Base64LineEncoder ChooseBase64LineEncoder();

}  // namespace quorvane

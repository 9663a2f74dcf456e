#include "bench/side_by_side/limit_encoders.h"

#include <immintrin.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace quorvane::bench {
namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// 24 bytes to 32 characters.
__attribute__((target("avx2"))) void Encode24(const char* in, char* out) {
    const __m256i lower = _mm256_set_epi8(10, 11, 9, 10, 7, 8, 6, 7, 4, 5, 3, 4, 1, 2, 0, 1, 10, 11,
                                          9, 10, 7, 8, 6, 7, 4, 5, 3, 4, 1, 2, 0, 1);
    // 12 bytes in each half, so that each half makes 16 characters of its own.
    const __m256i bytes = _mm256_shuffle_epi8(
        _mm256_set_m128i(_mm_loadu_si128(reinterpret_cast<const __m128i*>(in + 12)),
                         _mm_loadu_si128(reinterpret_cast<const __m128i*>(in))),
        lower);
    // Multiplications are the shifts, each of its own width, that bring four times six bits down.
    const __m256i high = _mm256_mulhi_epu16(_mm256_and_si256(bytes, _mm256_set1_epi32(0x0FC0FC00)),
                                            _mm256_set1_epi32(0x04000040));
    const __m256i low = _mm256_mullo_epi16(_mm256_and_si256(bytes, _mm256_set1_epi32(0x003F03F0)),
                                           _mm256_set1_epi32(0x01000010));
    const __m256i values = _mm256_or_si256(high, low);
    // What to add to a value is looked up by its range: 13 for A-Z, 0 for a-z, 1.. for the others.
    const __m256i range = _mm256_sub_epi8(_mm256_subs_epu8(values, _mm256_set1_epi8(51)),
                                          _mm256_cmpgt_epi8(values, _mm256_set1_epi8(25)));
    const __m256i offsets =
        _mm256_setr_epi8(65, 71, -4, -4, -4, -4, -4, -4, -4, -4, -4, -4, -19, -16, 0, 0, 65, 71, -4,
                         -4, -4, -4, -4, -4, -4, -4, -4, -4, -19, -16, 0, 0);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out),
                        _mm256_add_epi8(values, _mm256_shuffle_epi8(offsets, range)));
}

char* AppendLine(const char* bytes, std::size_t size, char* out) {
    for (; size > 0; bytes += 3, size -= size < 3 ? size : 3) {
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            group = group << 8 | (i < size ? static_cast<unsigned char>(bytes[i]) : 0u);
        }
        for (std::size_t i = 0; i < 4; ++i) {
            *out++ = i > size ? '=' : kAlphabet[group >> (18 - 6 * i) & 0x3F];
        }
    }
    return out;
}

// Copies 32 characters and returns how many of them, from the first on, need no encoding.
__attribute__((target("avx2,bmi"))) std::ptrdiff_t CopyPlain(const char* in, char* out) {
    const __m256i text = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), text);
    const __m256i isPrintable = _mm256_cmpgt_epi8(text, _mm256_set1_epi8(0x1F));
    const __m256i isEqualSign = _mm256_cmpeq_epi8(text, _mm256_set1_epi8('='));
    const auto plain =
        static_cast<unsigned>(_mm256_movemask_epi8(_mm256_andnot_si256(isEqualSign, isPrintable)));
    return static_cast<std::ptrdiff_t>(_tzcnt_u64(~static_cast<std::uint64_t>(plain)));
}

char* AppendEncoded(unsigned char c, char* out) {
    *out++ = '=';
    *out++ = "0123456789ABCDEF"[c >> 4];
    *out++ = "0123456789ABCDEF"[c & 0xF];
    return out;
}

}  // namespace

char* AppendBase64(const char* bytes, std::size_t size, char* out) {
    constexpr std::size_t kRead = 76;  // by the vectors of a line
    for (; size >= kRead; bytes += kLineBytes, size -= kLineBytes) {
        Encode24(bytes, out);
        Encode24(bytes + 24, out + 32);
        Encode24(bytes + 48, out + 64);
        std::memcpy(out + 76, "\r\n", 2);
        out += 78;
    }
    while (size > 0) {
        const std::size_t line = std::min(size, kLineBytes);
        out = AppendLine(bytes, line, out);
        std::memcpy(out, "\r\n", 2);
        out += 2;
        bytes += line;
        size -= line;
    }
    return out;
}

char* AppendQuotedPrintable(const char* text, std::size_t size, char* out) {
    constexpr std::ptrdiff_t kLongest = 72;  // with room for one more, encoded, and the "="
    const char* const end = text + size;
    const char* line = out;
    while (text < end) {
        const std::ptrdiff_t room = std::max<std::ptrdiff_t>(kLongest - (out - line), 0);
        const std::ptrdiff_t plain = std::min({CopyPlain(text, out), end - text, room});
        text += plain;
        out += plain;
        if (text == end) break;
        if (*text == '\r') {
            if (out > line && out[-1] == ' ') out = AppendEncoded(' ', out - 1);
            std::memcpy(out, "\r\n", 2);
            line = out += 2;
            text += 2;
            continue;
        }
        if (out - line >= kLongest) {
            std::memcpy(out, "=\r\n", 3);
            line = out += 3;
        } else if (plain < 32) {
            out = AppendEncoded(static_cast<unsigned char>(*text++), out);
        }
    }
    return out;
}

}  // namespace quorvane::bench

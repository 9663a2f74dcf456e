#include "mime/base64_kernel.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "mime/base64.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace quorvane {
namespace {

using CharacterPair = std::array<char, 2>;

// The two characters of each 12-bit value: half as many look-ups as one for each sextet.
constexpr std::array<CharacterPair, 4096> MakePairs() {
    std::array<CharacterPair, 4096> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        pairs[i] = {kBase64Alphabet[i >> 6], kBase64Alphabet[i & 0x3F]};
    }
    return pairs;
}

constexpr std::array<CharacterPair, 4096> kPairs = MakePairs();

inline void PutPair(unsigned value, char* out) {
    std::memcpy(out, kPairs[value].data(), 2);
}

inline char* PutLineEnd(char* out) {
    out[0] = '\r';
    out[1] = '\n';
    return out + 2;
}

#if defined(__x86_64__)

// Encodes the first 12 of 16 bytes into 16 characters.
__attribute__((target("ssse3"))) inline __m128i EncodeTwelve(__m128i bytes) {
    // Each 32-bit lane gets one group as b1 b0 b2 b1, so that every sextet lies within a 16-bit
    // half, and the two multiplications move the sextets to the low ends of the lane's bytes.
    const __m128i order = _mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10);
    const __m128i groups = _mm_shuffle_epi8(bytes, order);
    const __m128i even = _mm_mulhi_epu16(_mm_and_si128(groups, _mm_set1_epi32(0x0FC0FC00)),
                                         _mm_set1_epi32(0x04000040));
    const __m128i odd = _mm_mullo_epi16(_mm_and_si128(groups, _mm_set1_epi32(0x003F03F0)),
                                        _mm_set1_epi32(0x01000010));
    const __m128i sextets = _mm_or_si128(even, odd);

    // Within a run of the alphabet the character is the sextet plus a constant. The run's number:
    // 0 for 26 to 51, 1 to 10 for the digits, 11 and 12 for the last two, 13 for 0 to 25.
    const __m128i upper = _mm_cmpgt_epi8(_mm_set1_epi8(26), sextets);
    const __m128i run = _mm_or_si128(_mm_subs_epu8(sextets, _mm_set1_epi8(51)),
                                     _mm_and_si128(upper, _mm_set1_epi8(13)));
    constexpr char kDigit = '0' - 52;
    const __m128i offsets =
        _mm_setr_epi8('a' - 26, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit, kDigit,
                      kDigit, kDigit, '+' - 62, '/' - 63, 'A', 0, 0);
    return _mm_add_epi8(sextets, _mm_shuffle_epi8(offsets, run));
}

__attribute__((target("ssse3"))) void EncodeBase64LinesVector(const BYTE* bytes, std::size_t size,
                                                              char* out) {
    // The fifth step of a line reads 7 bytes of the next line, and its last 4 characters are
    // overwritten by the line end and the next line; so the lines at the end are left to the
    // portable loop.
    constexpr std::size_t kLookAhead = 16;
    while (size >= kBase64LineBytes + kLookAhead) {
        for (std::size_t step = 0; step < 5; ++step) {
            const auto* from = reinterpret_cast<const __m128i*>(bytes + 12 * step);
            auto* to = reinterpret_cast<__m128i*>(out + 16 * step);
            _mm_storeu_si128(to, EncodeTwelve(_mm_loadu_si128(from)));
        }
        PutLineEnd(out + kBase64LineSize - 2);
        bytes += kBase64LineBytes;
        size -= kBase64LineBytes;
        out += kBase64LineSize;
    }
    EncodeBase64LinesPortable(bytes, size, out);
}

#endif

}  // namespace

char* EncodeBase64(const BYTE* bytes, std::size_t size, char* out) {
    const BYTE* const groupsEnd = bytes + size / 3 * 3;
    for (; bytes != groupsEnd; bytes += 3, out += 4) {
        const unsigned group = unsigned{bytes[0]} << 16 | unsigned{bytes[1]} << 8 | bytes[2];
        PutPair(group >> 12, out);
        PutPair(group & 0xFFF, out + 2);
    }
    const std::size_t rest = size % 3;
    if (rest == 0) return out;
    const unsigned group = unsigned{bytes[0]} << 16 | (rest == 2 ? unsigned{bytes[1]} << 8 : 0);
    PutPair(group >> 12, out);
    PutPair(group & 0xFFF, out + 2);
    std::memset(out + 1 + rest, '=', 3 - rest);
    return out + 4;
}

void EncodeBase64LinesPortable(const BYTE* bytes, std::size_t size, char* out) {
    while (size > 0) {
        const std::size_t line = std::min(size, kBase64LineBytes);
        out = PutLineEnd(EncodeBase64(bytes, line, out));
        bytes += line;
        size -= line;
    }
}

Base64LineEncoder VectorBase64LineEncoder() {
#if defined(__x86_64__)
    if (__builtin_cpu_supports("ssse3")) return EncodeBase64LinesVector;
#endif
    return nullptr;
}

Base64LineEncoder ChooseBase64LineEncoder() {
    static const Base64LineEncoder chosen = [] {
        const Base64LineEncoder vector = VectorBase64LineEncoder();
        return vector ? vector : EncodeBase64LinesPortable;
    }();
    return chosen;
}

}  // namespace quorvane

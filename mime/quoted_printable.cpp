#include "mime/quoted_printable.h"

#include <algorithm>
#include <array>

#include "mime/eight_bytes.h"
#include "mime/line_buffer.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quorvane {
namespace {

constexpr std::size_t kLineLimit = 76;
constexpr std::size_t kSoftLimit = kLineLimit - 1;  // leaves room for the '=' of a soft break

constexpr bool IsPlain(char c) {
    return c >= ' ' && c <= '~' && c != '=';
}

constexpr bool NeedsEscape(char c) {
    return !IsPlain(c) && c != '\r' && c != '\n' && c != '\t';
}

constexpr EightBytes NotPlain(EightBytes bytes) {
    return (~AtLeast(bytes, ' ') & kHighBits) | AtLeast(bytes, 0x7F) | EqualTo(bytes, '=');
}

// The copiers copy plain characters up to the first other one, `most` at most, and tell how many.
// They may read up to `textEnd` and write kCopySlack bytes behind what they copied.
constexpr std::size_t kCopySlack = 16;

std::size_t FinishCopy(const char* from, std::size_t most, char* to, std::size_t count) {
    while (count < most && IsPlain(from[count])) {
        to[count] = from[count];
        ++count;
    }
    return count;
}

struct PortableCopier {
    static std::size_t Copy(const char* from, std::size_t most, const char* textEnd, char* to) {
        std::size_t count = 0;
        while (count < most && textEnd - from >= static_cast<std::ptrdiff_t>(count + 8)) {
            const EightBytes bytes = LoadEight(from + count);
            std::memcpy(to + count, &bytes, 8);
            if (const EightBytes others = NotPlain(bytes)) {
                return std::min(count + FirstPassed(others), most);
            }
            count += 8;
        }
        return FinishCopy(from, most, to, std::min(count, most));
    }
};

#if defined(__SSE2__)

// Every 64-bit x86 processor has these instructions. Lines are too short to gain from wider ones.
struct VectorCopier {
    static std::size_t Copy(const char* from, std::size_t most, const char* textEnd, char* to) {
        std::size_t count = 0;
        while (count < most && textEnd - from >= static_cast<std::ptrdiff_t>(count + 16)) {
            const auto bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + count));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + count), bytes);
            if (const unsigned others = NotPlain(bytes)) {
                return std::min(count + static_cast<std::size_t>(std::countr_zero(others)), most);
            }
            count += 16;
        }
        return FinishCopy(from, most, to, std::min(count, most));
    }

private:
    // A bit for each byte. Bytes from 0x80 on are negative here.
    static unsigned NotPlain(__m128i bytes) {
        const __m128i low = _mm_cmplt_epi8(bytes, _mm_set1_epi8(' '));
        const __m128i high = _mm_cmpeq_epi8(bytes, _mm_set1_epi8(0x7F));
        const __m128i equals = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('='));
        return static_cast<unsigned>(
            _mm_movemask_epi8(_mm_or_si128(_mm_or_si128(low, high), equals)));
    }
};

#endif

using Escape = std::array<char, 3>;

constexpr std::array<Escape, 256> MakeEscapes() {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::array<Escape, 256> escapes{};
    for (std::size_t c = 0; c < escapes.size(); ++c) {
        escapes[c] = {'=', kDigits[c >> 4], kDigits[c & 0x0F]};
    }
    return escapes;
}

constexpr std::array<Escape, 256> kEscapes = MakeEscapes();

// Writes the lines of one text, one unit after the other: a character or an escape, which no
// break may split. Where it is in the buffer is handed on and not kept in a member, which would
// have to be stored and loaded for every character.
template <class Copier>
class QuotedPrintableEncoder {
public:
    explicit QuotedPrintableEncoder(std::string& out) : out_(out) {}

    void Encode(std::string_view text) {
        textEnd_ = text.data() + text.size();
        char* to = buffer_.data();
        while (!text.empty()) {
            bool ended = false;
            const std::string_view line = TakeLine(text, ended);
            to = StartLine(line, to);
            if (!line.empty()) to = EncodeLine(line, to);
            if (ended) to = PutLineEnd(to);
        }
        Flush(to);
    }

private:
    char* EncodeLine(std::string_view line, char* to) {
        // Only the last unit may fill the line to its end, since no soft break follows it.
        const char* from = line.data();
        const char* const last = from + line.size() - 1;
        while (from != last) {
            const auto room = static_cast<std::size_t>(lineStart_ + kSoftLimit - to);
            const auto rest = static_cast<std::size_t>(last - from);
            const std::size_t plain = Copier::Copy(from, std::min(rest, room), textEnd_, to);
            from += plain;
            to += plain;
            if (from == last) break;
            do {
                to = PutUnit(from, NeedsEscape(*from), kSoftLimit, to);
                ++from;
            } while (from != last && NeedsEscape(*from));
        }
        const bool isBlank = *last == ' ' || *last == '\t';
        return PutUnit(last, isBlank || NeedsEscape(*last), kLineLimit, to);
    }

    // Puts the character in the line, or in the next one when it doesn't fit.
    char* PutUnit(const char* c, bool escaped, std::size_t limit, char* to) {
        const auto column = static_cast<std::size_t>(to - lineStart_);
        if (column + (escaped ? 3 : 1) > limit) {
            *to++ = '=';
            to = StartLine({c, 1}, PutLineEnd(to));
        }
        if (!escaped) {
            *to = *c;
            return to + 1;
        }
        const Escape& escape = kEscapes[static_cast<unsigned char>(*c)];
        return std::copy(escape.begin(), escape.end(), to);
    }

    static char* PutLineEnd(char* to) {
        to[0] = '\r';
        to[1] = '\n';
        return to + 2;
    }

    // Makes room for a line that begins with the text, of which the columns don't count a doubled
    // dot.
    char* StartLine(std::string_view text, char* to) {
        constexpr std::ptrdiff_t kLongestLine = kLineLimit + 4;  // dot, soft break, line end
        if (buffer_.data() + kBufferSize - to < kLongestLine) to = Flush(to);
        if (text.starts_with('.')) *to++ = '.';
        lineStart_ = to;
        return to;
    }

    char* Flush(char* to) {
        out_.append(buffer_.data(), to);
        return buffer_.data();
    }

    static constexpr std::size_t kBufferSize = 4096;

    std::string& out_;
    const char* textEnd_ = nullptr;
    char* lineStart_ = nullptr;
    std::array<char, kBufferSize + kCopySlack> buffer_;
};

}  // namespace

void EncodeQuotedPrintablePortable(std::string_view text, std::string& out) {
    QuotedPrintableEncoder<PortableCopier>(out).Encode(text);
}

void EncodeQuotedPrintable(std::string_view text, std::string& out) {
#if defined(__SSE2__)
    QuotedPrintableEncoder<VectorCopier>(out).Encode(text);
#else
    EncodeQuotedPrintablePortable(text, out);
#endif
}

std::size_t QuotedPrintableSizeEstimate(std::string_view text) {
    std::size_t escapes = 0;
    std::size_t done = 0;
    for (; done + 8 <= text.size(); done += 8) {
        escapes += CountPassed(NotPlain(LoadEight(text.data() + done)));
    }
    for (const char c : text.substr(done)) escapes += NeedsEscape(c);
    return QuotedPrintableSizeEstimate(text.size(), escapes);
}

std::size_t QuotedPrintableSizeEstimate(std::size_t size, std::size_t escapes) {
    const std::size_t escaped = size + 2 * escapes;
    return escaped + (escaped / (kSoftLimit - 2) + 1) * 4;
}

}  // namespace quorvane

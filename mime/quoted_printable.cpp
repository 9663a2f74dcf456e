#include "mime/quoted_printable.h"

#include <algorithm>
#include <array>

#include "mime/eight_bytes.h"
#include "mime/line_buffer.h"

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

// Copies plain characters up to the first other one, `size` at most; tells how many.
std::size_t CopyPlain(const char* from, std::size_t size, char* to) {
    std::size_t count = 0;
    while (count + 8 <= size) {
        const EightBytes bytes = LoadEight(from + count);
        std::memcpy(to + count, &bytes, 8);
        if (const EightBytes others = NotPlain(bytes)) return count + FirstPassed(others);
        count += 8;
    }
    while (count < size && IsPlain(from[count])) {
        to[count] = from[count];
        ++count;
    }
    return count;
}

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
// break may split.
class QuotedPrintableEncoder {
public:
    explicit QuotedPrintableEncoder(std::string& out) : out_(out) {}

    void Encode(std::string_view text) {
        while (!text.empty()) {
            bool ended = false;
            const std::string_view line = TakeLine(text, ended);
            StartLine(line);
            if (!line.empty()) EncodeLine(line);
            if (ended) PutLineEnd();
        }
        Flush();
    }

private:
    void EncodeLine(std::string_view line) {
        // Only the last unit may fill the line to its end, since no soft break follows it.
        const char* from = line.data();
        const char* const last = from + line.size() - 1;
        while (from != last) {
            const auto room = static_cast<std::size_t>(lineStart_ + kSoftLimit - to_);
            const std::size_t rest = static_cast<std::size_t>(last - from);
            const std::size_t plain = CopyPlain(from, std::min(rest, room), to_);
            from += plain;
            to_ += plain;
            if (from == last) break;
            PutUnit(from, NeedsEscape(*from), kSoftLimit);
            ++from;
        }
        const bool isBlank = *last == ' ' || *last == '\t';
        PutUnit(last, isBlank || NeedsEscape(*last), kLineLimit);
    }

    // Puts the character in the line, or in the next one when it doesn't fit.
    void PutUnit(const char* c, bool escaped, std::size_t limit) {
        const auto column = static_cast<std::size_t>(to_ - lineStart_);
        if (column + (escaped ? 3 : 1) > limit) {
            *to_++ = '=';
            PutLineEnd();
            StartLine({c, 1});
        }
        if (escaped) {
            const Escape& escape = kEscapes[static_cast<unsigned char>(*c)];
            to_ = std::copy(escape.begin(), escape.end(), to_);
        } else {
            *to_++ = *c;
        }
    }

    void PutLineEnd() {
        *to_++ = '\r';
        *to_++ = '\n';
    }

    // Makes room for a line that begins with the text, of which the columns don't count a doubled
    // dot.
    void StartLine(std::string_view text) {
        constexpr std::ptrdiff_t kLongestLine = kLineLimit + 4;  // dot, soft break, line end
        if (buffer_.end() - to_ < kLongestLine) Flush();
        if (text.starts_with('.')) *to_++ = '.';
        lineStart_ = to_;
    }

    void Flush() {
        out_.append(buffer_.begin(), to_);
        to_ = buffer_.begin();
    }

    std::string& out_;
    std::array<char, 4096> buffer_;
    char* to_ = buffer_.begin();
    char* lineStart_ = to_;
};

}  // namespace

void EncodeQuotedPrintable(std::string_view text, std::string& out) {
    QuotedPrintableEncoder(out).Encode(text);
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

#include "mime/quoted_printable.h"

#include <algorithm>
#include <array>

#include "mime/line_buffer.h"

namespace quorvane {
namespace {

constexpr std::size_t kLineLimit = 76;
constexpr std::size_t kSoftLimit = kLineLimit - 1;  // leaves room for the '=' of a soft break
constexpr std::string_view kSoftBreak = "=\r\n";

constexpr bool NeedsEscape(unsigned char c) {
    if (c == '\r' || c == '\n' || c == '\t') return false;
    return c < 0x20 || c == '=' || c >= 0x7F;
}

constexpr std::array<bool, 256> MakeEscapeTable() {
    std::array<bool, 256> table{};
    for (unsigned c = 0; c < table.size(); ++c)
        table[c] = NeedsEscape(static_cast<unsigned char>(c));
    return table;
}

constexpr std::array<bool, 256> kEscaped = MakeEscapeTable();

bool IsEscaped(char c) {
    return kEscaped[static_cast<unsigned char>(c)];
}

// Writes the lines of one text, one unit after the other: a character or an escape, which no
// break may split.
class QuotedPrintableEncoder {
public:
    explicit QuotedPrintableEncoder(std::string& out) : out_(out) {}

    void Encode(std::string_view text) {
        while (!text.empty()) {
            bool ended = false;
            EncodeLine(TakeLine(text, ended));
            if (ended) out_.Put("\r\n");
        }
        out_.Flush();
    }

private:
    void EncodeLine(std::string_view line) {
        column_ = 0;
        if (line.empty()) return;
        // Only the last unit may fill the line to its end, since no soft break follows it.
        const char last = line.back();
        line.remove_suffix(1);
        while (!line.empty()) {
            const std::size_t plain = PlainRun(line.substr(0, kSoftLimit - column_));
            if (plain > 0) {
                Put(line.substr(0, plain));
                line.remove_prefix(plain);
            } else if (column_ == kSoftLimit) {
                BreakLine();
            } else {
                PutEscape(line.front(), kSoftLimit);
                line.remove_prefix(1);
            }
        }
        PutLast(last);
    }

    static std::size_t PlainRun(std::string_view text) {
        std::size_t length = 0;
        while (length < text.size() && !IsEscaped(text[length])) ++length;
        return length;
    }

    void PutLast(char c) {
        if (IsEscaped(c) || c == ' ' || c == '\t') {
            PutEscape(c, kLineLimit);
        } else {
            Put({&c, 1});
        }
    }

    void PutEscape(char c, std::size_t limit) {
        constexpr char kDigits[] = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(c);
        const char escape[] = {'=', kDigits[byte >> 4], kDigits[byte & 0x0F]};
        if (column_ + sizeof(escape) > limit) BreakLine();
        Put({escape, sizeof(escape)});
    }

    void Put(std::string_view units) {
        if (column_ == 0) {
            out_.PutLineStart(units);
        } else {
            out_.Put(units);
        }
        column_ += units.size();
    }

    void BreakLine() {
        out_.Put(kSoftBreak);
        column_ = 0;
    }

    LineBuffer out_;
    std::size_t column_ = 0;  // characters of the present line, without a doubled dot
};

}  // namespace

void EncodeQuotedPrintable(std::string_view text, std::string& out) {
    QuotedPrintableEncoder(out).Encode(text);
}

std::size_t QuotedPrintableSizeEstimate(std::string_view text) {
    const auto escapes =
        static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
            return NeedsEscape(static_cast<unsigned char>(c));
        }));
    const std::size_t escaped = text.size() + 2 * escapes;
    return escaped + (escaped / (kSoftLimit - 2) + 1) * (kSoftBreak.size() + 1);
}

}  // namespace quorvane

#include "mime/wrap_lines.h"

#include <algorithm>
#include <array>

#include "mime/line_buffer.h"

namespace quorvane {
namespace {

constexpr std::size_t kLineLimit = 76;
constexpr std::string_view kBreakCharacters = "\t -:;.,?!";

using BreakTable = std::array<bool, 256>;

constexpr char Masked(char c) {
    return static_cast<unsigned char>(c) >= 0x7F ? '?' : c;
}

// A masked byte is a question mark by the time lines are cut, and so a place to cut behind.
constexpr BreakTable MakeBreakTable(TextBytes bytes) {
    BreakTable table{};
    for (const char c : kBreakCharacters) table[static_cast<unsigned char>(c)] = true;
    if (bytes == TextBytes::SevenBit) std::fill(table.begin() + 0x7F, table.end(), true);
    return table;
}

constexpr BreakTable kSevenBitBreaks = MakeBreakTable(TextBytes::SevenBit);
constexpr BreakTable kEightBitBreaks = MakeBreakTable(TextBytes::EightBit);

// Length of the piece to cut off a line that is longer than the limit. A break character at the
// very start of the line doesn't count.
std::size_t PieceLength(std::string_view line, const BreakTable& breaks) {
    for (std::size_t k = kLineLimit - 1; k > 0; --k) {
        if (breaks[static_cast<unsigned char>(line[k])]) return k + 1;
    }
    return kLineLimit;
}

void WrapAll(std::string_view text, const BreakTable& breaks, std::string& out) {
    LineBuffer buffer(out);
    while (!text.empty()) {
        bool ended = false;
        std::string_view line = TakeLine(text, ended);
        while (line.size() > kLineLimit) {
            const std::size_t length = PieceLength(line, breaks);
            buffer.PutLineStart(line.substr(0, length));
            buffer.Put("\r\n");
            line.remove_prefix(length);
        }
        buffer.PutLineStart(line);
        if (ended) buffer.Put("\r\n");
    }
    buffer.Flush();
}

}  // namespace

void WrapLines(std::string_view text, TextBytes bytes, std::string& out) {
    if (bytes == TextBytes::EightBit) {
        WrapAll(text, kEightBitBreaks, out);
        return;
    }
    const std::size_t start = out.size();
    WrapAll(text, kSevenBitBreaks, out);
    char* const wrapped = out.data() + start;
    std::transform(wrapped, out.data() + out.size(), wrapped, Masked);
}

std::size_t WrapLinesSizeEstimate(std::size_t textSize) {
    return textSize + (textSize / kLineLimit + 1) * 3;
}

}  // namespace quorvane

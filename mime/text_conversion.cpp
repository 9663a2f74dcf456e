#include "mime/text_conversion.h"

#include <algorithm>
#include <array>

namespace quorvane {
namespace {

constexpr bool IsHighSurrogate(WCHAR c) {
    return (c & 0xFC00) == 0xD800;
}

// True when the text begins with a unit other than LF whose low byte is that of LF.
bool BecomesLineFeed(WideView text) {
    return !text.empty() && (text[0] & 0xFF) == WCHAR('\n') && text[0] != WCHAR('\n');
}

// Converts piece by piece: the size of the result isn't known beforehand, and finding it out would
// cost as much as the conversion.
void AppendUtf8(WideView text, std::string& out) {
    constexpr std::size_t kPiece = 2048;  // units, of 3 bytes at most
    std::array<char, 3 * kPiece> bytes;
    while (!text.empty()) {
        std::size_t size = std::min(text.size(), kPiece);
        if (size < text.size() && IsHighSurrogate(text[size - 1])) --size;
        const int count =
            WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(size), bytes.data(),
                                static_cast<int>(bytes.size()), nullptr, nullptr);
        out.append(bytes.data(), static_cast<std::size_t>(std::max(count, 0)));
        text.remove_prefix(size);
    }
}

}  // namespace

bool IsUnicodeCharset(WideView charset) {
    return EqualIgnoreCase(charset, kUnicodeCharset);
}

std::string CharsetLabel(WideView charset) {
    return IsUnicodeCharset(charset) ? "utf-8" : ToAnsi(charset);
}

void AppendConverted(WideView text, WideView charset, std::string& out) {
    if (IsUnicodeCharset(charset)) {
        AppendUtf8(text, out);
    } else {
        AppendLowBytes(text, out);
    }
}

WideView TakeLines(WideView& text, std::size_t size) {
    std::size_t end = text.size();
    if (size < text.size()) {
        std::size_t cr = text.find(WCHAR('\r'), size);
        // A unit whose low byte becomes a LF would lose the CR that it follows.
        while (cr != WideView::npos && BecomesLineFeed(text.substr(cr + 1))) {
            cr = text.find(WCHAR('\r'), cr + 1);
        }
        if (cr != WideView::npos) end = cr + 1;
        if (end < text.size() && text[end] == WCHAR('\n')) ++end;
    }
    const WideView piece = text.substr(0, end);
    text.remove_prefix(end);
    return piece;
}

}  // namespace quorvane

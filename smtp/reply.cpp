#include "smtp/reply.h"

#include <algorithm>

namespace quorvane {
namespace {

constexpr std::size_t kCodeLength = 3;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace

// "000" is no code either: it would pass for the 0 that means success.
int ReplyCode(std::string_view received) {
    if (received.size() < kCodeLength ||
        !std::all_of(received.begin(), received.begin() + kCodeLength, IsDigit)) {
        return -1;
    }
    const int code = (received[0] - '0') * 100 + (received[1] - '0') * 10 + (received[2] - '0');
    return code == 0 ? -1 : code;
}

bool IsCompleteReply(std::string_view received) {
    const std::size_t end = received.rfind('\n');
    if (end == std::string_view::npos || end <= kCodeLength) {
        return false;
    }
    // Most replies have one line. The search for another starts before the line end's own two
    // bytes.
    const std::size_t previous =
        received.find('\n') == end ? std::string_view::npos : received.rfind('\n', end - 2);
    const std::size_t start = previous == std::string_view::npos ? 0 : previous + 1;
    const std::size_t mark = start + kCodeLength;
    return mark >= end || received[mark] != '-';
}

bool HoldsMoreThanReply(WideView text) {
    bool last = false;
    while (!text.empty() && !last) {
        const WideView line = text.substr(0, text.find(WCHAR('\n')));
        last = line.size() <= kCodeLength || line[kCodeLength] != WCHAR('-');
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return !text.empty();
}

void AssignReplyText(std::string_view received, WideString& text) {
    AssignAnsi(received, text);
    text.resize(TrimRight(text).size());
    // Callers take texts as automation strings, which many of them read up to a NUL.
    if (received.find('\0') != std::string_view::npos) {
        std::replace(text.begin(), text.end(), WCHAR(0), WCHAR('?'));
    }
}

}  // namespace quorvane

#include "mime/header_writer.h"

#include <algorithm>
#include <cstddef>

#include "mime/append_written.h"
#include "mime/eight_bytes.h"

namespace quorvane {
namespace {

constexpr std::string_view kSeparator = ": ";
constexpr std::string_view kLineEnd = "\r\n";
constexpr unsigned char kLowestPlain = '\r' + 1;  // above zero and the line breaks

bool IsLineBreak(char c) {
    return c == '\r' || c == '\n';
}

bool StartsBlank(std::string_view text) {
    return text.starts_with(' ') || text.starts_with('\t');
}

void AppendName(std::string& out, std::string_view name) {
    if (name.starts_with('.')) out += '.';
    // A blank in front would make it a part of the field before.
    if (StartsBlank(name)) {
        out += '?';
        name.remove_prefix(1);
    }
    const std::size_t start = out.size();
    out += name;
    std::replace_if(
        out.begin() + static_cast<std::ptrdiff_t>(start), out.end(),
        [](char c) { return IsLineBreak(c) || c == '\0'; }, '?');
}

// True when the value can go out as it is: its only line breaks are CRLF with a blank or tab
// behind, and it holds no zero byte.
bool IsFolded(std::string_view value) {
    while (!value.empty()) {
        const auto special = std::find_if(value.begin(), value.end(),
                                          [](char c) { return IsLineBreak(c) || c == '\0'; });
        value.remove_prefix(static_cast<std::size_t>(special - value.begin()));
        if (value.empty()) break;
        if (!value.starts_with("\r\n") || !StartsBlank(value.substr(2))) return false;
        value.remove_prefix(3);
    }
    return true;
}

void AppendFolded(std::string& out, std::string_view value) {
    while (!value.empty()) {
        const char c = value.front();
        const bool pair = value.starts_with("\r\n");
        value.remove_prefix(pair ? 2 : 1);
        if (IsLineBreak(c)) {
            out += "\r\n";
            if (!StartsBlank(value)) out += ' ';
        } else {
            out += c == '\0' ? '?' : c;
        }
    }
}

// For names and values of every kind.
void AppendCarefully(std::string& out, std::string_view name, std::string_view value) {
    AppendName(out, name);
    out += kSeparator;
    if (IsFolded(value)) {
        out += value;
    } else {
        AppendFolded(out, value);
    }
    out += kLineEnd;
}

char* Put(std::string_view text, char* to) {
    return std::copy(text.begin(), text.end(), to);
}

}  // namespace

void AppendHeaderLine(std::string& out, std::string_view name,
                      std::initializer_list<std::string_view> value) {
    // Most lines go out as they are. One look by eight bytes tells which do; at what has just been
    // written it would have to wait for the memory.
    const bool isPlainName =
        !name.starts_with('.') && !StartsBlank(name) && !HasBelow(name, kLowestPlain);
    bool isPlainValue = true;
    std::size_t valueSize = 0;
    for (const std::string_view piece : value) {
        valueSize += piece.size();
        isPlainValue = isPlainValue && !HasBelow(piece, kLowestPlain);
    }
    const std::size_t start = out.size();
    const std::size_t valueStart = start + name.size() + kSeparator.size();
    AppendWritten(out, valueStart - start + valueSize + kLineEnd.size(), [&](char* to) {
        to = Put(kSeparator, Put(name, to));
        for (const std::string_view piece : value) to = Put(piece, to);
        Put(kLineEnd, to);
    });
    const std::string_view written(out.data() + valueStart, valueSize);
    if (isPlainName && (isPlainValue || IsFolded(written))) return;
    const std::string raw(written);
    out.resize(start);
    AppendCarefully(out, name, raw);
}

}  // namespace quorvane

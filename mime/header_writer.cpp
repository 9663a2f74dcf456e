#include "mime/header_writer.h"

#include <algorithm>
#include <cstddef>

namespace quorvane {
namespace {

constexpr bool IsNameCharacter(char c) {
    return c > ' ' && c < 0x7F && c != ':';
}

void AppendName(std::string& out, std::string_view name) {
    if (name.starts_with('.')) out += '.';
    const std::size_t start = out.size();
    out += name;
    std::replace_if(
        out.begin() + static_cast<std::ptrdiff_t>(start), out.end(),
        [](char c) { return !IsNameCharacter(c); }, '?');
}

bool IsLineBreak(char c) {
    return c == '\r' || c == '\n';
}

// True when the value holds a character that must not go out unseen. Most values don't, so this
// looks at all of it instead of stopping early, which lets the compiler use vectors.
bool NeedsCare(std::string_view value) {
    bool found = false;
    for (const char c : value) found |= IsLineBreak(c) || c == '\0';
    return found;
}

void AppendFolded(std::string& out, std::string_view value) {
    while (!value.empty()) {
        const char c = value.front();
        const bool pair = value.starts_with("\r\n");
        value.remove_prefix(pair ? 2 : 1);
        if (IsLineBreak(c)) {
            out += "\r\n";
            if (!value.starts_with(' ') && !value.starts_with('\t')) out += ' ';
        } else {
            out += c == '\0' ? '?' : c;
        }
    }
}

}  // namespace

void AppendHeaderLine(std::string& out, std::string_view name,
                      std::initializer_list<std::string_view> value) {
    AppendName(out, name);
    out += ": ";
    const std::size_t start = out.size();
    for (const std::string_view piece : value) out += piece;
    if (NeedsCare(std::string_view(out).substr(start))) {
        const std::string raw = out.substr(start);
        out.resize(start);
        AppendFolded(out, raw);
    }
    out += "\r\n";
}

}  // namespace quorvane

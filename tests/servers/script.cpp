#include "tests/servers/script.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace quorvane::testing {
namespace {

void SkipBlanks(std::string_view& line) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
}

char TakeEscape(std::string_view& text) {
    constexpr std::string_view names = "rnt0\\\"";
    constexpr std::string_view values("\r\n\t\0\\\"", 6);
    if (text.empty()) {
        throw std::invalid_argument("a backslash at the end");
    }
    const char name = text.front();
    text.remove_prefix(1);
    if (const std::size_t index = names.find(name); index != std::string_view::npos) {
        return values[index];
    }
    unsigned value = 0;
    if (name != 'x' || text.size() < 2 ||
        std::from_chars(text.data(), text.data() + 2, value, 16).ptr != text.data() + 2) {
        throw std::invalid_argument("an unknown escape");
    }
    text.remove_prefix(2);
    return static_cast<char>(value);
}

std::string Repeat(std::string_view pattern, std::size_t size) {
    if (pattern.empty()) {
        throw std::invalid_argument("a filler of nothing");
    }
    std::string text;
    while (text.size() < size) {
        text += pattern.substr(0, size - text.size());
    }
    return text;
}

}  // namespace

bool TakePrefix(std::string_view& line, std::string_view prefix) {
    if (!line.starts_with(prefix)) {
        return false;
    }
    line.remove_prefix(prefix.size());
    SkipBlanks(line);
    return true;
}

int TakeNumber(std::string_view& line) {
    int value = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), value);
    if (error != std::errc()) {
        throw std::invalid_argument("a number is missing");
    }
    line.remove_prefix(static_cast<std::size_t>(end - line.data()));
    SkipBlanks(line);
    return value;
}

std::string TakeQuoted(std::string_view& line) {
    if (!line.starts_with('"')) {
        throw std::invalid_argument("a text in quotes is missing");
    }
    line.remove_prefix(1);
    std::string text;
    for (;;) {
        if (line.empty()) {
            throw std::invalid_argument("a quote without an end");
        }
        const char c = line.front();
        line.remove_prefix(1);
        if (c == '"') {
            break;
        }
        text += c == '\\' ? TakeEscape(line) : c;
    }
    SkipBlanks(line);
    return text;
}

bool ParseStep(std::string_view line, Script& script) {
    using Kind = Step::Kind;
    if (line == "C: (message)") {
        script.push_back({Kind::ExpectMessage, {}});
    } else if (TakePrefix(line, "C: (message up to ")) {
        script.push_back({Kind::ExpectBeginning, {}, TakeNumber(line)});
    } else if (line == "C: (handshake)") {
        script.push_back({Kind::ExpectHandshake, {}});
    } else if (line == "C:" || line.starts_with("C: ")) {
        script.push_back(
            {Kind::Expect, std::string(line.substr(std::min<size_t>(3, line.size())))});
    } else if (line.starts_with("S: ")) {
        if (script.empty() || script.back().kind != Kind::Say) {
            script.push_back({Kind::Say, {}});
        }
        script.back().text.append(line.substr(3)).append("\r\n");
    } else if (TakePrefix(line, "S part:")) {
        script.push_back({Kind::SayPart, TakeQuoted(line)});
    } else if (TakePrefix(line, "S filler:")) {
        const int size = TakeNumber(line);
        script.push_back({Kind::SayPart, Repeat(TakeQuoted(line), static_cast<std::size_t>(size))});
    } else if (TakePrefix(line, "server waits ")) {
        script.push_back({Kind::Wait, {}, TakeNumber(line)});
    } else if (line == "server secures") {
        script.push_back({Kind::Secure, {}});
    } else if (line == "server closes") {
        script.push_back({Kind::Close, {}});
    } else if (line == "server resets") {
        script.push_back({Kind::Reset, {}});
    } else if (line == "server stops reading") {
        script.push_back({Kind::StopReading, {}});
    } else {
        return false;
    }
    return true;
}

Script ParseScript(std::initializer_list<std::string_view> lines) {
    Script script;
    for (const std::string_view line : lines) {
        if (!ParseStep(line, script)) throw std::invalid_argument(std::string(line));
    }
    return script;
}

std::string Printable(std::string_view bytes) {
    constexpr std::size_t limit = 200;
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes.substr(0, limit)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\r') {
            text += "\\r";
        } else if (c == '\n') {
            text += "\\n";
        } else if (byte < 0x20 || byte >= 0x7F) {
            text += {'\\', 'x', digits[byte / 16], digits[byte % 16]};
        } else {
            text += c;
        }
    }
    return bytes.size() > limit ? text + "..." : text;
}

}  // namespace quorvane::testing

#include "cli/option_values.h"

#include <algorithm>
#include <charconv>

#include "cli/text_input.h"

namespace quorvane::cli {

namespace {

std::string_view Trim(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

bool IsAscii(std::string_view text) {
    return std::ranges::none_of(text, [](unsigned char c) { return c >= 0x80; });
}

// The text of a quoted string (RFC 5322 section 3.2.4); any other text as it stands.
std::string Unquote(std::string_view text) {
    if (text.size() < 2 || text.front() != '"' || text.back() != '"') return std::string(text);
    std::string plain;
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        if (text[i] == '\\' && i + 2 < text.size()) ++i;
        plain += text[i];
    }
    return plain;
}

// Takes ',key=value' off the end of the text, where it stands last; no key when none does.
struct Suffix {
    std::string_view key;  // with the comma and the equals sign
    std::string_view value;
};
constexpr std::string_view kName = ",name=";
constexpr std::string_view kType = ",type=";
constexpr std::string_view kContentId = ",cid=";
Suffix TakeSuffix(std::string_view& text) {
    Suffix last;
    std::size_t start = 0;
    for (const std::string_view key : {kName, kType, kContentId}) {
        const auto found = text.rfind(key);
        if (found == text.npos || found < start) continue;
        start = found;
        last = {key, text.substr(found + key.size())};
    }
    if (!last.key.empty()) text = text.substr(0, start);
    return last;
}

bool IsCharset(std::string_view parameter) {
    constexpr std::string_view kKey = "charset=";
    return std::ranges::equal(parameter.substr(0, kKey.size()), kKey, [](char given, char small) {
        return (given >= 'A' && given <= 'Z' ? char(given + 32) : given) == small;
    });
}

// Where the parameter at the front ends: at a semicolon outside of quotes.
std::size_t ParameterSize(std::string_view text) {
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"') quoted = !quoted;
        if (text[i] == '\\') ++i;
        if (i < text.size() && text[i] == ';' && !quoted) return i;
    }
    return text.size();
}

// Takes the character set out of 'text/calendar; charset=utf-8; method=REQUEST' (RFC 2045 section
// 5.1); the other parameters stay with the type.
void SetType(std::string_view type, FileArgument& argument) {
    argument.contentType = Trim(type.substr(0, ParameterSize(type)));
    for (type.remove_prefix(ParameterSize(type)); !type.empty();
         type.remove_prefix(ParameterSize(type))) {
        type.remove_prefix(1);
        const std::string_view parameter = Trim(type.substr(0, ParameterSize(type)));
        if (IsCharset(parameter)) {
            argument.charset = Unquote(Trim(parameter.substr(parameter.find('=') + 1)));
        } else if (!parameter.empty()) {
            argument.contentType += "; " + std::string(parameter);
        }
    }
}

// Whether a comma or a semicolon outside of quotes stands between two at signs.
bool HoldsSeveral(std::string_view text) {
    bool quoted = false, address = false, separated = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\\') ++i;
        if (c == '"') quoted = !quoted;
        if (quoted) continue;
        if (c == '@' && separated) return true;
        if (c == '@') address = true;
        if (c == ',' || c == ';') separated = address;
    }
    return false;
}

}  // namespace

Address ParseAddress(std::string_view text) {
    if (HoldsSeveral(text)) {
        throw UsageError("'" + std::string(text) +
                         "' holds more than one address; give each an option of its own, as in "
                         "--to ann@example.org --to bob@example.org.");
    }
    const std::string_view whole = Trim(text);
    Address result{{}, std::string(whole)};
    const auto open = whole.rfind('<');
    if (whole.ends_with('>') && open != whole.npos) {
        result.name = Unquote(Trim(whole.substr(0, open)));
        result.address = Trim(whole.substr(open + 1, whole.size() - open - 2));
    }
    const auto at = result.address.rfind('@');
    if (at == result.address.npos || at == 0 || at + 1 == result.address.size() ||
        result.address.find_first_of("<> ") != result.address.npos) {
        throw UsageError("'" + std::string(text) +
                         "' is no address of the form user@host or Name <user@host>.");
    }
    // The component takes square brackets for angle brackets and would send to what is between.
    if (result.address.find_first_of("[]") != result.address.npos) {
        throw UsageError("The address in '" + std::string(text) +
                         "' holds square brackets; name the mail server by its domain instead.");
    }
    if (!IsAscii(result.address)) {
        throw UsageError("The address in '" + std::string(text) +
                         "' holds characters beyond ASCII; mail servers don't take them.");
    }
    return result;
}

FileArgument ParseFileArgument(std::string_view text) {
    FileArgument result;
    result.charset = "utf-8";
    std::string_view rest = text;
    for (Suffix suffix = TakeSuffix(rest); !suffix.key.empty(); suffix = TakeSuffix(rest)) {
        if (suffix.value.empty()) {
            throw UsageError("'" + std::string(text) + "' gives nothing for " +
                             std::string(suffix.key.substr(1)) + ".");
        }
        if (suffix.key == kName) result.name = suffix.value;
        if (suffix.key == kType) SetType(suffix.value, result);
        if (suffix.key == kContentId) result.contentId = ParseMessageId(suffix.value);
    }
    if (rest.empty()) throw UsageError("'" + std::string(text) + "' names no file.");
    result.file = rest;
    if (result.name.empty()) {
        const std::u8string name = PathOf(rest).filename().u8string();
        result.name.assign(name.begin(), name.end());
    }
    return result;
}

Header ParseHeader(std::string_view text) {
    const auto colon = text.find(':');
    const std::string_view name = Trim(text.substr(0, colon));
    const bool printable =
        std::ranges::all_of(name, [](unsigned char c) { return c > 0x20 && c < 0x7F; });
    if (colon == text.npos || name.empty() || !printable) {
        throw UsageError("'" + std::string(text) + "' is no header field of the form Name: value.");
    }
    if (!IsAscii(text)) {
        throw UsageError("The header field " + std::string(name) +
                         " holds characters beyond ASCII; write them as encoded words: "
                         "=?utf-8?Q?Zo=C3=AB?= is Zoë.");
    }
    return {std::string(name), std::string(Trim(text.substr(colon + 1)))};
}

Server ParseServer(std::string_view text) {
    Server result{std::string(text)};
    const auto colon = text.find(':');
    if (colon != text.npos) {
        const std::string_view port = text.substr(colon + 1);
        const char* end = port.data() + port.size();
        const auto [stop, error] = std::from_chars(port.data(), end, result.port);
        if (error != std::errc() || stop != end || result.port < 1 || result.port > 65535) {
            throw UsageError("'" + std::string(port) + "' is no port from 1 to 65535.");
        }
        result.host = text.substr(0, colon);
    }
    if (Trim(result.host).empty()) {
        throw UsageError("'" + std::string(text) + "' names no mail server.");
    }
    return result;
}

std::string ParseMessageId(std::string_view text) {
    std::string_view id = Trim(text);
    if (id.starts_with('<') && id.ends_with('>')) id = id.substr(1, id.size() - 2);
    return std::string(id);
}

}  // namespace quorvane::cli

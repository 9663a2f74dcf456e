#include "registry_tree.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace quorvane::platform {
namespace {

constexpr std::string_view kHeading = "Quorvane registry 1";
constexpr std::string_view kEnd = "end";  // a file without it was cut off

constexpr char16_t Fold(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
}

// Appends the text with everything but plain ASCII, and the '%' that announces it, as %XXXX.
void AppendEscaped(std::u16string_view text, std::string& out) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    for (const char16_t c : text) {
        if (c >= 0x20 && c < 0x7F && c != u'%') {
            out += static_cast<char>(c);
            continue;
        }
        out += '%';
        for (int shift = 12; shift >= 0; shift -= 4) out += kDigits[c >> shift & 0xF];
    }
}

template <class Number>
bool ParseNumber(std::string_view text, int base, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    return error == std::errc() && end == text.data() + text.size();
}

bool Unescape(std::string_view text, std::u16string& out) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c < 0x20 || c >= 0x7F) return false;
        if (c != '%') {
            out += static_cast<char16_t>(c);
            continue;
        }
        uint16_t unit;
        if (text.size() - i < 5 || !ParseNumber(text.substr(i + 1, 4), 16, unit)) return false;
        out += static_cast<char16_t>(unit);
        i += 4;
    }
    return true;
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        parts.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

}  // namespace

bool RegistryNameLess::operator()(std::u16string_view a, std::u16string_view b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](char16_t x, char16_t y) { return Fold(x) < Fold(y); });
}

const RegistryValues* RegistryTree::Find(std::u16string_view path) const {
    const auto found = keys_.find(path);
    return found == keys_.end() ? nullptr : &found->second;
}

RegistryValues& RegistryTree::Create(std::u16string_view path, bool& isNew) {
    for (std::size_t end = path.find(u'\\'); end != path.npos; end = path.find(u'\\', end + 1)) {
        keys_.try_emplace(std::u16string(path.substr(0, end)));
    }
    const auto [key, inserted] = keys_.try_emplace(std::u16string(path));
    isNew = inserted;
    return key->second;
}

bool RegistryTree::Remove(std::u16string_view path) {
    const auto key = keys_.find(path);
    if (key == keys_.end()) return false;
    keys_.erase(key);
    const std::u16string below = std::u16string(path) + u'\\';
    const RegistryNameLess less;
    std::erase_if(keys_, [&](const auto& entry) {
        const auto start = std::u16string_view(entry.first).substr(0, below.size());
        return !less(start, below) && !less(below, start);
    });
    return true;
}

bool RegistryTree::RemoveValue(std::u16string_view path, std::u16string_view name) {
    const auto key = keys_.find(path);
    if (key == keys_.end()) return false;
    const auto value = key->second.find(name);
    if (value == key->second.end()) return false;
    key->second.erase(value);
    return true;
}

std::string RegistryTree::Serialize() const {
    std::string text(kHeading);
    for (const auto& [path, values] : keys_) {
        text += "\nkey\t";
        AppendEscaped(path, text);
        for (const auto& [name, value] : values) {
            text += "\nvalue\t" + std::to_string(value.type) + '\t';
            AppendEscaped(name, text);
            text += '\t';
            AppendEscaped(value.data, text);
        }
    }
    text += '\n';
    text += kEnd;
    text += '\n';
    return text;
}

bool RegistryTree::Parse(std::string_view text) {
    keys_.clear();
    const std::vector<std::string_view> lines = Split(text, '\n');
    // The last line break leaves an empty line behind.
    if (lines.size() < 3 || lines.front() != kHeading || lines[lines.size() - 2] != kEnd ||
        !lines.back().empty()) {
        return false;
    }
    RegistryTree tree;
    RegistryValues* values = nullptr;
    for (std::size_t i = 1; i + 2 < lines.size(); ++i) {
        const std::vector<std::string_view> fields = Split(lines[i], '\t');
        std::u16string name;
        if (fields.size() == 2 && fields[0] == "key" && Unescape(fields[1], name)) {
            bool isNew;
            values = &tree.Create(name, isNew);
            continue;
        }
        RegistryValue value;
        if (fields.size() != 4 || fields[0] != "value" || !values ||
            !ParseNumber(fields[1], 10, value.type) || !Unescape(fields[2], name) ||
            !Unescape(fields[3], value.data)) {
            return false;
        }
        values->insert_or_assign(std::move(name), std::move(value));
    }
    keys_.swap(tree.keys_);
    return true;
}

}  // namespace quorvane::platform

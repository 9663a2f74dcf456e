#include "tests/server/registry_text.h"

#include <fstream>

#include "automation/wide_string.h"

namespace quorvane {
namespace {

using Wide = std::basic_string<WCHAR>;

Wide Widen(std::string_view text) {
    return Wide(text.begin(), text.end());
}

std::string Replace(std::string text, std::string_view what, std::string_view with) {
    const std::size_t at = text.find(what);
    return at == std::string::npos ? text : text.replace(at, what.size(), with);
}

RegistryLine Parse(const std::string& text) {
    RegistryLine line;
    constexpr std::string_view kSeparator = " = ";
    const std::size_t separator = text.find(kSeparator);
    line.key = text.substr(0, separator);
    if (separator != std::string::npos) line.data = text.substr(separator + kSeparator.size());
    const std::size_t bracket = line.key.find(" [");
    if (bracket != std::string::npos) {
        line.name = line.key.substr(bracket + 2, line.key.size() - bracket - 3);
        line.key.resize(bracket);
    }
    return line;
}

}  // namespace

std::vector<RegistryLine> ReviewedRegistry(const std::string& module) {
    std::ifstream file(QUORVANE_TEST_DATA "/server/registry.txt");
    std::vector<RegistryLine> lines;
    for (std::string text; std::getline(file, text);) {
        if (text.empty() || text.starts_with('#')) continue;
        lines.push_back(Parse(Replace(text, "%MODULE%", module)));
    }
    return lines;
}

std::string TextOf(const RegistryLine& line) {
    return line.key + (line.name.empty() ? "" : " [" + line.name + "]") +
           (line.data ? " = " + *line.data : "");
}

bool KeyExists(std::string_view key) {
    HKEY opened = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, Widen(key).c_str(), 0, KEY_READ, &opened) !=
        ERROR_SUCCESS) {
        return false;
    }
    RegCloseKey(opened);
    return true;
}

std::optional<std::string> ReadValue(std::string_view key, std::string_view name) {
    HKEY opened = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, Widen(key).c_str(), 0, KEY_READ, &opened) !=
        ERROR_SUCCESS) {
        return std::nullopt;
    }
    WCHAR buffer[512] = {};
    DWORD size = sizeof buffer - sizeof(WCHAR);
    DWORD type = 0;
    const LSTATUS error = RegQueryValueExW(opened, Widen(name).c_str(), nullptr, &type,
                                           reinterpret_cast<BYTE*>(buffer), &size);
    RegCloseKey(opened);
    if (error != ERROR_SUCCESS || type != REG_SZ) return std::nullopt;
    return ToUtf8(buffer);
}

}  // namespace quorvane

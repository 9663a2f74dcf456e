#include <winbase.h>
#include <winerror.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace {

// The host's name up to its first dot; empty when it can't be read.
std::string ReadHostLabel() {
    std::array<char, 256> host{};
    if (gethostname(host.data(), host.size() - 1) != 0) return {};
    const std::string_view name(host.data());
    return std::string(name.substr(0, name.find('.')).substr(0, MAX_COMPUTERNAME_LENGTH));
}

}  // namespace

BOOL GetComputerNameW(LPWSTR name, LPDWORD size) {
    // As on Windows, where a computer keeps its name until it starts anew. Each session asks.
    static const std::string label = ReadHostLabel();
    if (label.empty()) {
        SetLastError(ERROR_GEN_FAILURE);
        return FALSE;
    }
    const auto length = static_cast<DWORD>(label.size());
    if (!name || *size <= length) {
        *size = length + 1;
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return FALSE;
    }
    std::transform(label.begin(), label.end(), name, [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return static_cast<WCHAR>(byte >= 'a' && byte <= 'z' ? byte - 32 : byte);
    });
    name[length] = u'\0';
    *size = length;
    return TRUE;
}

#include <winbase.h>
#include <winerror.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <string_view>

BOOL GetComputerNameW(LPWSTR name, LPDWORD size) {
    std::array<char, 256> host{};
    if (gethostname(host.data(), host.size() - 1) != 0) {
        SetLastError(ERROR_GEN_FAILURE);
        return FALSE;
    }
    std::string_view label(host.data());
    label = label.substr(0, label.find('.')).substr(0, MAX_COMPUTERNAME_LENGTH);
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

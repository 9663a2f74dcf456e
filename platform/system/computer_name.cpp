#include <winbase.h>
#include <winerror.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace {

// The host's name up to its first dot; empty when it can't be read. Nothing to destroy.
class HostLabel {
public:
    HostLabel() {
        if (gethostname(host_.data(), host_.size() - 1) != 0) return;
        const std::string_view name(host_.data());
        size_ = std::min<std::size_t>(name.find('.'),
                                      std::min<std::size_t>(name.size(), MAX_COMPUTERNAME_LENGTH));
    }
    std::string_view text() const { return {host_.data(), size_}; }

private:
    std::array<char, 256> host_{};
    std::size_t size_ = 0;
};

}  // namespace

BOOL GetComputerNameW(LPWSTR name, LPDWORD size) {
    // As on Windows, where a computer keeps its name until it starts anew. Each session asks.
    static const HostLabel host;
    const std::string_view label = host.text();
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

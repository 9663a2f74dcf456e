#include "mime/content_type_lookup.h"

#include <winreg.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <type_traits>

namespace quorvane {
namespace {

constexpr std::size_t kTypeBufferSize = 260;  // UTF-16 units, with the final NUL

struct KeyCloser {
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using RegistryKey = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

std::optional<WideString> RegisteredType(const WideString& extension) {
    HKEY opened = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, extension.c_str(), 0, KEY_READ, &opened) !=
        ERROR_SUCCESS) {
        return std::nullopt;
    }
    const RegistryKey key(opened);
    std::array<WCHAR, kTypeBufferSize> text{};
    DWORD kind = 0;
    DWORD size = sizeof(text);
    if (RegQueryValueExW(key.get(), OLESTR("Content Type"), nullptr, &kind,
                         reinterpret_cast<BYTE*>(text.data()), &size) != ERROR_SUCCESS ||
        (kind != REG_SZ && kind != REG_EXPAND_SZ)) {
        return std::nullopt;
    }
    const auto end = text.begin() + size / sizeof(WCHAR);
    const auto terminator = std::find(text.begin(), end, WCHAR(0));
    if (terminator == text.end()) return std::nullopt;
    return WideString(text.begin(), terminator);
}

}  // namespace

WideString LookupContentType(const CAttachmentPart& attachment, WideView name) {
    if (!attachment.contentType.empty()) return attachment.contentType;
    const std::size_t dot = name.find(WCHAR('.'));
    if (dot != WideView::npos) {
        if (auto type = RegisteredType(WideString(name.substr(dot)))) return *std::move(type);
    }
    return OLESTR("application/octet-stream");
}

}  // namespace quorvane

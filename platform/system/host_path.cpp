#include "host_path.h"

#include <winerror.h>

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

#include "code_page.h"

namespace quorvane::platform {
namespace {

constexpr bool IsLetter(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

bool ParentIsDirectory(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    if (slash == std::string::npos || slash == 0) return true;
    struct stat status;
    return stat(path.substr(0, slash).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

bool ToHostPath(LPCWSTR path, std::string& out) {
    if (!path) return false;
    std::u16string_view text(path);
    bool hasDrive = false;
    if (text.size() >= 2 && IsLetter(text[0]) && text[1] == u':') {
        text.remove_prefix(2);
        hasDrive = true;
    }
    if (!ToUtf8(text, out)) return false;
    std::replace(out.begin(), out.end(), '\\', '/');
    if (hasDrive && (out.empty() || out.front() != '/')) out.insert(out.begin(), '/');
    return true;
}

DWORD PathError(int hostError, const std::string& path) {
    switch (hostError) {
        case ENOENT:
            return !path.empty() && ParentIsDirectory(path) ? ERROR_FILE_NOT_FOUND
                                                            : ERROR_PATH_NOT_FOUND;
        case ENOTDIR:
            return ERROR_PATH_NOT_FOUND;
        case EMFILE:
        case ENFILE:
            return ERROR_TOO_MANY_OPEN_FILES;
        case EACCES:
        case EPERM:
        case EISDIR:
            return ERROR_ACCESS_DENIED;
        case ENOMEM:
            return ERROR_NOT_ENOUGH_MEMORY;
        case EAGAIN:  // another process has a lease on it, which the kernel is asking back
            return ERROR_SHARING_VIOLATION;
        case ENAMETOOLONG:
            return ERROR_FILENAME_EXCED_RANGE;
        default:
            return ERROR_GEN_FAILURE;
    }
}

}  // namespace quorvane::platform

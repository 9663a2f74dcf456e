#include <winbase.h>
#include <winerror.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "handle.h"
#include "host_path.h"
#include "share_mode.h"
#include "thread.h"

using quorvane::platform::Descriptor;
using quorvane::platform::PathError;
using quorvane::platform::ShareForReading;
using quorvane::platform::ToHandle;
using quorvane::platform::ToHostPath;

namespace {

HANDLE Refuse(DWORD error, int descriptor = -1) {
    if (descriptor >= 0) close(descriptor);
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
}

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

DWORD DescriptorError(int hostError) {
    return hostError == EBADF ? ERROR_INVALID_HANDLE : ERROR_GEN_FAILURE;
}

}  // namespace

HANDLE CreateFileW(LPCWSTR name, DWORD access, DWORD shareMode, LPSECURITY_ATTRIBUTES,
                   DWORD disposition, DWORD, HANDLE) {
    std::string path;
    if (access != GENERIC_READ || disposition != OPEN_EXISTING) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    if (!ToHostPath(name, path)) return Refuse(ERROR_INVALID_NAME);
    // Not blocking: opening a pipe would wait for somebody to write into it.
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (descriptor < 0) return Refuse(PathError(errno, path));
    struct stat status;
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        return Refuse(ERROR_ACCESS_DENIED, descriptor);
    }
    if (!ShareForReading(descriptor, shareMode)) return Refuse(ERROR_SHARING_VIOLATION, descriptor);
    return ToHandle(descriptor);
}

BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD size, LPDWORD read, LPOVERLAPPED) {
    if (!read) return Fail(ERROR_INVALID_PARAMETER);
    *read = 0;
    while (*read < size) {
        // The kernel reads at most 2 GiB at a time.
        const ssize_t count =
            ::read(Descriptor(file), static_cast<char*>(buffer) + *read, size - *read);
        if (count == 0) break;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return Fail(DescriptorError(errno));
        *read += static_cast<DWORD>(count);
    }
    return TRUE;
}

BOOL GetFileSizeEx(HANDLE file, PLARGE_INTEGER size) {
    struct stat status;
    if (fstat(Descriptor(file), &status) != 0) return Fail(DescriptorError(errno));
    size->QuadPart = status.st_size;
    return TRUE;
}

BOOL CloseHandle(HANDLE object) {
    if (object == quorvane::platform::kThreadHandle) return TRUE;
    quorvane::platform::ForgetShareMode(Descriptor(object));
    // Never again after EINTR: Linux has closed the descriptor then.
    if (close(Descriptor(object)) != 0 && errno == EBADF) return Fail(ERROR_INVALID_HANDLE);
    return TRUE;
}

BOOL DeleteFileW(LPCWSTR name) {
    std::string path;
    if (!ToHostPath(name, path)) return Fail(ERROR_INVALID_NAME);
    return unlink(path.c_str()) == 0 ? TRUE : Fail(PathError(errno, path));
}

DWORD GetFileAttributesW(LPCWSTR name) {
    std::string path;
    if (!ToHostPath(name, path)) {
        SetLastError(ERROR_INVALID_NAME);
        return INVALID_FILE_ATTRIBUTES;
    }
    struct stat status;
    if (stat(path.c_str(), &status) != 0) {
        SetLastError(PathError(errno, path));
        return INVALID_FILE_ATTRIBUTES;
    }
    return S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
}

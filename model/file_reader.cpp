#include "model/file_reader.h"

#include <algorithm>
#include <limits>
#include <new>
#include <thread>

namespace quorvane {
namespace {

// The file may well be there.
bool IsShortage(DWORD error) {
    return error == ERROR_TOO_MANY_OPEN_FILES || error == ERROR_NOT_ENOUGH_MEMORY;
}

HANDLE Open(const WideString& path, DWORD shareMode, FilePatience::Clock::time_point deadline) {
    constexpr std::chrono::milliseconds kPause{10};
    for (;;) {
        const HANDLE handle = CreateFileW(path.c_str(), GENERIC_READ, shareMode, nullptr,
                                          OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
        if (handle != INVALID_HANDLE_VALUE) return handle;
        const DWORD error = GetLastError();
        const bool isShortage = IsShortage(error);
        if (error != ERROR_SHARING_VIOLATION && !isShortage) return handle;
        if (FilePatience::Clock::now() >= deadline) {
            if (isShortage) throw std::bad_alloc();
            return handle;
        }
        std::this_thread::sleep_for(kPause);
    }
}

}  // namespace

FileReader::FileReader(const WideString& path, DWORD shareMode, FilePatience& patience) {
    const auto deadline = patience.End();  // the wait for the turn counts
    turn_ = std::make_unique<FileTurn>(path, shareMode == 0 ? FileUse::Exclusive : FileUse::Shared);
    const HANDLE handle = Open(path, shareMode, deadline);
    if (handle == INVALID_HANDLE_VALUE) {
        turn_.reset();
        return;
    }
    handle_.reset(handle);
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(handle, &size)) {
        handle_.reset();
        return;
    }
    if (size.QuadPart > std::numeric_limits<DWORD>::max()) throw std::bad_alloc();
    size_ = static_cast<std::size_t>(size.QuadPart);
}

bool FileReader::Read(std::span<char> piece, std::size_t& count) {
    count = 0;
    while (count < piece.size()) {
        DWORD read = 0;
        const auto room = static_cast<DWORD>(
            std::min<std::size_t>(piece.size() - count, std::numeric_limits<int>::max()));
        if (!ReadFile(handle_.get(), piece.data() + count, room, &read, nullptr)) return false;
        if (read == 0) break;
        count += read;
    }
    return true;
}

bool FileReader::ReadAll(std::string& bytes) {
    bytes.clear();
    if (!IsOpen()) return false;
    bytes.resize(size_);
    std::size_t count = 0;
    if (!Read(bytes, count)) return false;
    bytes.resize(count);
    return true;
}

}  // namespace quorvane

#include "model/file_reader.h"

#include <algorithm>
#include <limits>
#include <new>

namespace quorvane {

FileReader::FileReader(const WideString& path, DWORD shareMode) {
    const HANDLE handle = CreateFileW(path.c_str(), GENERIC_READ, shareMode, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return;
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
    try {
        bytes.resize(size_);
    } catch (const std::bad_alloc&) {
        return false;
    }
    std::size_t count = 0;
    if (!Read(bytes, count)) return false;
    bytes.resize(count);
    return true;
}

}  // namespace quorvane

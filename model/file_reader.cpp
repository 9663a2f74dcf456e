#include "model/file_reader.h"

#include <algorithm>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <new>
#include <set>
#include <thread>

namespace quorvane {
namespace {

// The paths of all turns.
class Turns {
public:
    void Begin(const WideString& path) {
        std::unique_lock lock(mutex_);
        end_.wait(lock, [&] { return !paths_.contains(path); });
        paths_.insert(path);
    }
    void End(const WideString& path) {
        {
            const std::lock_guard lock(mutex_);
            paths_.erase(path);
        }
        end_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable end_;
    std::set<WideString> paths_;
};

// Never destroyed: threads that the end of the process overtakes may still read.
union Everlasting {
    Everlasting() : turns() {}
    ~Everlasting() {}
    Turns turns;
} g_everlasting;

HANDLE Open(const WideString& path, DWORD shareMode) {
    return CreateFileW(path.c_str(), GENERIC_READ, shareMode, nullptr, OPEN_EXISTING,
                       FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
}

HANDLE OpenPatiently(const WideString& path, DWORD shareMode, std::chrono::milliseconds patience) {
    constexpr std::chrono::milliseconds kPause{10};
    const auto deadline = std::chrono::steady_clock::now() + patience;
    HANDLE handle = Open(path, shareMode);
    while (handle == INVALID_HANDLE_VALUE && GetLastError() == ERROR_SHARING_VIOLATION &&
           std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(kPause);
        handle = Open(path, shareMode);
    }
    return handle;
}

}  // namespace

FileTurn::FileTurn(WideString path) : path_(std::move(path)) {
    g_everlasting.turns.Begin(path_);
}

FileTurn::~FileTurn() {
    g_everlasting.turns.End(path_);
}

FileReader::FileReader(const WideString& path, DWORD shareMode,
                       std::chrono::milliseconds patience) {
    if (shareMode == 0) turn_ = std::make_unique<FileTurn>(path);
    const HANDLE handle = OpenPatiently(path, shareMode, patience);
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
    bytes.resize(size_);
    std::size_t count = 0;
    if (!Read(bytes, count)) return false;
    bytes.resize(count);
    return true;
}

}  // namespace quorvane

// Reading the files that a message carries.
#pragma once

#include <windows.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <type_traits>

#include "automation/wide_string.h"
#include "model/file_turn.h"

namespace quorvane {

// How long one message waits for files that others have open, all of them together. Begins with the
// first file. Short enough for a message that is cancelled meanwhile to end as fast as others.
class FilePatience {
public:
    using Clock = std::chrono::steady_clock;

    Clock::time_point End() {
        if (!end_) end_ = Clock::now() + kLimit;
        return *end_;
    }

private:
    static constexpr std::chrono::milliseconds kLimit{400};

    std::optional<Clock::time_point> end_;
};

// An open file, read from its start. Used by one thread at a time.
class FileReader {
public:
    FileReader() = default;  // no file

    // Opens the file if it exists; shareMode is what others may do meanwhile (FILE_SHARE_READ, or
    // 0 for nothing). Waits for readers of this process, see FileTurn, and tries again as long as
    // there is patience while others have it open in another mode or the system is short of
    // something. Throws std::bad_alloc when it stays short, and for a file of 4 GiB or more, which
    // no message can hold: the send then fails instead of going out without it.
    FileReader(const WideString& path, DWORD shareMode, FilePatience& patience);

    bool IsOpen() const { return handle_ != nullptr; }
    std::size_t Size() const { return size_; }  // bytes, when the file was opened

    // Reads until the piece is full or the file ends; tells how many bytes there were. False on a
    // read error.
    bool Read(std::span<char> piece, std::size_t& count);

    // Reads as much as the file had when it was opened. False when it isn't open or can't be read.
    // Throws std::bad_alloc when there is no memory for it.
    bool ReadAll(std::string& bytes);

private:
    struct Closer {
        void operator()(HANDLE handle) const { CloseHandle(handle); }
    };

    std::unique_ptr<FileTurn> turn_;  // lasts longer than the handle
    std::unique_ptr<std::remove_pointer_t<HANDLE>, Closer> handle_;
    std::size_t size_ = 0;
};

}  // namespace quorvane

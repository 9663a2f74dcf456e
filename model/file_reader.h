// Reading the files that a message carries.
#pragma once

#include <windows.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <type_traits>

#include "automation/wide_string.h"

namespace quorvane {

// The right to open a file for oneself alone, within this process. Whoever wants it for the same
// path waits: threads that send messages with the same body file don't shut each other out.
class FileTurn {
public:
    explicit FileTurn(WideString path);
    ~FileTurn();
    FileTurn(const FileTurn&) = delete;
    FileTurn& operator=(const FileTurn&) = delete;

private:
    const WideString path_;
};

// An open file, read from its start. Used by one thread at a time.
class FileReader {
public:
    FileReader() = default;  // no file

    // Opens the file if it exists; shareMode is what others may do meanwhile (FILE_SHARE_READ, or
    // 0 for nothing). Goes on trying for `patience` while others have it open in another mode, and
    // for as long as it takes while other readers of this process have it for themselves alone.
    // Throws std::bad_alloc for a file of 4 GiB or more, which no message can hold: the send then
    // fails instead of going out without it.
    FileReader(const WideString& path, DWORD shareMode, std::chrono::milliseconds patience = {});

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

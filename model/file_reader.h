// Reading the files that a message carries.
#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <type_traits>

#include "automation/wide_string.h"

namespace quorvane {

// An open file, read from its start. Used by one thread at a time.
class FileReader {
public:
    FileReader() = default;  // no file

    // Opens the file if it exists; shareMode is what others may do meanwhile (FILE_SHARE_READ, or
    // 0 for nothing). Throws std::bad_alloc for a file of 4 GiB or more, which no message can
    // hold: the send then fails instead of going out without it.
    FileReader(const WideString& path, DWORD shareMode);

    bool IsOpen() const { return handle_ != nullptr; }
    std::size_t Size() const { return size_; }  // bytes, when the file was opened

    // Reads until the piece is full or the file ends; tells how many bytes there were. False on a
    // read error.
    bool Read(std::span<char> piece, std::size_t& count);

    // Reads as much as the file had when it was opened. False when it isn't open, can't be read or
    // there is no memory for it.
    bool ReadAll(std::string& bytes);

private:
    struct Closer {
        void operator()(HANDLE handle) const { CloseHandle(handle); }
    };

    std::unique_ptr<std::remove_pointer_t<HANDLE>, Closer> handle_;
    std::size_t size_ = 0;
};

}  // namespace quorvane

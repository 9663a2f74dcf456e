// The order in which the threads of this process open the same file.
#pragma once

#include "automation/wide_string.h"

namespace quorvane {

enum class FileUse { Shared, Exclusive };

// A thread's turn to have the file with this path open: alone, or together with others that share
// it. Waits for those that came before, in the order in which they came, so that threads which send
// the same file at a time don't shut each other out. A thread has one turn at a time. Paths that
// are spelled in two ways count as two files.
class FileTurn {
public:
    FileTurn(WideString path, FileUse use);
    ~FileTurn();
    FileTurn(const FileTurn&) = delete;
    FileTurn& operator=(const FileTurn&) = delete;

private:
    const WideString path_;
    const FileUse use_;
};

}  // namespace quorvane

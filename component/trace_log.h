// The trace file.
#pragma once

#include <mutex>

#include "automation/wide_string.h"

namespace quorvane {

// Where a trace would go. Nothing writes one; pointing the log at a file removes what an earlier
// run left there. Any thread.
class TraceLog {
public:
    // Points the log at the file and deletes it; that it can't be deleted is no error.
    void SetFile(WideString path);
    void Enable(bool enabled);

private:
    std::mutex mutex_;
    WideString path_;
    bool enabled_ = false;
};

// The one of the library.
TraceLog& LibraryTraceLog();

}  // namespace quorvane

#include "component/trace_log.h"

#include <windows.h>

#include <utility>

namespace quorvane {
namespace {

TraceLog g_traceLog;

}  // namespace

void TraceLog::SetFile(WideString path) {
    const std::lock_guard lock(mutex_);
    path_ = std::move(path);
    DeleteFileW(path_.c_str());
}

void TraceLog::Enable(bool enabled) {
    const std::lock_guard lock(mutex_);
    enabled_ = enabled;
}

TraceLog& LibraryTraceLog() {
    return g_traceLog;
}

}  // namespace quorvane

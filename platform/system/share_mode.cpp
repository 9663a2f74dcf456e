#include "share_mode.h"

#include <fcntl.h>

#include <mutex>

namespace quorvane::platform {
namespace {

// A share mode is held as shared locks of the open file description on bytes far behind any data:
// the kernel keeps them apart for each open, inside a process as well as between processes.
enum Mark : off_t {
    Reading = off_t{1} << 62,
    DeniesReading,
};

struct flock Lock(Mark mark, short type) {
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = mark;
    lock.l_len = 1;
    return lock;
}

bool Set(int descriptor, Mark mark) {
    struct flock lock = Lock(mark, F_RDLCK);
    return fcntl(descriptor, F_OFD_SETLK, &lock) == 0;
}

// True when another open of the file has the mark. A lock that other programs have set on the whole
// file, or on all that is behind some place, is none.
bool IsSetByOther(int descriptor, Mark mark) {
    struct flock lock = Lock(mark, F_WRLCK);
    return fcntl(descriptor, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK &&
           lock.l_start >= Reading && lock.l_len != 0;
}

// Opens of this process go one at a time. Two processes that open at the same moment and don't
// agree may both be refused, but never both be let in: each marks first and checks then.
std::mutex g_mutex;

}  // namespace

bool ShareForReading(int descriptor, DWORD shareMode) {
    const std::lock_guard lock(g_mutex);
    const bool deniesReading = !(shareMode & FILE_SHARE_READ);
    if (!Set(descriptor, Reading)) return true;
    if (deniesReading && !Set(descriptor, DeniesReading)) return true;
    return !IsSetByOther(descriptor, DeniesReading) &&
           !(deniesReading && IsSetByOther(descriptor, Reading));
}

void ForgetShareMode(int descriptor) {
    for (const Mark mark : {Reading, DeniesReading}) {
        struct flock lock = Lock(mark, F_UNLCK);
        fcntl(descriptor, F_OFD_SETLK, &lock);
    }
}

}  // namespace quorvane::platform

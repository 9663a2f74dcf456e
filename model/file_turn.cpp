#include "model/file_turn.h"

#include <condition_variable>
#include <map>
#include <mutex>
#include <utility>

namespace quorvane {
namespace {

// Those who use a file or wait for it, each with a ticket.
struct Line {
    unsigned long long nextTicket = 0;
    unsigned long long served = 0;  // the ticket whose turn comes next
    int users = 0;                  // whose turn it is
    int size = 0;                   // with those who wait
};

class Lines {
public:
    void Begin(const WideString& path, FileUse use) {
        std::unique_lock lock(mutex_);
        Line& line = lines_[path];
        const auto ticket = line.nextTicket++;
        ++line.size;
        changed_.wait(lock, [&] {
            return line.served == ticket && (use == FileUse::Shared || line.users == 0);
        });
        ++line.users;
        if (use == FileUse::Shared) Serve(line);
    }
    void End(const WideString& path, FileUse use) {
        const std::lock_guard lock(mutex_);
        const auto line = lines_.find(path);
        --line->second.users;
        --line->second.size;
        if (use == FileUse::Exclusive) {
            Serve(line->second);
        } else if (line->second.users == 0) {
            changed_.notify_all();
        }
        if (line->second.size == 0) lines_.erase(line);
    }

private:
    void Serve(Line& line) {
        ++line.served;
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::map<WideString, Line> lines_;
};

// Never destroyed: threads that the end of the process overtakes may still read.
union Everlasting {
    Everlasting() : lines() {}
    ~Everlasting() {}
    Lines lines;
} g_everlasting;

}  // namespace

FileTurn::FileTurn(WideString path, FileUse use) : path_(std::move(path)), use_(use) {
    g_everlasting.lines.Begin(path_, use_);
}

FileTurn::~FileTurn() {
    g_everlasting.lines.End(path_, use_);
}

}  // namespace quorvane

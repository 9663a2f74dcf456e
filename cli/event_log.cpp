#include "cli/event_log.h"

#include <cstdio>
#include <ctime>

#include "cli/progress.h"
#include "cli/style.h"
#include "cli/system.h"

namespace quorvane::cli {
namespace {

std::string Count(std::size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string Now() {
    const std::time_t now = std::time(nullptr);
    char text[40];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S UTC", std::gmtime(&now));
    return text;
}

std::string WayOf(const Options& options) {
    if (options.direct) return "to the recipients' own servers";
    return "through " + options.server.host + ", port " + std::to_string(options.server.port) +
           (options.ssl ? ", encrypted when the server can" : ", not encrypted") +
           (options.user.empty() ? "" : ", as user " + options.user);
}

}  // namespace

EventLog::EventLog(const Options& options) : wanted_(options.verbose) {
    if (wanted_) Describe(options);
}

void EventLog::Describe(const Options& options) {
    Say("quorvane-send " QUORVANE_VERSION ", " + Now());
    Say("from " + options.from.address + " to " +
        Count(options.to.size() + options.cc.size() + options.bcc.size(), "recipient") + ", with " +
        Count(options.files.size(), "file") + " beside the text");
    Say(WayOf(options));
}

void EventLog::Status(LONG number, MailStatus status) {
    if (status >= MailStatusSent) ended_.insert(number);
    constexpr const char* kWords[] = {"is queued", "is being sent", "was sent", "was not sent",
                                      "was cancelled"};
    Say("message " + std::to_string(number) + " " + kWords[status]);
}

void EventLog::Progress(LONG number, LONG sent, LONG total) {
    const long long tenth = 10LL * sent / total;
    if (tenth == tenths_[number]) return;
    tenths_[number] = tenth;
    Say("message " + std::to_string(number) + ": " + std::to_string(10 * tenth) + " % of " +
        Megabytes(total) + " MB are out");
}

void EventLog::Say(const std::string& what) const {
    if (!wanted_) return;
    const std::chrono::duration<double> time = Clock::now() - start_;
    char stamp[40];
    std::snprintf(stamp, sizeof stamp, "[%9.3f s]", time.count());
    system::WriteError(ForError(Colour::kGrey, stamp) + " " + what + "\n");
}

}  // namespace quorvane::cli

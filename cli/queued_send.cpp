#include "cli/queued_send.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <set>

#include "cli/event_log.h"
#include "cli/failure_report.h"
#include "cli/output.h"
#include "cli/progress.h"
#include "cli/system.h"
#include "cli/text_input.h"
#include "quorvane_events.hpp"

namespace quorvane::cli {
namespace {

using client::Outcome;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kGlance{50};
constexpr std::chrono::milliseconds kSilence{5000};
constexpr std::uintmax_t kLarge = 500'000;  // bytes: takes a moment on most networks
constexpr int kLinesWithoutTerminal = 10;
// Messages that are queued ahead, so that no worker is without work between two glances.
constexpr std::size_t kQueuedAhead = 1000;  // at least, and two for each worker

// The user's view: one line that is written over and over on a terminal, a line now and then
// elsewhere.
class Display {
public:
    explicit Display(const Options& options)
        : wanted_(!options.quiet && !options.json && !options.verbose),
          onTerminal_(system::OutputIsTerminal()) {}

    void Show(const Progress& progress) {
        const int ended = progress.ended();
        if (!wanted_) return;
        if (onTerminal_) {
            const std::string line = ProgressLine(progress);
            if (line.empty()) return;
            system::WriteOutput("\r" + line + Blanks(line.size()));
            shown_ = line.size();
        } else if (ended >= next_ && ended < progress.count) {
            system::WriteOutput(ProgressLine(progress) + "\n");
            const int step = std::max(progress.count / kLinesWithoutTerminal, 1);
            next_ = (ended / step + 1) * step;
        }
    }

    // Makes room for lines that stay.
    void Clear() {
        if (shown_ == 0) return;
        // The terminal may have put the "^C" that was typed behind the line.
        system::WriteOutput("\r" + std::string(std::min<std::size_t>(shown_ + 2, 79), ' ') + "\r");
        shown_ = 0;
    }

private:
    // Over what is left of the line before.
    std::string Blanks(std::size_t from) const {
        return std::string(shown_ > from ? shown_ - from : 0, ' ');
    }

    const bool wanted_;
    const bool onTerminal_;
    std::size_t shown_ = 0;  // characters
    int next_ = 1;           // messages that have to have ended for the next line
};

class QueuedSend {
public:
    QueuedSend(const Options& options, client::Mailer& mailer, const client::Message& message)
        : options_(options),
          mailer_(mailer),
          message_(message),
          display_(options),
          failures_(options),
          log_(options),
          queuedAhead_(std::max(kQueuedAhead, 2 * static_cast<std::size_t>(options.threads))) {
        progress_.count = options.count;
        mailer_.MaxThreads(options.async ? options.threads : 1);
    }

    ExitStatus Run() {
        system::WatchForInterrupt();
        const client::EventListener listener(
            mailer_,
            [this](LONG number, MailStatus status) {
                lastEvent_ = Clock::now();
                log_.Status(number, status);
            },
            [this](LONG number, LONG sent, LONG total) {
                lastEvent_ = Clock::now();
                log_.Progress(number, sent, total);
                // An event may come after its message has been told of.
                if (unfinished_.contains(number)) inFlight_[number] = {sent, total};
            });
        for (bool more = true; more; more = !interrupted_ || !unfinished_.empty()) {
            TakeInterrupt();
            QueueMore();
            client::TakeMessages(kGlance);
            CollectEnded();
            ShowProgress();
            if (progress_.ended() == progress_.count) break;
        }
        display_.Clear();
        TellTheEnd();
        return progress_.sent == progress_.count ? kSent : kNotSent;
    }

private:
    // Of a message that has ended. The log tells of it first; its events are a moment behind what
    // has happened, and may stay out when memory runs short.
    bool IsToBeTold(LONG number) {
        if (!options_.verbose || log_.HasEnded(number)) return true;
        const auto seen = seenEnded_.try_emplace(number, Clock::now()).first->second;
        return Clock::now() - std::max(seen, lastEvent_) > kSilence;
    }

    void TakeInterrupt() {
        if (interrupted_ || !system::Interrupted()) return;
        interrupted_ = true;
        mailer_.CancelAll();
    }

    void QueueMore() {
        while (!interrupted_ && queued_ < options_.count && unfinished_.size() < queuedAhead_) {
            ++queued_;
            try {
                lastNumber_ = mailer_.Queue(message_);
                unfinished_.insert(lastNumber_);
            } catch (const client::Error& error) {
                // Refused at the first time, it would be at every other.
                if (error.status() == E_INVALIDARG && queued_ == 1) throw UsageError(error.what());
                if (!IsQueuedAllTheSame()) Tell(0, MailStatusFailed, {-1, error.what()});
            }
        }
    }

    // A message whose worker couldn't be started waits for one of those that run.
    bool IsQueuedAllTheSame() {
        try {
            mailer_.Status(lastNumber_ + 1);
        } catch (const client::Error&) {
            return false;
        }
        unfinished_.insert(++lastNumber_);
        return true;
    }

    void CollectEnded() {
        for (auto number = unfinished_.begin(); number != unfinished_.end();) {
            const MailStatus status = mailer_.Status(*number);
            if (status < MailStatusSent || !IsToBeTold(*number)) {
                ++number;
                continue;
            }
            Tell(*number, status, mailer_.OutcomeOf(*number));
            inFlight_.erase(*number);
            number = unfinished_.erase(number);
        }
    }

    void Tell(LONG number, MailStatus status, const Outcome& outcome) {
        if (status == MailStatusSent) {
            ++progress_.sent;
        } else if (status == MailStatusCanceled) {
            ++progress_.cancelled;
        } else {
            ++progress_.failed;
        }
        if (options_.json) {
            const LONG told = options_.async ? number : 0;
            system::WriteOutput(OutcomeAsJson(outcome, told, status) + "\n");
        }
        if (status != MailStatusFailed) return;
        display_.Clear();
        failures_.Tell(number, outcome);
    }

    void ShowProgress() {
        progress_.elapsed =
            std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start_);
        progress_.bytesSent = 0;
        progress_.bytesTotal = 0;
        for (const auto& [number, bytes] : inFlight_) {
            progress_.bytesSent += bytes.sent;
            progress_.bytesTotal += bytes.total;
        }
        display_.Show(progress_);
    }

    void TellTheEnd() {
        if (interrupted_) {
            system::WriteError(ErrorText(InterruptedSummary(progress_), {}));
        } else if (!options_.json && !options_.quiet) {
            system::WriteOutput(SummaryLine(progress_.sent, progress_.count));
        }
    }

    struct Bytes {
        LONG sent;
        LONG total;
    };

    const Options& options_;
    client::Mailer& mailer_;
    const client::Message& message_;
    Display display_;
    FailureReport failures_;
    EventLog log_;
    Progress progress_;
    const Clock::time_point start_ = Clock::now();
    const std::size_t queuedAhead_;
    Clock::time_point lastEvent_;
    int queued_ = 0;
    LONG lastNumber_ = 0;
    bool interrupted_ = false;
    std::set<LONG> unfinished_;
    std::map<LONG, Bytes> inFlight_;
    std::map<LONG, Clock::time_point> seenEnded_;  // with --verbose
};

// Bytes of body and files, more or less.
std::uintmax_t SizeOf(const Options& options) {
    std::uintmax_t size = options.body.size() + options.alternative.size();
    const auto add = [&size](const std::string& file) {
        std::error_code error;
        const std::uintmax_t bytes = std::filesystem::file_size(PathOf(file), error);
        if (!error) size += bytes;
    };
    for (const FileArgument& file : options.files) add(file.file);
    if (!options.bodyFile.empty()) add(options.bodyFile);
    return size;
}

}  // namespace

bool WantsQueue(const Options& options) {
    if (options.async || options.verbose) return true;
    return !options.quiet && !options.json && system::OutputIsTerminal() &&
           SizeOf(options) >= kLarge;
}

ExitStatus SendThroughQueue(const Options& options, client::Mailer& mailer,
                            const client::Message& message) {
    return QueuedSend(options, mailer, message).Run();
}

}  // namespace quorvane::cli

// Sends a message again and again while the connection breaks at one byte after another, in every
// way that a connection can break, and checks that each outcome is the true one. Exit status 0 when
// all are.
#include <dirent.h>
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <array>
#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/faults/faulty_peer.h"
#include "tests/faults/mail_client.h"

namespace quorvane::faults {
namespace {

using Clock = std::chrono::steady_clock;

// Reply time-outs of a second, three at the end of the message, and the attempts of TLS: whoever
// needs longer hangs.
constexpr std::chrono::seconds kLimit{20};
constexpr std::array kKinds{Kind::Cut, Kind::Reset, Kind::Stall, Kind::Garble};
constexpr std::array kKindNames{"none", "cut", "reset", "stall", "garble"};

struct Options {
    std::size_t every = 1;
    std::size_t first = 0;
    int atATime = 64;
};

struct Case {
    Dialogue dialogue;
    Fault fault;
};

struct Counts {
    int runs = 0;
    int sent = 0;
    int failed = 0;
    int inTheWindow = 0;  // failed for the client, taken on by the server
};

std::string NameOf(const Dialogue& dialogue) {
    constexpr std::array kNames{"in clear", "STARTTLS", "TLS from the start"};
    return std::string(kNames[static_cast<std::size_t>(dialogue.encryption)]) +
           (dialogue.authenticates ? ", AUTH LOGIN" : "");
}

std::string NameOf(const Case& run) {
    return fmt::format("{}: {} at byte {} of the {}", NameOf(run.dialogue),
                       kKindNames[static_cast<std::size_t>(run.fault.kind)], run.fault.at,
                       run.fault.side == Side::Client ? "client" : "server");
}

// Takes the outcomes of all threads.
class Judge {
public:
    void Take(const Case& run, const Outcome& outcome, const FaultyPeer::Result& seen,
              Clock::duration time) {
        const std::lock_guard lock(mutex_);
        ++counts_.runs;
        ++(outcome.code == 0 ? counts_.sent : counts_.failed);
        const auto fault = [&](const char* what) {
            faults_.push_back(fmt::format("{}: {}: code {}, text '{}', accepted {} times",
                                          NameOf(run), what, outcome.code, outcome.text,
                                          seen.accepted));
        };
        if (time > kLimit) fault("took too long");
        longest_ = std::max(longest_, time);
        if (outcome.status != (outcome.code == 0 ? S_OK : S_FALSE)) fault("another status");
        if (outcome.text.empty() != (outcome.code == 0)) fault("another text");
        if (outcome.code != 0 && outcome.code != -1 && (outcome.code < 100 || outcome.code > 999)) {
            fault("no such code");
        }
        if (seen.accepted > 1) fault("arrived more than once");
        if (outcome.code == 0 && seen.accepted != 1) fault("counted as sent, but has not arrived");
        if (outcome.code != 0 && seen.accepted > 0) {
            // The server has it, and the client can't know: the reply was lost on its way.
            ++counts_.inTheWindow;
            if (seen.answered) fault("counted as failed, but has arrived");
        }
        const bool maySpoil = run.fault.kind == Kind::Garble && run.fault.side == Side::Client;
        if (seen.accepted > 0 && !maySpoil && !IsWhole(seen.message)) fault("arrived in part");
    }

    void Show() const {
        for (std::size_t i = 0; i < faults_.size() && i < 40; ++i) fmt::print("{}\n", faults_[i]);
        fmt::print(
            "{} runs: {} sent, {} failed, {} of them taken on by the server, whose reply was "
            "lost; the longest took {} ms; {} faults\n",
            counts_.runs, counts_.sent, counts_.failed, counts_.inTheWindow,
            std::chrono::duration_cast<std::chrono::milliseconds>(longest_).count(),
            faults_.size());
    }
    bool satisfied() const { return faults_.empty() && counts_.sent > 0 && counts_.failed > 0; }

private:
    std::mutex mutex_;
    Counts counts_;
    Clock::duration longest_{0};
    std::vector<std::string> faults_;
};

void RunCase(const Case& run, MailClient& client, Judge& judge) {
    FaultyPeer peer(run.dialogue, run.fault);
    const auto start = Clock::now();
    const Outcome outcome = client.Send(peer.port(), run.dialogue);
    const auto time = Clock::now() - start;
    judge.Take(run, outcome, peer.Finish(), time);
}

std::vector<Case> CasesOf(const Dialogue& dialogue, const Options& options, Judge& judge) {
    MailClient client;
    FaultyPeer sound(dialogue, {});
    const auto start = Clock::now();
    const Outcome outcome = client.Send(sound.port(), dialogue);
    const FaultyPeer::Result seen = sound.Finish();
    judge.Take({dialogue, {}}, outcome, seen, Clock::now() - start);
    std::vector<Case> cases;
    for (const Kind kind : kKinds) {
        for (const Side side : {Side::Client, Side::Server}) {
            const std::size_t end = side == Side::Client ? seen.clientBytes : seen.serverBytes;
            for (std::size_t at = options.first; at <= end; at += options.every) {
                cases.push_back({dialogue, {kind, side, at}});
            }
        }
    }
    return cases;
}

void RunAll(const std::vector<Case>& cases, int atATime, Judge& judge) {
    std::atomic<std::size_t> next = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < atATime; ++i) {
        threads.emplace_back([&] {
            MailClient client;
            for (std::size_t at; (at = next++) < cases.size();) RunCase(cases[at], client, judge);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

std::size_t OpenDescriptors() {
    DIR* const folder = opendir("/proc/self/fd");
    std::size_t count = 0;
    while (readdir(folder)) ++count;
    closedir(folder);
    return count;
}

bool Run(const Options& options) {
    Judge judge;
    std::vector<Case> cases;
    for (const Encryption encryption :
         {Encryption::None, Encryption::StartTls, Encryption::Implicit}) {
        for (const bool authenticates : {false, true}) {
            const auto more = CasesOf({encryption, authenticates}, options, judge);
            cases.insert(cases.end(), more.begin(), more.end());
        }
    }
    const std::size_t before = OpenDescriptors();
    RunAll(cases, options.atATime, judge);
    const std::size_t after = OpenDescriptors();
    judge.Show();
    // A thread of the object that was released before may still have been on its way out.
    const bool leaked = after > before;
    if (leaked) fmt::print("{} descriptors open, {} before\n", after, before);
    if (!ModuleCanUnload()) fmt::print("something of the library is still in use\n");
    return judge.satisfied() && !leaked && ModuleCanUnload();
}

}  // namespace
}  // namespace quorvane::faults

int main(int count, char** arguments) {
    quorvane::faults::Options options;
    CLI::App app("Breaks the connection at every byte and checks what the client makes of it.");
    app.add_option("--every", options.every, "only every Nth byte")->check(CLI::PositiveNumber);
    app.add_option("--first", options.first, "the first byte of each side");
    app.add_option("--at-a-time", options.atATime, "runs at a time")->check(CLI::Range(1, 500));
    CLI11_PARSE(app, count, arguments);
    return quorvane::faults::Run(options) ? 0 : 1;
}

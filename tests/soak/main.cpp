// Sends for a long time through objects that live long and objects that don't, to a peer in another
// process that is rude at random, and watches what the process takes: memory, descriptors, threads.
// Exit status 0 when every message is accounted for and nothing has grown that shouldn't.
#include <dirent.h>
#include <fmt/format.h>
#include <unistd.h>
#include <CLI/CLI.hpp>

#include <array>
#include <chrono>
#include <deque>
#include <fstream>
#include <random>
#include <thread>

#include "component/smtp_mail.h"
#include "tests/servers/linux/peer_process.h"
#include "tests/support/objects.h"

namespace quorvane::soak {
namespace {

using Clock = std::chrono::steady_clock;

struct Options {
    long long queued = 2000;
    long long objects = 100;
    int threads = 200;
    int minutes = 0;
    int replyTimeout = 1;  // seconds
    unsigned seed = 1;
};

// What a finished message may leave behind, in bytes: the caller can ask for its outcome.
constexpr double kMostPerMessage = 400;
// What an object may leave behind.
constexpr double kMostPerObject = 16;
constexpr double kNoise = 4 << 20;

struct Taken {
    double memory = 0;  // bytes that are resident
    int descriptors = 0;
    int threads = 0;
};

int Entries(const char* folder) {
    DIR* const list = opendir(folder);
    int count = -2;  // the folder itself and the one above
    while (readdir(list)) ++count;
    closedir(list);
    return count;
}

Taken Take() {
    long long pages = 0;
    std::ifstream("/proc/self/statm").ignore(64, ' ') >> pages;
    return {static_cast<double>(pages * sysconf(_SC_PAGESIZE)), Entries("/proc/self/fd"),
            Entries("/proc/self/task")};
}

// Senders that the peer treats well, or not; nine of ten are.
class Senders {
public:
    explicit Senders(unsigned seed) : random_(seed) {}

    const WideString& Next() {
        constexpr unsigned kOf = 100;
        const unsigned number = random_() % kOf;
        return number < rude_.size() ? rude_[number] : good_;
    }

private:
    std::mt19937 random_;
    const WideString good_ = OLESTR("ok@x");
    const std::array<WideString, 10> rude_{
        OLESTR("refuse@x"), OLESTR("refuse@x"), OLESTR("refuse@x"), OLESTR("reset@x"),
        OLESTR("reset@x"),  OLESTR("reset@x"),  OLESTR("slow@x"),   OLESTR("slow@x"),
        OLESTR("slow@x"),   OLESTR("silent@x")};
};

class Soak {
public:
    explicit Soak(const Options& options)
        : options_(options),
          senders_(options.seed),
          end_(Clock::now() + Minutes(options.minutes)) {}

    bool Run() {
        // The system and the C library keep some of what threads have taken, for good.
        SendFromManyObjects(std::min<long long>(options_.objects, 200));
        SendFromOneObject(std::min<long long>(options_.queued, 2000));
        bool good = true;
        do {
            good &= Watch("objects", options_.objects, kMostPerObject,
                          [&] { SendFromManyObjects(options_.objects); });
            good &= Watch("queued messages", options_.queued, kMostPerMessage,
                          [&] { SendFromOneObject(options_.queued); });
        } while (good && Clock::now() < end_);
        return good && IsAccountedFor();
    }

private:
    static std::chrono::minutes Minutes(int count) { return std::chrono::minutes(count); }

    ComPtr<ISmtpMail> MakeClient() const {
        auto mail = MakeOrThrow<CSmtpMail, ISmtpMail>();
        mail->put_SmtpServer(Text(OLESTR("127.0.0.1")));
        mail->put_SmtpPort(peer_.port());
        mail->put_ReplyTimeout(options_.replyTimeout);
        mail->put_ConnectAttempts(1);
        return mail;
    }

    // Each sends one message while its caller waits.
    void SendFromManyObjects(long long count) {
        for (long long i = 0; i < count; ++i) {
            const auto mail = MakeClient();
            LONG code = 0;
            BstrHolder text;
            const auto message = MessageOf(senders_.Next(), 200);
            Account(mail->Send(message.Get(), VARIANT_TRUE, text.Receive(), &code) == S_OK);
        }
    }

    void SendFromOneObject(long long count) {
        const auto mail = MakeClient();
        mail->put_MaxThreads(options_.threads);
        const std::size_t most = 10 * static_cast<std::size_t>(options_.threads);
        std::deque<LONG> unfinished;
        for (long long queued = 0; queued < count || !unfinished.empty();) {
            while (queued < count && unfinished.size() < most) {
                LONG number = 0;
                const auto message = MessageOf(senders_.Next(), 200);
                if (mail->SendAsync(message.Get(), VARIANT_TRUE, &number) != S_OK) {
                    throw std::runtime_error("a message can't be queued");
                }
                unfinished.push_back(number);
                ++queued;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            std::erase_if(unfinished, [&](LONG number) { return HasEnded(*mail.Get(), number); });
        }
        inUse_ = Take();
    }

    bool HasEnded(ISmtpMail& mail, LONG number) {
        MailStatus status = MailStatusQueued;
        mail.GetStatus(number, &status);
        if (status < MailStatusSent) return false;
        Account(status == MailStatusSent);
        return true;
    }

    void Account(bool sent) {
        ++messages_;
        sent_ += sent;
    }

    // Once the threads of the last object, which may be on their way out, are gone.
    Taken TakeAtRest() const {
        Taken taken = Take();
        for (int waited = 0; waited < 10000 && taken.threads > atStart_.threads; ++waited) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            taken = Take();
        }
        return taken;
    }

    // Runs it and compares what the process takes before and behind it.
    template <class Action>
    bool Watch(const char* what, long long count, double mostEach, Action action) {
        const Taken before = TakeAtRest();
        inUse_ = before;
        const auto start = Clock::now();
        action();
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        const Taken after = TakeAtRest();
        const double peak = std::max(inUse_.memory, after.memory) - before.memory;
        fmt::print(
            "{} {} in {:.0f} s: {:+.0f} bytes each at the most, {:+.0f} behind; "
            "{} descriptors, {} threads; {} messages so far, {} sent\n",
            count, what, seconds, peak / static_cast<double>(count),
            (after.memory - before.memory) / static_cast<double>(count), after.descriptors,
            after.threads, messages_, sent_);
        std::fflush(stdout);
        const bool good = after.descriptors == atStart_.descriptors &&
                          after.threads == atStart_.threads &&
                          peak < mostEach * static_cast<double>(count) + kNoise;
        if (!good) {
            fmt::print("grown: {:.0f} to {:.0f} bytes, {} to {} descriptors, {} to {} threads\n",
                       before.memory, after.memory, atStart_.descriptors, after.descriptors,
                       atStart_.threads, after.threads);
        }
        return good;
    }

    bool IsAccountedFor() {
        // The peer tells its count every now and then.
        for (int waited = 0; waited < 5000 && peer_.acceptedCount() < sent_; ++waited) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        fmt::print("{} messages, {} sent, {} arrived\n", messages_, sent_, peer_.acceptedCount());
        return peer_.acceptedCount() == sent_ && sent_ > 0 && sent_ < messages_;
    }

    const testing::PeerProcess peer_;  // before the first thread
    const Taken atStart_ = Take();
    const Options options_;
    Senders senders_;
    const Clock::time_point end_;
    Taken inUse_;
    long long messages_ = 0;
    long long sent_ = 0;
};

}  // namespace
}  // namespace quorvane::soak

int main(int count, char** arguments) {
    quorvane::soak::Options options;
    CLI::App app("Sends for a long time and watches what the process takes.");
    app.add_option("--queued", options.queued, "messages through one object's queue, each round");
    app.add_option("--objects", options.objects, "objects that send one message, each round");
    app.add_option("--threads", options.threads, "workers of the queue")->check(CLI::Range(1, 900));
    app.add_option("--minutes", options.minutes, "as many rounds as begin in that time");
    app.add_option("--reply-timeout", options.replyTimeout,
                   "seconds; the peer must not be slower, or what it took late counts as failed");
    app.add_option("--seed", options.seed, "which messages the peer treats badly");
    CLI11_PARSE(app, count, arguments);
    return quorvane::soak::Soak(options).Run() ? 0 : 1;
}

// Sends messages from many clients at a time to a peer that is quick, slow, refusing, silent or
// rude, and checks that each message came to one end, was told of in order, and arrived as often as
// that end says. Exit status 0 when all of it is true.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/component/storm/client.h"

namespace quorvane::storm {
namespace {

struct Options {
    unsigned seed = 1;
    int clients = 8;
    int messages = 400;
};

struct Result {
    std::map<std::string, Fate> fates;
    std::vector<std::string> faults;
};

std::vector<Result> RunClients(const Options& options, int port) {
    std::vector<Result> results(static_cast<std::size_t>(options.clients));
    std::vector<std::thread> threads;
    std::atomic<int> running = options.clients;
    // Objects that were let go may still be sending.
    const auto ended = [&] { return running == 0 && ModuleCanUnload(); };
    for (int number = 0; number < options.clients; ++number) {
        threads.emplace_back([&, number] {
            Client client(options.seed * 1000 + static_cast<unsigned>(number), number, port);
            client.Run(options.messages / options.clients);
            --running;
            client.OutliveCalls(ended);
            results[static_cast<std::size_t>(number)] = {client.fates(), client.faults()};
        });
    }
    for (std::thread& thread : threads) thread.join();
    return results;
}

// Compares the fates with what has arrived. Returns the faults.
std::vector<std::string> Judge(const std::map<std::string, Fate>& fates,
                               std::map<std::string, int> arrived) {
    std::vector<std::string> faults;
    for (const auto& [sender, fate] : fates) {
        const int times = arrived[sender];
        arrived.erase(sender);
        int least = 0;
        int most = 1;
        if (fate.known && fate.status == MailStatusSent) least = 1;
        if (fate.known && fate.status == MailStatusFailed) most = 0;
        if (fate.known && fate.status == MailStatusCanceled && !fate.wasSent) most = 0;
        if (times < least || times > most) {
            faults.push_back(
                fmt::format("{}: status {}, arrived {} times", sender, fate.status, times));
        }
    }
    for (const auto& [sender, times] : arrived) {
        faults.push_back(fmt::format("{}: arrived, but nobody sent it", sender));
    }
    return faults;
}

int Run(const Options& options) {
    testing::MailPeer peer;
    std::map<std::string, Fate> fates;
    std::vector<std::string> faults;
    for (Result& result : RunClients(options, peer.port())) {
        fates.merge(result.fates);
        faults.insert(faults.end(), result.faults.begin(), result.faults.end());
    }
    const auto arrived = peer.acceptedBySender();
    const std::vector<std::string> wrong = Judge(fates, arrived);
    faults.insert(faults.end(), wrong.begin(), wrong.end());

    int ends[MailStatusCanceled + 2] = {};
    for (const auto& [sender, fate] : fates) {
        ++ends[fate.known ? fate.status : MailStatusCanceled + 1];
    }
    fmt::print(
        "seed {}: {} messages, {} sent, {} failed, {} cancelled, {} of objects that were let "
        "go; {} arrived\n",
        options.seed, fates.size(), ends[MailStatusSent], ends[MailStatusFailed],
        ends[MailStatusCanceled], ends[MailStatusCanceled + 1], arrived.size());
    for (const std::string& fault : faults) fmt::print("{}\n", fault);
    return faults.empty() ? 0 : 1;
}

}  // namespace
}  // namespace quorvane::storm

int main(int argc, char** argv) {
    quorvane::storm::Options options;
    CLI::App app("Sends messages from many clients at a time and checks what becomes of them.");
    app.add_option("--seed", options.seed, "what the clients do; the same seed does the same");
    app.add_option("--clients", options.clients, "threads, each with an object of its own")
        ->check(CLI::Range(1, 100));
    app.add_option("--messages", options.messages, "messages of all clients together");
    CLI11_PARSE(app, argc, argv);
    return quorvane::storm::Run(options);
}

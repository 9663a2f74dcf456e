// Plays every case of tests/smtp/cases against a session, in each way of delivery that it asks for.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <map>
#include <ostream>

#include "tests/servers/tls_server.h"
#include "tests/smtp/dialogue_run.h"

namespace quorvane::testing {
namespace {

struct Entry {
    DialogueCase test;
    Delivery delivery;
};

std::ostream& operator<<(std::ostream& out, const Entry& entry) {
    return out << "the case at " << entry.test.place;
}

const std::vector<Entry>& AllEntries() {
    static const std::vector<Entry> all = [] {
        std::vector<Entry> entries;
        try {
            for (const auto& test : LoadDialogueCases(QUORVANE_TEST_DATA "/smtp/cases")) {
                for (const Delivery delivery : test.deliveries) {
                    entries.push_back({test, delivery});
                }
            }
        } catch (const std::exception& problem) {
            std::fprintf(stderr, "%s\n", problem.what());
            std::exit(1);
        }
        return entries;
    }();
    return all;
}

using Failures = std::vector<std::string>;

Failures Play(const Entry& entry) {
    return DialogueRun(entry.test, entry.delivery).Play();
}

bool CanPlay(const DialogueCase& test) {
    static const bool hasTlsServer = MakeTlsServer() != nullptr;
    return hasTlsServer || std::ranges::none_of(test.connections, [](const Script& script) {
               return std::ranges::any_of(
                   script, [](const Step& step) { return step.kind == Step::Kind::Secure; });
           });
}

// The cases that mostly wait are played side by side, when the first of them is due.
Failures TakeSlow(const Entry& wanted) {
    static auto results = [] {
        std::map<std::string, std::future<Failures>> started;
        for (const Entry& entry : AllEntries()) {
            if (entry.test.slow && CanPlay(entry.test)) {
                started[entry.test.name] =
                    std::async(std::launch::async, [&entry] { return Play(entry); });
            }
        }
        return started;
    }();
    auto result = results.extract(wanted.test.name);
    return result ? result.mapped().get() : Play(wanted);  // the tests are being repeated
}

class Dialogue : public ::testing::TestWithParam<Entry> {};

TEST_P(Dialogue, GoesAsWritten) {
    const Entry& entry = GetParam();
    if (!CanPlay(entry.test)) {
        GTEST_SKIP() << "there is no TLS server here";
    }
    for (const std::string& failure : entry.test.slow ? TakeSlow(entry) : Play(entry)) {
        ADD_FAILURE() << failure;
    }
}

std::string CaseName(const ::testing::TestParamInfo<Entry>& info) {
    std::string name = info.param.test.name;
    std::replace(name.begin(), name.end(), '-', '_');
    constexpr const char* deliveries[] = {"whole", "by_line", "by_byte"};
    return name + "_" + deliveries[static_cast<int>(info.param.delivery)];
}

INSTANTIATE_TEST_SUITE_P(Smtp, Dialogue, ::testing::ValuesIn(AllEntries()), CaseName);

}  // namespace
}  // namespace quorvane::testing

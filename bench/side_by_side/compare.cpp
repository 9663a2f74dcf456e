// Composes the same messages with Quorvane, libcurl and GMime, by turns, and prints the medians.
#include <fmt/format.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "bench/side_by_side/contenders.h"

namespace quorvane::bench {
namespace {

using Contenders = std::vector<std::unique_ptr<Contender>>;

Contenders MakeContenders(const Workload& workload) {
    Contenders contenders;
    contenders.push_back(MakeQuorvaneContender());
    contenders.push_back(MakeCurlContender());
    contenders.push_back(MakeGmimeContender());
    for (const auto& contender : contenders) contender->Prepare(workload);
    return contenders;
}

// Processor time, which other programs on the machine disturb less than the time that passes.
double ProcessorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double SecondsFor(Contender& contender, int count) {
    const double start = ProcessorSeconds();
    for (int i = 0; i < count; ++i) contender.Compose();
    return ProcessorSeconds() - start;
}

// So many messages that one measurement is longer than the clock's and the scheduler's noise.
int MessagesToMeasure(Contender& contender) {
    constexpr double kSeconds = 0.02;
    int count = 1;
    while (count < 1 << 20 && SecondsFor(contender, count) < kSeconds) count *= 2;
    return count;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

std::string Duration(double seconds) {
    if (seconds < 1e-3) return fmt::format("{:.2f} us", seconds * 1e6);
    return fmt::format("{:.2f} ms", seconds * 1e3);
}

void Measure(const Workload& workload, int rounds) {
    const Contenders contenders = MakeContenders(workload);
    std::vector<int> counts;
    for (const auto& contender : contenders) counts.push_back(MessagesToMeasure(*contender));
    std::vector<std::vector<double>> times(contenders.size());
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < contenders.size(); ++i) {
            times[i].push_back(SecondsFor(*contenders[i], counts[i]) / counts[i]);
        }
    }
    const double own = Median(times[0]);
    std::string row = fmt::format("{:<40}{:>12}", workload.title, Duration(own));
    for (std::size_t i = 1; i < contenders.size(); ++i) {
        const double other = Median(times[i]);
        row += fmt::format("{:>12}{:>7.1f}x", Duration(other), other / own);
    }
    fmt::print("{}\n", row);
    std::fflush(stdout);
}

std::size_t PeakKib() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::size_t>(usage.ru_maxrss);
}

// By how much the peak of a process grows while it composes the message once, in KiB.
std::size_t GrowthOfPeak(Contender& contender) {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    const pid_t child = fork();
    if (child == 0) {
        const std::size_t before = PeakKib();
        contender.Compose();
        const std::size_t growth = PeakKib() - before;
        const bool told = write(ends[1], &growth, sizeof(growth)) == sizeof(growth);
        _exit(told ? 0 : 1);
    }
    close(ends[1]);
    std::size_t growth = 0;
    const bool told = child > 0 && read(ends[0], &growth, sizeof(growth)) == sizeof(growth);
    close(ends[0]);
    if (child > 0) waitpid(child, nullptr, 0);
    if (!told) throw std::runtime_error("composing in a process of its own failed");
    return growth;
}

void MeasureMemory(const Workload& workload) {
    const auto size =
        static_cast<double>(std::filesystem::file_size(workload.attachments[0].path)) / 1024;
    std::string row = fmt::format("{:<40}", "  peak memory, times the file's size");
    bool first = true;
    for (const auto& contender : MakeContenders(workload)) {
        const double share = static_cast<double>(GrowthOfPeak(*contender)) / size;
        row += fmt::format("{:>12.2f}", share);
        if (!first) row += fmt::format("{:8}", "");
        first = false;
    }
    fmt::print("{}\n", row);
}

void WriteMessages(const Workload& workload, const std::string& folder) {
    for (const auto& contender : MakeContenders(workload)) {
        const std::string path =
            fmt::format("{}/{}.{}.eml", folder, workload.id, contender->Name());
        std::ofstream(path, std::ios::binary) << contender->Compose();
    }
}

}  // namespace
}  // namespace quorvane::bench

int main(int argc, char** argv) {
    using namespace quorvane::bench;
    CLI::App app("Composes the same messages with Quorvane, libcurl and GMime.");
    int rounds = 15;
    std::vector<std::string> ids;
    std::string folder, writeTo;
    app.add_option("--rounds", rounds, "measurements of each")->check(CLI::Range(1, 10000));
    app.add_option("--only", ids, "messages: base64 qp small rich")
        ->check(CLI::IsMember({"base64", "qp", "small", "rich"}));
    app.add_option("--folder", folder, "where the attachment is made")->required();
    app.add_option("--write", writeTo, "write the messages to this folder and measure nothing");
    CLI11_PARSE(app, argc, argv);
    try {
        const auto workloads = MakeWorkloads(folder);
        if (writeTo.empty()) {
            fmt::print("{:<40}{:>12}{:>12}{:>8}{:>12}{:>8}\n", "processor time, median", "Quorvane",
                       "libcurl", "", "GMime", "");
        }
        for (const Workload& workload : workloads) {
            if (!ids.empty() && std::find(ids.begin(), ids.end(), workload.id) == ids.end()) {
                continue;
            }
            if (!writeTo.empty()) {
                WriteMessages(workload, writeTo);
                continue;
            }
            Measure(workload, rounds);
            if (!workload.attachments.empty() && !workload.attachments[0].path.empty()) {
                MeasureMemory(workload);
            }
        }
    } catch (const std::exception& error) {
        fmt::print(stderr, "{}\n", error.what());
        return 1;
    }
    return 0;
}

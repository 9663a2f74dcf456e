// Has one contender work, in a process of its own, as the lines of its input say:
//
//     compose N     composes N messages and prints seconds and processor seconds
//     send N        the same of sending, in as many threads as --senders says
//     peak WORK     composes or sends one message and prints by how many bytes the peak of the
//                   process's memory grew; to be asked first, since a peak stays
//     write FILE    writes the composed message
//     describe json prints the workload for contenders that aren't C++
#include <CLI/CLI.hpp>
#include <barrier>
#include <chrono>
#include <ctime>
#include <fstream>
#include <functional>
#include <iostream>
#include <thread>

#include "bench/side_by_side/contender.h"
#include "bench/side_by_side/describe.h"

namespace quorvane::bench {
namespace {

using Work = std::function<void(Contender&)>;

struct Job {
    Workload workload;
    int port = 0;
    int senders = 1;
};

struct Times {
    double elapsed = 0;
    double processor = 0;
};

std::unique_ptr<Contender> PreparedContender(const Job& job) {
    auto contender = MakeContender();
    contender->Prepare(job.workload, job.port);
    return contender;
}

double ProcessorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

class Stopwatch {
public:
    Times Read() const {
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
        return {elapsed.count(), ProcessorSeconds() - processor_};
    }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    double processor_ = ProcessorSeconds();
};

Times Repeat(const Work& work, int count, Contender& contender) {
    const Stopwatch watch;
    for (int i = 0; i < count; ++i) work(contender);
    return watch.Read();
}

// Shares the messages out to the senders, each a thread with a contender of its own, and measures
// from when all are ready until all are sent: what the contenders took for themselves is given back
// behind that.
Times RepeatInThreads(const Work& work, int count, const Job& job) {
    std::barrier ready(job.senders + 1), sent(job.senders + 1);
    std::vector<std::exception_ptr> failures(static_cast<std::size_t>(job.senders));
    std::vector<std::thread> threads;
    for (int sender = 0; sender < job.senders; ++sender) {
        threads.emplace_back([&, sender] {
            const auto contender = PreparedContender(job);
            const int share = count / job.senders + (sender < count % job.senders);
            ready.arrive_and_wait();
            try {
                for (int i = 0; i < share; ++i) work(*contender);
            } catch (...) {
                failures[static_cast<std::size_t>(sender)] = std::current_exception();
            }
            sent.arrive_and_wait();
        });
    }
    ready.arrive_and_wait();
    const Stopwatch watch;
    sent.arrive_and_wait();
    const Times times = watch.Read();
    for (std::thread& thread : threads) thread.join();
    for (const auto& failure : failures) {
        if (failure) std::rethrow_exception(failure);
    }
    return times;
}

// Not getrusage's, which starts with that of the program which started this one.
long PeakBytes() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word && word != "VmHWM:") {
    }
    long kib = 0;
    status >> kib;
    return kib * 1024;
}

Work WorkNamed(const std::string& name) {
    if (name == "compose") return [](Contender& contender) { contender.Compose(); };
    if (name == "send") return [](Contender& contender) { contender.Send(); };
    throw std::runtime_error("no such work: " + name);
}

void Obey(const Job& job, Contender& contender) {
    std::string verb, argument;
    while (std::cin >> verb >> argument) {
        if (verb == "describe") {
            std::cout << Describe(job.workload) << std::endl;
        } else if (verb == "write") {
            std::ofstream(argument, std::ios::binary) << contender.Compose();
            std::cout << "written" << std::endl;
        } else if (verb == "peak") {
            const long before = PeakBytes();
            WorkNamed(argument)(contender);
            std::cout << PeakBytes() - before << std::endl;
        } else {
            const Work work = WorkNamed(verb);
            const int count = std::stoi(argument);
            const Times times = job.senders == 1 ? Repeat(work, count, contender)
                                                 : RepeatInThreads(work, count, job);
            std::cout << times.elapsed << ' ' << times.processor << std::endl;
        }
    }
}

}  // namespace
}  // namespace quorvane::bench

int main(int argc, char** argv) {
    using namespace quorvane::bench;
    CLI::App app("Has a mail library compose and send messages.");
    Job job;
    std::string workload, folder;
    app.add_option("--workload", workload, "see workloads.h")->required();
    app.add_option("--folder", folder, "where the attachments are")->required();
    app.add_option("--port", job.port, "of the server at 127.0.0.1");
    app.add_option("--senders", job.senders, "threads that send")->check(CLI::Range(1, 1000));
    CLI11_PARSE(app, argc, argv);
    try {
        std::cout.precision(9);
        job.workload = MakeWorkload(workload, folder);
        const auto contender = PreparedContender(job);
        Obey(job, *contender);
    } catch (const std::exception& error) {
        std::cerr << argv[0] << ": " << error.what() << '\n';
        return 1;
    }
}

// Time to import HTML files: it grows with the size and with nothing else, whatever is in them.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "bench/workloads.h"
#include "model/html_import.h"

namespace quorvane::bench {
namespace {

constexpr std::size_t kMegabyte = 1 << 20;

// What a page consists of: some text and a reference, which a number makes different each time.
using Piece = std::string (*)(const std::string& prose, std::size_t number);

std::string Different(const std::string& prose, std::size_t number) {
    return "<p>" + prose + "</p><img src=\"images/" + std::to_string(number) + ".png\">\r\n";
}
std::string Same(const std::string& prose, std::size_t) {
    return "<p>" + prose + "</p><img src=\"images/logo.png\">\r\n";
}
// No double quote anywhere, for which each value has to be searched first.
std::string SingleQuoted(const std::string& prose, std::size_t number) {
    return "<p>" + prose + "</p><img src='images/" + std::to_string(number) + ".png'>\r\n";
}
std::string Remote(const std::string& prose, std::size_t number) {
    return "<p>" + prose + "</p><img src=\"https://example.org/" + std::to_string(number) +
           "\">\r\n";
}
std::string NothingElse(const std::string&, std::size_t number) {
    return "src=\"" + std::to_string(number) + "\"";
}

// Memory stays with the process from the first import of a page, which isn't measured, to the
// next: what new memory costs is the machine's business, and malloc asks for it by size.
[[maybe_unused]] const bool kKeepMemory =
    mallopt(M_MMAP_MAX, 0) && mallopt(M_TRIM_THRESHOLD, 0x7FFFFFFF);

// A page of so many megabytes, about a thousand references to each unless there is nothing else.
void Import(benchmark::State& state, Piece piece) {
    const std::size_t size = static_cast<std::size_t>(state.range(0)) * kMegabyte;
    const std::string prose = Prose(1000);
    std::string html;
    std::size_t references = 0;
    for (html.reserve(size); html.size() < size; ++references) html += piece(prose, references);

    const auto path = std::filesystem::temp_directory_path() / "quorvane-bench.html";
    std::ofstream(path, std::ios::binary) << html;
    const std::u16string name = path.u16string();
    const auto import = [file = WideString(name.begin(), name.end())] {
        std::vector<CAttachmentPart> parts;
        benchmark::DoNotOptimize(ImportHtmlFile(file, parts));
    };
    import();
    for (auto _ : state) import();
    std::filesystem::remove(path);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * html.size()));
    state.counters["references"] = static_cast<double>(references);
    state.counters["s/MB"] = benchmark::Counter(
        static_cast<double>(state.range(0)),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

#define QUORVANE_IMPORT(piece)               \
    BENCHMARK_CAPTURE(Import, piece, &piece) \
        ->RangeMultiplier(4)                 \
        ->Range(1, 16)                       \
        ->Unit(benchmark::kMillisecond)
QUORVANE_IMPORT(Different);
QUORVANE_IMPORT(Same);
QUORVANE_IMPORT(SingleQuoted);
QUORVANE_IMPORT(Remote);
QUORVANE_IMPORT(NothingElse);

}  // namespace
}  // namespace quorvane::bench

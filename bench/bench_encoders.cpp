// Speed of the single encoders over text and bytes in memory.
#include <benchmark/benchmark.h>

#include "bench/workloads.h"
#include "mime/base64.h"
#include "mime/base64_kernel.h"
#include "mime/transfer_encoding.h"

namespace quorvane::bench {
namespace {

constexpr std::size_t kSize = 1 << 20;

void CountBytes(benchmark::State& state, std::size_t size) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * size));
}

void Base64Lines(benchmark::State& state, Base64LineEncoder encode) {
    if (!encode) return state.SkipWithError("not on this processor");
    const std::string bytes = RandomBytes(kSize);
    std::string out(Base64LinesSize(bytes.size()), '\0');
    for (auto _ : state) {
        encode(BytesOf(bytes).data(), bytes.size(), out.data());
        benchmark::DoNotOptimize(out.data());
    }
    CountBytes(state, bytes.size());
}
BENCHMARK_CAPTURE(Base64Lines, portable, &EncodeBase64LinesPortable);
BENCHMARK_CAPTURE(Base64Lines, fastest, FastestBase64LineEncoder());

void Base64Codec(benchmark::State& state) {
    const std::string bytes = RandomBytes(kSize);
    for (auto _ : state) {
        CBase64 codec;
        codec.Encode(BytesOf(bytes).data(), static_cast<DWORD>(bytes.size()));
        benchmark::DoNotOptimize(codec.GetEncoded());
    }
    CountBytes(state, bytes.size());
}
BENCHMARK(Base64Codec);

void Body(benchmark::State& state, TransferEncoding encoding) {
    const std::string text = Prose(kSize);
    std::string out;
    out.reserve(2 * text.size());
    for (auto _ : state) {
        out.clear();
        EncodeBody(text, encoding, out);
        benchmark::DoNotOptimize(out.data());
    }
    CountBytes(state, text.size());
}
BENCHMARK_CAPTURE(Body, 7bit, Encoding7Bit);
BENCHMARK_CAPTURE(Body, 8bit, Encoding8Bit);
BENCHMARK_CAPTURE(Body, quoted_printable, EncodingQuotedPrintable);
BENCHMARK_CAPTURE(Body, base64, EncodingBase64);

void Choose(benchmark::State& state) {
    const std::string text = Prose(kSize);
    for (auto _ : state) benchmark::DoNotOptimize(ChooseTransferEncoding(text));
    CountBytes(state, text.size());
}
BENCHMARK(Choose);

void SizeEstimate(benchmark::State& state) {
    const std::string text = Prose(kSize);
    for (auto _ : state) {
        benchmark::DoNotOptimize(EncodedSizeEstimate(text, EncodingQuotedPrintable));
    }
    CountBytes(state, text.size());
}
BENCHMARK(SizeEstimate);

}  // namespace
}  // namespace quorvane::bench

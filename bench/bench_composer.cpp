// Speed of what a message is composed of, beside its encoders.
#include <benchmark/benchmark.h>

#include "mime/header_composer.h"
#include "mime/header_text.h"
#include "mime/header_writer.h"
#include "mime/message_composer.h"
#include "mime/unique_stamp.h"

namespace quorvane::bench {
namespace {

COutgoingMessage TextMessage() {
    COutgoingMessage message;
    message.sender.address = OLESTR("sender@example.com");
    message.to.push_back({OLESTR("Mail Room"), OLESTR("recipient@example.org")});
    message.subject = OLESTR("Figures of the month");
    message.bodyParts.emplace_back();
    message.bodyParts[0].contentType = OLESTR("text/plain");
    message.bodyParts[0].charset = OLESTR("iso-8859-1");
    message.bodyParts[0].text = OLESTR("The nightly run has ended without errors.\r\n");
    return message;
}

void NewRecord(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(COutgoingMessage());
}
BENCHMARK(NewRecord);

void CopyRecord(benchmark::State& state) {
    const COutgoingMessage message = TextMessage();
    for (auto _ : state) benchmark::DoNotOptimize(COutgoingMessage(message));
}
BENCHMARK(CopyRecord);

void CopyAndCompose(benchmark::State& state) {
    const COutgoingMessage message = TextMessage();
    for (auto _ : state) {
        COutgoingMessage copy(message);
        std::string out;
        ComposeMessage(copy, out);
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK(CopyAndCompose);

void ComposeAgain(benchmark::State& state) {
    COutgoingMessage message = TextMessage();
    std::string out;
    for (auto _ : state) {
        ComposeMessage(message, out);
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK(ComposeAgain);

void Stamp(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(NextStamp());
}
BENCHMARK(Stamp)->Threads(1)->Threads(2);

void Date(benchmark::State& state) {
    const COutgoingMessage message;
    std::string out;
    for (auto _ : state) {
        out.clear();
        AppendDate(message.createdTime, 100, out);
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK(Date);

void HeaderLine(benchmark::State& state, std::string_view value) {
    std::string out;
    for (auto _ : state) {
        out.clear();
        AppendHeaderLine(out, "Content-Type", {value});
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK_CAPTURE(HeaderLine, plain,
                  "multipart/mixed; boundary=\"MessagePart_0000012AB_0036EE80\"");
BENCHMARK_CAPTURE(HeaderLine, folded,
                  "multipart/mixed;\r\n\tboundary=\"MessagePart_0000012AB_0036EE80\"");

void HeaderWord(benchmark::State& state) {
    const COutgoingMessage message = TextMessage();
    std::string out;
    for (auto _ : state) {
        out.clear();
        AppendHeaderText(message, OLESTR("Gr\u00FC\u00DFe aus K\u00F6ln"), false, out);
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK(HeaderWord);

}  // namespace
}  // namespace quorvane::bench

// DNS answers: each is taken on as a whole or not at all, and its names are names.
#include "platform/net/dns_answer.h"

#include "fuzz/input.h"

namespace {

using namespace quorvane::dns;
using quorvane::fuzzing::Require;

constexpr std::size_t kSmallestRecord = 11;  // a root name, type, class, time to live, length
constexpr std::size_t kLongestName =
    1024;  // 255 bytes, each of which may need a '\' and three digits

bool IsName(const std::string& name) {
    return !name.empty() && name.size() <= kLongestName &&
           std::all_of(name.begin(), name.end(), [](char c) { return c > ' ' && c < '\x7F'; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const unsigned char> answer(data, size);
    std::vector<Record> records;
    const bool whole = ParseAnswer(answer, records);
    Require(records.size() <= size / kSmallestRecord, "every record stands in the answer");
    for (const Record& record : records) {
        Require(IsName(record.name), "owners have names");
        Require(record.exchanger.empty() || IsName(record.exchanger), "exchangers have names");
    }
    for (std::size_t cut = 0; whole && cut < std::min<std::size_t>(size, 512); ++cut) {
        // In a block of its own size, so that a byte read behind it is found.
        const std::vector<unsigned char> first(data, data + cut);
        std::vector<Record> some;
        Require(!ParseAnswer(first, some), "an answer that is cut off is damaged");
    }
    return 0;
}

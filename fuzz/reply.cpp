// Replies: whatever a server says, in whatever pieces it arrives, it is one reply with one code,
// and what it says behind a reply is never overlooked.
#include "smtp/reply.h"

#include <array>
#include <optional>

#include "fuzz/input.h"

namespace {

using namespace quorvane;
using fuzzing::Require;

struct Reply {
    int code;
    WideString text;
};

Reply Read(std::string_view received) {
    Reply reply{ReplyCode(received), {}};
    AssignReplyText(received, reply.text);
    return reply;
}

struct Arrived {
    std::size_t size;  // bytes when the reply was complete
    Reply reply;
};

// As a session takes it; nothing when it isn't complete or too long.
template <class NextSize>
std::optional<Arrived> Receive(std::string_view bytes, NextSize nextSize) {
    ReplyBuffer buffer;
    while (!bytes.empty() && !buffer.full()) {
        const std::size_t size = std::min({nextSize(), bytes.size(), buffer.room().size()});
        std::copy_n(bytes.begin(), size, buffer.room().begin());
        buffer.Add(size);
        bytes.remove_prefix(size);
        if (IsCompleteReply(buffer.bytes())) {
            return Arrived{buffer.bytes().size(), Read(buffer.bytes())};
        }
    }
    return std::nullopt;
}

void CheckReply(const Reply& reply) {
    Require(reply.code == -1 || (reply.code >= 1 && reply.code <= 999), "a code has three digits");
    Require(reply.text.find(WCHAR(0)) == WideString::npos, "a text holds no NUL");
    Require(TrimRight(reply.text).size() == reply.text.size(), "a text is trimmed");
    const Reply again = Read(ToAnsi(reply.text));
    Require(again.code == reply.code && again.text == reply.text, "a text reads as it did");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::Input input(data, size);
    const std::array<std::size_t, 2> cuts{1 + input.TakeByte(), 1 + input.TakeByte()};
    const std::string_view bytes = input.rest().substr(0, kReplyCapacity);
    const auto byByte = Receive(bytes, [] { return std::size_t{1}; });
    const auto whole = Receive(bytes, [] { return kReplyCapacity; });
    const auto inPieces = Receive(bytes, [&, i = 0u]() mutable { return cuts[i++ % cuts.size()]; });
    for (const auto& arrived : {byByte, whole, inPieces}) {
        if (!arrived) continue;
        CheckReply(arrived->reply);
        Require(byByte.has_value(), "what is complete in pieces is so byte by byte");
        Require(arrived->reply.code == byByte->reply.code, "the code doesn't depend on the pieces");
        Require(byByte->size <= arrived->size, "nothing is complete sooner than byte by byte");
        const std::string_view behind = bytes.substr(byByte->size, arrived->size - byByte->size);
        Require(Trim(behind).empty() || HoldsMoreThanReply(arrived->reply.text),
                "what follows the reply is seen");
    }
    const std::size_t end = bytes.rfind('\n');
    if (end != std::string_view::npos) {
        Require(IsCompleteReply(bytes) == IsCompleteReply(bytes.substr(0, end + 1)),
                "bytes behind the last line end don't matter");
    }
    return 0;
}

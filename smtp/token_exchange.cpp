#include "smtp/token_exchange.h"

#include <algorithm>
#include <utility>

#include "smtp/failure_text.h"

namespace quorvane {
namespace {

int Fail(const TokenChannel& channel, WideString text) {
    channel.replyText = std::move(text);
    return -1;
}

int FailSocket(const TokenChannel& channel) {
    return Fail(channel, SocketErrorText(channel.server, channel.connection.error()));
}

}  // namespace

int SendToken(const TokenChannel& channel, std::string_view bytes, Milliseconds limit) {
    SocketStatus status = channel.connection.Send(bytes, limit);
    if (status == SocketStatus::Done) {
        status = channel.connection.WaitWritable(limit);
    }
    switch (status) {
        case SocketStatus::Done:
            return 1;
        case SocketStatus::TimedOut:
            return Fail(channel, BlockedSendText(channel.server, std::nullopt));
        default:
            return FailSocket(channel);
    }
}

int ReceiveToken(const TokenChannel& channel, std::span<char> buffer, Milliseconds limit) {
    std::fill(buffer.begin(), buffer.end(), '\0');
    std::size_t count = 0;
    SocketStatus status = channel.connection.WaitReadable(limit);
    if (status == SocketStatus::Done) {
        status = channel.connection.Receive(buffer, count);
    }
    switch (status) {
        case SocketStatus::Done:
            return static_cast<int>(count);
        case SocketStatus::TimedOut:
            return 0;
        case SocketStatus::Closed:
            return Fail(channel, PeerClosedHandshakeText());
        default:
            return FailSocket(channel);
    }
}

}  // namespace quorvane

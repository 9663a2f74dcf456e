// Bytes without lines: what a TLS handshake sends and receives before there is anything to encrypt.
#pragma once

#include <span>
#include <string_view>

#include "automation/wide_string.h"
#include "smtp/socket_connection.h"

namespace quorvane {

// What both functions need of the session: its connection, the server's name for the texts, and the
// text that receives the words of a failure.
struct TokenChannel {
    SocketConnection& connection;
    const WideString& server;
    WideString& replyText;
};

// 1 after all bytes are sent and the socket takes more; -1 with the words of the failure, also when
// the peer takes nothing for as long as the limit.
int SendToken(const TokenChannel& channel, std::string_view bytes, Milliseconds limit);

// The number of bytes that were put into the buffer, whose rest is zero; 0 when nothing arrived
// within the limit, and no words then; -1 with words on an error or a close.
int ReceiveToken(const TokenChannel& channel, std::span<char> buffer, Milliseconds limit);

}  // namespace quorvane

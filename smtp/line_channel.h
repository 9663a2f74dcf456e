// Commands out, replies in: the one place where a session's bytes move.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string_view>

#include "automation/wide_string.h"
#include "smtp/failure_text.h"
#include "smtp/reply.h"
#include "smtp/secure_channel.h"
#include "smtp/socket_connection.h"

namespace quorvane {

// Bytes that go out in one piece.
inline constexpr std::size_t kPieceSize = 8192;

// What a peer may say unasked before a command. More than that, or for longer, and the session
// fails: the reply to the command couldn't be told from the rest.
inline constexpr std::size_t kMaxUnrequestedBytes = 16384;
inline constexpr Milliseconds kMaxDrainTime{2000};

class LineChannel {
public:
    // Told after each piece of a command that is longer than one piece: the bytes sent so far and
    // the command's length. 0 stops the command.
    using ProgressFunction = std::function<int(ULONG, ULONG)>;

    // The references are the session's: the server's name as the user gave it, and the text that
    // receives each reply and the words of each failure.
    LineChannel(SocketConnection& connection, SecureChannel& secure, const WideString& server,
                WideString& replyText, ProgressFunction onProgress);
    LineChannel(const LineChannel&) = delete;
    LineChannel& operator=(const LineChannel&) = delete;

    // Discards what the peer has said unasked, sends the command (none: only awaits a reply, as
    // for the greeting) and waits for the reply. Returns the reply's code, or -1 with the words in
    // the reply text; a command stopped by the progress function leaves that text alone.
    //
    // `replyTimeout` (seconds) bounds the wait for the reply, which may end up to a second late
    // when the reply comes in parts; and each time during which the peer takes no data.
    int SendCommand(CommandView command, long long replyTimeout);

    // The code of the last command's reply, -1 when none has come. For a command that ended with an
    // exception.
    int replyCode() const { return m_replyCode; }

private:
    // Bytes may be none, of a TLS record that isn't whole yet.
    enum class Arrival { Nothing, Bytes, Closed, Failed };

    int Drain(std::string_view command);
    int Send(std::string_view command, Milliseconds limit);
    int SendPiece(std::string_view piece, std::string_view command, Milliseconds limit);
    int AwaitReply(CommandView command, long long replyTimeout);
    int TakeReply(const ReplyBuffer& buffer, bool answered, CommandView command);
    Arrival ReceiveWithin(Milliseconds limit, Clock::time_point now, std::span<char> buffer,
                          std::size_t& count);
    Arrival Receive(bool readable, std::span<char> buffer, std::size_t& count);
    Arrival ArrivalOf(SocketStatus status);
    int Fail(WideString text);
    int FailSocket();

    SocketConnection& m_connection;
    SecureChannel& m_secure;
    const WideString& m_server;
    WideString& m_replyText;
    ProgressFunction m_onProgress;
    int m_replyCode = -1;
};

}  // namespace quorvane

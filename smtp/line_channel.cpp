#include "smtp/line_channel.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace quorvane {

using std::chrono::seconds;

LineChannel::LineChannel(SocketConnection& connection, SecureChannel& secure,
                         const WideString& server, WideString& replyText,
                         ProgressFunction onProgress)
    : m_connection(connection),
      m_secure(secure),
      m_server(server),
      m_replyText(replyText),
      m_onProgress(std::move(onProgress)) {}

int LineChannel::SendCommand(CommandView command, long long replyTimeout) {
    m_replyCode = -1;
    if (command) {
        if (Drain(*command) != 0 || Send(*command, seconds(replyTimeout)) != 0) {
            return -1;
        }
    }
    return AwaitReply(command, replyTimeout);
}

int LineChannel::Drain(std::string_view command) {
    if (m_connection.Look() == SocketStatus::Failed) {
        return FailSocket();
    }
    std::array<char, kReplyCapacity> discarded;
    std::optional<Stopwatch> watch;
    for (std::size_t total = 0;;) {
        std::size_t count = 0;
        // Nearly always nothing is there, which receiving tells as well as a wait of no time. With
        // TLS a record may be half there, and the rest to be received yet.
        switch (m_secure.active() ? ReceiveWithin(Milliseconds{0}, Clock::now(), discarded, count)
                                  : Receive(true, discarded, count)) {
            case Arrival::Bytes:
                break;
            case Arrival::Nothing:
            case Arrival::Closed:  // the wait for the reply finds it too, and says so
                return 0;
            case Arrival::Failed:
                return -1;
        }
        if (!watch) watch.emplace();
        total += count;
        if (total > kMaxUnrequestedBytes || watch->elapsed() > kMaxDrainTime) {
            return Fail(UnrequestedDataText(m_server, command));
        }
    }
}

int LineChannel::Send(std::string_view command, Milliseconds limit) {
    for (std::size_t sent = 0; sent < command.size();) {
        const std::string_view piece = command.substr(sent, kPieceSize);
        if (SendPiece(piece, command, limit) != 0) {
            return -1;
        }
        sent += piece.size();
        if (command.size() > kPieceSize &&
            m_onProgress(static_cast<ULONG>(sent), static_cast<ULONG>(command.size())) == 0) {
            return -1;
        }
    }
    // The system has taken a command of one piece, with nothing before it, so it has room for more.
    if (command.size() <= kPieceSize) {
        return 0;
    }
    // The time for the reply starts when the system has room for more, not while a long message
    // still waits in its buffers.
    switch (m_connection.WaitWritable(limit)) {
        case SocketStatus::TimedOut:
            return Fail(BlockedSendText(m_server, command));
        case SocketStatus::Failed:
            return FailSocket();
        default:
            return 0;
    }
}

int LineChannel::SendPiece(std::string_view piece, std::string_view command, Milliseconds limit) {
    if (m_secure.active()) {
        return m_secure.Send(piece, command, limit) < 0 ? -1 : 0;
    }
    switch (m_connection.Send(piece, limit)) {
        case SocketStatus::Done:
            return 0;
        case SocketStatus::TimedOut:
            return Fail(BlockedSendText(m_server, command));
        default:
            return FailSocket();
    }
}

int LineChannel::AwaitReply(CommandView command, long long replyTimeout) {
    ReplyBuffer buffer;
    bool answered = false;  // what the latest wait or receive brought
    auto now = Clock::now();
    for (const Stopwatch watch(now); watch.elapsed(now) < seconds(replyTimeout);
         now = Clock::now()) {
        // Whole seconds, counted down as they pass: a reply that comes in parts has up to one more.
        const seconds limit(replyTimeout - watch.elapsed(now) / seconds(1));
        std::size_t count = 0;
        switch (ReceiveWithin(limit, now, buffer.room(), count)) {
            case Arrival::Nothing:
            case Arrival::Bytes:
                break;
            case Arrival::Closed:
                return Fail(ClosedConnectionText(m_server, command));
            case Arrival::Failed:
                return -1;
        }
        answered = count > 0;
        buffer.Add(count);
        if (IsCompleteReply(buffer.bytes())) {
            break;
        }
        if (buffer.full()) {
            return Fail(OverlongReplyText(m_server, command));
        }
    }
    return TakeReply(buffer, answered, command);
}

// A reply that is cut off by the deadline keeps its words: they may be all that the user gets.
int LineChannel::TakeReply(const ReplyBuffer& buffer, bool answered, CommandView command) {
    if (answered) m_replyCode = ReplyCode(buffer.bytes());
    AssignReplyText(buffer.bytes(), m_replyText);
    if (!answered) {
        return m_replyText.empty() ? Fail(NoReplyText(m_server, command)) : -1;
    }
    if (m_replyText.empty()) {
        return Fail(ReplyWithoutCodeText(m_server, command));
    }
    return m_replyCode;
}

LineChannel::Arrival LineChannel::ReceiveWithin(Milliseconds limit, Clock::time_point now,
                                                std::span<char> buffer, std::size_t& count) {
    count = 0;
    if (!m_secure.active()) {
        return ArrivalOf(m_connection.ReceiveWithin(limit, now, buffer, count));
    }
    const bool pending = m_secure.pending();
    const SocketStatus status = m_connection.WaitReadable(pending ? Milliseconds{0} : limit);
    if (status == SocketStatus::Failed) return ArrivalOf(status);
    const bool readable = status == SocketStatus::Done;
    return readable || pending ? Receive(readable, buffer, count) : Arrival::Nothing;
}

LineChannel::Arrival LineChannel::Receive(bool readable, std::span<char> buffer,
                                          std::size_t& count) {
    if (m_secure.active()) {
        const int decrypted = m_secure.Receive(buffer, readable);
        count = decrypted > 0 ? static_cast<std::size_t>(decrypted) : 0;
        return decrypted < 0 ? Arrival::Failed : Arrival::Bytes;
    }
    return ArrivalOf(m_connection.Receive(buffer, count));
}

LineChannel::Arrival LineChannel::ArrivalOf(SocketStatus status) {
    switch (status) {
        case SocketStatus::TimedOut:
            return Arrival::Nothing;
        case SocketStatus::Closed:
            return Arrival::Closed;
        case SocketStatus::Failed:
            FailSocket();
            return Arrival::Failed;
        default:
            return Arrival::Bytes;
    }
}

int LineChannel::Fail(WideString text) {
    m_replyText = std::move(text);
    return -1;
}

int LineChannel::FailSocket() {
    return Fail(SocketErrorText(m_server, m_connection.error()));
}

}  // namespace quorvane

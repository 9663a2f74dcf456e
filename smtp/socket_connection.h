// The plain TCP connection under a session: IPv4 only, one socket, every wait with a limit.
//
// All waiting (but the resolver's) happens in one function, in short steps. No signal, socket
// default or resolver state of the process is changed.
#pragma once

#include <winsock2.h>

#include <cstddef>
#include <functional>
#include <span>
#include <string_view>
#include <utility>

#include "automation/wide_string.h"
#include "smtp/stopwatch.h"

namespace quorvane {

// Starts the socket library, which stays started. A failure shows when a socket is made.
void StartSockets();

// The port of the service "SMTP" in the system's table, else 25; in network byte order.
USHORT DefaultSmtpPort();

// Longest server name that can be looked up, in bytes of the ANSI code page.
inline constexpr std::size_t kMaxServerNameLength = 271;

// A dotted address as it stands, or the first IPv4 address that the resolver gives for the name.
// False when there is none, for an empty name and for one that holds a NUL.
bool ResolveServer(const WideString& server, in_addr& address);

// Outcome of one operation on the socket.
enum class SocketStatus {
    Done,
    TimedOut,  // nothing happened within the limit
    Closed,    // the peer sends no more
    Failed,    // error() has the number
};

class SocketConnection {
public:
    // Asked at least twice a second while there are waits, however short; true ends the wait as
    // Failed.
    using InterruptFunction = std::function<bool()>;

    explicit SocketConnection(InterruptFunction isInterrupted = {})
        : m_isInterrupted(std::move(isInterrupted)) {}
    ~SocketConnection() { Close(); }
    SocketConnection(const SocketConnection&) = delete;
    SocketConnection& operator=(const SocketConnection&) = delete;

    bool IsOpen() const { return m_socket != INVALID_SOCKET; }

    // Makes the socket, in place of one that is open: Done or Failed.
    SocketStatus Open();
    // Connects the socket, which takes as long as the system lets it: Done or Failed. A socket that
    // couldn't be connected stays open until Close.
    SocketStatus Connect(const in_addr& address, USHORT port);
    // Shuts both directions down and closes the socket, if it is open.
    void Close();

    // Wait until the socket can be read, or written, without blocking: Done, TimedOut or Failed. A
    // closed or broken connection counts as ready, and the next operation tells which it is.
    SocketStatus WaitReadable(Milliseconds limit) { return Wait(POLLIN, limit); }
    SocketStatus WaitWritable(Milliseconds limit) { return Wait(POLLOUT, limit); }

    // Takes what has arrived, at most the buffer's size; never waits. Done with a count above 0,
    // TimedOut when nothing has arrived, Closed or Failed.
    SocketStatus Receive(std::span<char> buffer, std::size_t& count) {
        return Receive(buffer, count, 0);
    }
    // The same after a wait of at most that long, counted from `now`, a look at the clock that the
    // caller has just had.
    SocketStatus ReceiveWithin(Milliseconds limit, Clock::time_point now, std::span<char> buffer,
                               std::size_t& count);
    // As Receive, but leaves the bytes to be received again.
    SocketStatus Peek(std::span<char> buffer, std::size_t& count) {
        return Receive(buffer, count, MSG_PEEK);
    }

    // Has the system hold no segment back until the peer has acknowledged the one before it (RFC
    // 9293 section 3.7.4). Send does it for what takes more than one segment, the end of which
    // would wait; whoever sends several times without a reply in between calls it first.
    void DelayNoSegments();
    // Sends all bytes, at most 2 GiB: Done, Failed, or TimedOut when the peer took none of them for
    // as long as the limit.
    SocketStatus Send(std::string_view bytes, Milliseconds limit);

    // Waits for that long and nothing else: TimedOut, or Failed when it was interrupted.
    SocketStatus Pause(Milliseconds time);

    // Number of the error of the last operation that Failed.
    int error() const { return m_error; }
    // Asks for an interruption, as every wait does, unless that was done a moment ago: Done, or
    // Failed when there is one.
    SocketStatus Look();
    // Asks for an interruption no sooner than after the usual time: what can be done at once is
    // done.
    void PostponeLook() { m_sinceLook = Stopwatch(); }
    // What the interrupt function says now, and whether it has ended a wait since the last Close.
    bool IsInterrupted() const { return m_isInterrupted && m_isInterrupted(); }
    bool wasInterrupted() const { return m_wasInterrupted; }

private:
    template <typename Step>
    SocketStatus WaitInSteps(Milliseconds limit, Clock::time_point now, const Step& step);
    SocketStatus Look(Clock::time_point now);
    SocketStatus Wait(SHORT events, Milliseconds limit);
    SocketStatus Poll(SHORT events, Milliseconds time);
    SocketStatus Receive(std::span<char> buffer, std::size_t& count, int flags);
    SocketStatus Take(int received, std::size_t& count);
    int TakePendingError();
    SocketStatus Fail();
    SocketStatus Fail(int error);

    InterruptFunction m_isInterrupted;
    SOCKET m_socket = INVALID_SOCKET;
    int m_error = 0;
    bool m_delaysSegments = true;
    bool m_wasInterrupted = false;
    Stopwatch m_sinceLook;
};

}  // namespace quorvane

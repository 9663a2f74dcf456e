#include "smtp/socket_connection.h"

#include <ws2tcpip.h>

#include <algorithm>
#include <climits>
#include <string>
#include <thread>
#include <utility>

#include "platform/timed_calls.h"

namespace quorvane {
namespace {

constexpr USHORT kSmtpPort = 25;

// No single system call waits longer, and before each one that comes later than this after the last
// look the interruption is looked at: at least twice a second in all.
constexpr Milliseconds kWaitStep{kTimedCallLimit};
constexpr Milliseconds kLookInterval{100};

// What goes out as one segment on any usual path. A command that was answered has nothing under way
// behind it, so the system holds no such segment back.
constexpr std::size_t kSureSegment = 1200;

// Systems give up well before (21 to 127 seconds); this only keeps a silent one from lasting.
constexpr Milliseconds kConnectLimit{180'000};

int SizeOf(std::span<char> buffer) {
    return static_cast<int>(std::min<std::size_t>(buffer.size(), INT_MAX));
}

bool IsControl(char c) {
    return static_cast<unsigned char>(c) < ' ' || c == 0x7F;
}

}  // namespace

void StartSockets() {
    WSADATA data;
    WSAStartup(0x0002, &data);
}

USHORT DefaultSmtpPort() {
    static const USHORT port = [] {
        const servent* const service = getservbyname("SMTP", "tcp");
        return service ? static_cast<USHORT>(service->s_port) : htons(kSmtpPort);
    }();
    return port;
}

bool ResolveServer(const WideString& server, in_addr& address) {
    const std::string name = ToAnsi(server);
    // Some resolvers answer an empty name with an address of this computer, and some read an
    // address no further than to a line break.
    if (name.empty() || std::any_of(name.begin(), name.end(), IsControl)) {
        return false;
    }
    if (inet_pton(AF_INET, name.c_str(), &address) == 1) {
        return true;
    }
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_protocol = IPPROTO_TCP;
    addrinfo* found = nullptr;
    const bool resolved = getaddrinfo(name.c_str(), nullptr, &hints, &found) == 0 && found;
    if (resolved) {
        address = reinterpret_cast<const sockaddr_in*>(found->ai_addr)->sin_addr;
        freeaddrinfo(found);
    }
    return resolved;
}

SocketStatus SocketConnection::Open() {
    Close();
    m_socket = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (!IsOpen()) {
        return Fail();
    }
    if (PrepareTimedCalls(m_socket) != 0) {
        return Fail();
    }
    m_delaysSegments = true;
    return SocketStatus::Done;
}

void SocketConnection::DelayNoSegments() {
    const int noDelay = 1;
    setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&noDelay),
               sizeof noDelay);
    m_delaysSegments = false;
}

SocketStatus SocketConnection::Connect(const in_addr& address, USHORT port) {
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = port;
    peer.sin_addr = address;
    bool begun = false;
    const SocketStatus status = WaitInSteps(kConnectLimit, Clock::now(), [&](Milliseconds time) {
        if (!std::exchange(begun, true)) {
            if (ConnectInTime(m_socket, peer) == 0) {
                return SocketStatus::Done;
            }
            return WSAGetLastError() == WSAEWOULDBLOCK ? SocketStatus::TimedOut : Fail();
        }
        const SocketStatus ready = Poll(POLLOUT, time);
        // Asked for after every step, since some systems never report a failed connect as ready.
        const int error = TakePendingError();
        return ready == SocketStatus::Failed || error == 0 ? ready : Fail(error);
    });
    return status == SocketStatus::TimedOut ? Fail(WSAETIMEDOUT) : status;
}

void SocketConnection::Close() {
    m_wasInterrupted = false;
    if (!IsOpen()) {
        return;
    }
    shutdown(m_socket, SD_BOTH);
    closesocket(m_socket);
    m_socket = INVALID_SOCKET;
    WSASetLastError(0);
}

SocketStatus SocketConnection::Look() {
    return Look(Clock::now());
}

SocketStatus SocketConnection::Look(Clock::time_point now) {
    if (m_sinceLook.elapsed(now) < kLookInterval) {
        return SocketStatus::Done;
    }
    m_sinceLook = Stopwatch(now);
    if (!IsInterrupted()) {
        return SocketStatus::Done;
    }
    m_wasInterrupted = true;
    return Fail(WSAEINTR);
}

// Takes steps of waiting until one of them ends in something else than TimedOut, until the limit
// has passed, or until it is interrupted. Everything that blocks a session comes through here.
template <typename Step>
SocketStatus SocketConnection::WaitInSteps(Milliseconds limit, Clock::time_point now,
                                           const Step& step) {
    // The clock is looked at once for each step: most waits are over at once.
    const Stopwatch watch(now);
    for (;;) {
        if (Look(now) == SocketStatus::Failed) {
            return SocketStatus::Failed;
        }
        const SocketStatus status = step(std::min(limit - watch.elapsed(now), kWaitStep));
        if (status != SocketStatus::TimedOut) {
            return status;
        }
        now = Clock::now();
        if (watch.elapsed(now) >= limit) {
            return status;
        }
    }
}

SocketStatus SocketConnection::Wait(SHORT events, Milliseconds limit) {
    return WaitInSteps(limit, Clock::now(), [&](Milliseconds time) { return Poll(events, time); });
}

SocketStatus SocketConnection::Poll(SHORT events, Milliseconds time) {
    WSAPOLLFD entry{};
    entry.fd = m_socket;
    entry.events = events;
    const int ready = WSAPoll(&entry, 1, static_cast<INT>(time.count()));
    if (ready < 0) {
        return Fail();
    }
    return ready > 0 ? SocketStatus::Done : SocketStatus::TimedOut;
}

SocketStatus SocketConnection::Pause(Milliseconds time) {
    return WaitInSteps(time, Clock::now(), [](Milliseconds step) {
        std::this_thread::sleep_for(step);
        return SocketStatus::TimedOut;
    });
}

SocketStatus SocketConnection::ReceiveWithin(Milliseconds limit, Clock::time_point now,
                                             std::span<char> buffer, std::size_t& count) {
    return WaitInSteps(limit, now, [&](Milliseconds time) {
        return Take(
            ReceiveInTime(m_socket, buffer.data(), SizeOf(buffer), static_cast<int>(time.count())),
            count);
    });
}

SocketStatus SocketConnection::Receive(std::span<char> buffer, std::size_t& count, int flags) {
    return Take(ReceiveAtOnce(m_socket, buffer.data(), SizeOf(buffer), flags), count);
}

// Takes the result of a call that receives.
SocketStatus SocketConnection::Take(int received, std::size_t& count) {
    count = 0;
    if (received > 0) {
        count = static_cast<std::size_t>(received);
        return SocketStatus::Done;
    }
    if (received == 0) {
        return SocketStatus::Closed;
    }
    return WSAGetLastError() == WSAEWOULDBLOCK ? SocketStatus::TimedOut : Fail();
}

SocketStatus SocketConnection::Send(std::string_view bytes, Milliseconds limit) {
    if (m_delaysSegments && bytes.size() > kSureSegment) {
        DelayNoSegments();
    }
    while (!bytes.empty()) {
        const int sent = SendAtOnce(m_socket, bytes.data(), static_cast<int>(bytes.size()));
        if (sent >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
            continue;
        }
        if (WSAGetLastError() != WSAEWOULDBLOCK) {
            return Fail();
        }
        const SocketStatus status = WaitWritable(limit);
        if (status != SocketStatus::Done) {
            return status;
        }
    }
    return SocketStatus::Done;
}

int SocketConnection::TakePendingError() {
    int error = 0;
    int size = sizeof error;
    const int result =
        getsockopt(m_socket, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &size);
    return result == 0 ? error : WSAGetLastError();
}

SocketStatus SocketConnection::Fail() {
    return Fail(WSAGetLastError());
}

// Clears the thread's last socket error, which a later failure must not inherit.
SocketStatus SocketConnection::Fail(int error) {
    m_error = error;
    WSASetLastError(0);
    return SocketStatus::Failed;
}

}  // namespace quorvane

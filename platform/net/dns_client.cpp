#include "dns_client.h"

#include <ares.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace quorvane::dns {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr int kInternetClass = 1;

// A question takes no longer, whatever servers say or don't say.
constexpr milliseconds kQuestionLimit{10'000};
// Before the next server is asked; twice as long when all have been asked. Servers that are named
// by the caller are several and well connected.
constexpr int kServerTimeout = 3000;  // milliseconds
constexpr int kNamedServerTimeout = 1500;
constexpr int kRounds = 2;

struct Answer {
    bool arrived = false;
    int status = ARES_ETIMEOUT;
    std::vector<unsigned char> bytes;
};

struct ChannelDeleter {
    void operator()(ares_channel channel) const { ares_destroy(channel); }
};
using Channel = std::unique_ptr<std::remove_pointer_t<ares_channel>, ChannelDeleter>;

// The library's own way of sending over TCP lets a server that is gone raise SIGPIPE.
constexpr ares_socket_functions kSocketFunctions = {
    [](int family, int type, int protocol, void*) {
        return socket(family, type | SOCK_NONBLOCK | SOCK_CLOEXEC, protocol);
    },
    [](ares_socket_t descriptor, void*) { return close(descriptor); },
    [](ares_socket_t descriptor, const sockaddr* address, ares_socklen_t size, void*) {
        return connect(descriptor, address, size);
    },
    [](ares_socket_t descriptor, void* buffer, size_t size, int flags, sockaddr* sender,
       ares_socklen_t* senderSize, void*) -> ares_ssize_t {
        return recvfrom(descriptor, buffer, size, flags, sender, senderSize);
    },
    [](ares_socket_t descriptor, const iovec* pieces, int count, void*) -> ares_ssize_t {
        msghdr message = {};
        message.msg_iov = const_cast<iovec*>(pieces);
        message.msg_iovlen = static_cast<size_t>(count);
        return sendmsg(descriptor, &message, MSG_NOSIGNAL);
    },
};

Outcome OutcomeOf(int status) {
    switch (status) {
        case ARES_SUCCESS:
            return Outcome::Answered;
        case ARES_ENOTFOUND:
            return Outcome::NoSuchName;
        case ARES_ENODATA:
            return Outcome::NoRecords;
        case ARES_EFORMERR:
            return Outcome::NotUnderstood;
        case ARES_ENOTIMP:
            return Outcome::NotImplemented;
        case ARES_EREFUSED:
            return Outcome::Refused;
        case ARES_EBADNAME:
            return Outcome::BadName;
        case ARES_EBADRESP:
            return Outcome::BadAnswer;
        case ARES_ETIMEOUT:
        case ARES_ECANCELLED:
            return Outcome::TimedOut;
        case ARES_ENOMEM:
            return Outcome::OutOfMemory;
        default:
            return Outcome::ServerFailed;
    }
}

int OpenChannel(std::span<const std::uint32_t> servers, Channel& channel) {
    // Counts its calls without a lock.
    static const int started = ares_library_init(ARES_LIB_INIT_ALL);
    if (started != ARES_SUCCESS) return started;
    std::vector<in_addr> addresses;
    for (const std::uint32_t server : servers) addresses.push_back({server});
    ares_options options = {};
    int chosen = ARES_OPT_TIMEOUTMS | ARES_OPT_TRIES;
    options.timeout = servers.empty() ? kServerTimeout : kNamedServerTimeout;
    options.tries = kRounds;
    if (!servers.empty()) {
        options.servers = addresses.data();
        options.nservers = static_cast<int>(addresses.size());
        chosen |= ARES_OPT_SERVERS;
    }
    ares_channel opened = nullptr;
    const int status = ares_init_options(&opened, &options, chosen);
    if (status != ARES_SUCCESS) return status;
    channel.reset(opened);
    ares_set_socket_functions(opened, &kSocketFunctions, nullptr);
    return ARES_SUCCESS;
}

void TakeAnswer(void* argument, int status, int, unsigned char* bytes, int size) {
    auto& answer = *static_cast<Answer*>(argument);
    answer.arrived = true;
    answer.status = status;
    if (status != ARES_SUCCESS) return;
    try {
        answer.bytes.assign(bytes, bytes + size);
    } catch (const std::bad_alloc&) {
        answer.status = ARES_ENOMEM;  // no exception may pass through the library
    }
}

// Waits for the channel's sockets until something happens on one of them, until the library wants
// to be called because of a server's silence, or until the limit; and lets the library go on.
void Proceed(ares_channel channel, milliseconds limit) {
    std::array<ares_socket_t, ARES_GETSOCK_MAXNUM> sockets;
    std::array<pollfd, ARES_GETSOCK_MAXNUM> entries;
    const int wanted = ares_getsock(channel, sockets.data(), static_cast<int>(sockets.size()));
    nfds_t count = 0;
    for (std::size_t i = 0; i < sockets.size(); ++i) {
        const int events = (ARES_GETSOCK_READABLE(wanted, i) ? POLLIN : 0) |
                           (ARES_GETSOCK_WRITABLE(wanted, i) ? POLLOUT : 0);
        if (events != 0) entries[count++] = {sockets[i], static_cast<short>(events), 0};
    }
    timeval next;
    if (ares_timeout(channel, nullptr, &next)) {
        limit = std::min(limit, milliseconds(next.tv_sec * 1000 + next.tv_usec / 1000 + 1));
    }
    const int ready = poll(entries.data(), count, static_cast<int>(limit.count()));
    if (ready <= 0) {
        ares_process_fd(channel, ARES_SOCKET_BAD, ARES_SOCKET_BAD);
        return;
    }
    for (nfds_t i = 0; i < count; ++i) {
        const bool readable = entries[i].revents & (POLLIN | POLLERR | POLLHUP);
        const bool writable = entries[i].revents & POLLOUT;
        ares_process_fd(channel, readable ? entries[i].fd : ARES_SOCKET_BAD,
                        writable ? entries[i].fd : ARES_SOCKET_BAD);
    }
}

}  // namespace

Outcome Ask(const std::string& name, std::uint16_t type, std::span<const std::uint32_t> servers,
            std::vector<unsigned char>& bytes) {
    Answer answer;  // outlives the channel, which writes into it
    Channel channel;
    if (const int status = OpenChannel(servers, channel); status != ARES_SUCCESS) {
        return OutcomeOf(status);
    }
    const Clock::time_point end = Clock::now() + kQuestionLimit;
    ares_query(channel.get(), name.c_str(), kInternetClass, type, TakeAnswer, &answer);
    while (!answer.arrived) {
        const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
        if (left <= milliseconds::zero()) {
            ares_cancel(channel.get());
        } else {
            Proceed(channel.get(), left);
        }
    }
    bytes = std::move(answer.bytes);
    return OutcomeOf(answer.status);
}

}  // namespace quorvane::dns

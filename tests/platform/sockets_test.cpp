// Purpose: sockets report failures by their numbers and readiness by poll, and a peer that is gone
// never ends the process.
#include <winsock2.h>
#include <ws2tcpip.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "platform/timed_calls.h"

namespace quorvane {
namespace {

constexpr int kLimit = 10000;  // milliseconds that no wait here comes near

SOCKET MakeSocket() {
    WSADATA data;
    EXPECT_EQ(WSAStartup(0x0202, &data), 0);
    return socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
}

class Socket {
public:
    explicit Socket(SOCKET socket) : socket_(socket) {}
    Socket() : Socket(MakeSocket()) {}
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket() { Close(); }

    SOCKET get() const { return socket_; }
    void Close() {
        if (socket_ != INVALID_SOCKET) closesocket(socket_);
        socket_ = INVALID_SOCKET;
    }
    SHORT Poll(SHORT events, int limit = kLimit) const {
        WSAPOLLFD entry{};
        entry.fd = socket_;
        entry.events = events;
        return WSAPoll(&entry, 1, limit) > 0 ? entry.revents : SHORT{0};
    }

private:
    SOCKET socket_;
};

sockaddr_in Loopback(USHORT port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = port;
    return address;
}

class SocketsTest : public testing::Test {
protected:
    void SetUp() override {
        sockaddr_in address = Loopback(0);
        int size = sizeof address;
        auto* const generic = reinterpret_cast<sockaddr*>(&address);
        ASSERT_EQ(bind(listener_.get(), generic, size), 0);
        ASSERT_EQ(listen(listener_.get(), SOMAXCONN), 0);
        ASSERT_EQ(getsockname(listener_.get(), generic, &size), 0);
        address_ = address;
    }

    int Connect(const Socket& socket) const {
        return connect(socket.get(), reinterpret_cast<const sockaddr*>(&address_), sizeof address_);
    }

    Socket listener_;
    sockaddr_in address_{};
};

TEST_F(SocketsTest, CarryBytesBothWays) {
    const Socket client;
    ASSERT_EQ(Connect(client), 0);
    const Socket peer(accept(listener_.get(), nullptr, nullptr));
    ASSERT_NE(peer.get(), INVALID_SOCKET);
    EXPECT_EQ(client.Poll(POLLIN, 0), 0);
    EXPECT_TRUE(client.Poll(POLLOUT) & POLLOUT);
    EXPECT_EQ(send(peer.get(), "hello", 5, 0), 5);
    EXPECT_TRUE(client.Poll(POLLIN) & POLLIN);
    char buffer[8] = {};
    EXPECT_EQ(recv(client.get(), buffer, 8, MSG_PEEK), 5);
    EXPECT_EQ(recv(client.get(), buffer, 8, 0), 5);
    EXPECT_STREQ(buffer, "hello");
}

TEST_F(SocketsTest, ReceiveNothingAfterAnOrderlyEnd) {
    const Socket client;
    ASSERT_EQ(Connect(client), 0);
    const Socket peer(accept(listener_.get(), nullptr, nullptr));
    EXPECT_EQ(shutdown(peer.get(), SD_BOTH), 0);
    EXPECT_NE(client.Poll(POLLIN), 0);
    char byte;
    EXPECT_EQ(recv(client.get(), &byte, 1, 0), 0);
}

TEST_F(SocketsTest, SendEverythingWhenTheyBlock) {
    const Socket client;
    ASSERT_EQ(Connect(client), 0);
    const Socket peer(accept(listener_.get(), nullptr, nullptr));
    const std::string data(8 << 20, 'x');  // more than the buffers of both sides take
    std::size_t received = 0;
    std::thread reader([&] {
        std::vector<char> buffer(65536);
        for (int count; received < data.size(); received += static_cast<std::size_t>(count)) {
            count = recv(peer.get(), buffer.data(), static_cast<int>(buffer.size()), 0);
            if (count <= 0) return;
        }
    });
    EXPECT_EQ(send(client.get(), data.data(), static_cast<int>(data.size()), 0),
              static_cast<int>(data.size()));
    shutdown(client.get(), SD_SEND);
    reader.join();
    EXPECT_EQ(received, data.size());
}

TEST_F(SocketsTest, TimedCallsWaitNoLongerThanTheyMay) {
    const Socket client;
    ASSERT_EQ(PrepareTimedCalls(client.get()), 0);
    if (ConnectInTime(client.get(), address_) != 0) {
        ASSERT_EQ(WSAGetLastError(), WSAEWOULDBLOCK);
        ASSERT_NE(client.Poll(POLLOUT), 0);
    }
    const Socket peer(accept(listener_.get(), nullptr, nullptr));
    char buffer[8] = {};
    for (const int time : {0, 10, kTimedCallLimit}) {
        WSASetLastError(0);
        EXPECT_EQ(ReceiveInTime(client.get(), buffer, 8, time), SOCKET_ERROR) << time;
        EXPECT_EQ(WSAGetLastError(), WSAEWOULDBLOCK) << time;
    }
    WSASetLastError(0);
    EXPECT_EQ(ReceiveAtOnce(client.get(), buffer, 8, 0), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEWOULDBLOCK);

    const std::string data(65536, 'x');
    int sent = 0;
    for (int i = 0; i < 10000 && sent >= 0; ++i) {  // until the buffers of both sides are full
        sent = SendAtOnce(client.get(), data.data(), static_cast<int>(data.size()));
    }
    EXPECT_EQ(sent, SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEWOULDBLOCK);
}

TEST_F(SocketsTest, TimedCallsTakeWhatComes) {
    const Socket client;
    ASSERT_EQ(Connect(client), 0);
    ASSERT_EQ(PrepareTimedCalls(client.get()), 0);
    const Socket peer(accept(listener_.get(), nullptr, nullptr));
    char buffer[8] = {};
    for (const int time : {kTimedCallLimit - 1, kTimedCallLimit}) {
        EXPECT_EQ(send(peer.get(), "hello", 5, 0), 5);
        EXPECT_NE(client.Poll(POLLIN), 0);
        EXPECT_EQ(ReceiveAtOnce(client.get(), buffer, 8, MSG_PEEK), 5);
        EXPECT_EQ(ReceiveInTime(client.get(), buffer, 8, time), 5) << time;
        EXPECT_STREQ(buffer, "hello");
    }
    EXPECT_EQ(shutdown(peer.get(), SD_BOTH), 0);
    EXPECT_NE(client.Poll(POLLIN), 0);
    EXPECT_EQ(ReceiveInTime(client.get(), buffer, 8, kTimedCallLimit), 0);
}

TEST_F(SocketsTest, AreRefusedWhereNobodyListens) {
    listener_.Close();
    const Socket blocking;
    EXPECT_EQ(Connect(blocking), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAECONNREFUSED);

    const Socket client;
    EXPECT_EQ(PrepareTimedCalls(client.get()), 0);
    EXPECT_EQ(ConnectInTime(client.get(), address_), SOCKET_ERROR);
    int error = WSAGetLastError();
    if (error == WSAEWOULDBLOCK) {
        EXPECT_NE(client.Poll(POLLOUT), 0);
        int size = sizeof error;
        EXPECT_EQ(
            getsockopt(client.get(), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &size),
            0);
    }
    EXPECT_EQ(error, WSAECONNREFUSED);
}

TEST_F(SocketsTest, OutliveAReset) {
    const Socket client;
    ASSERT_EQ(Connect(client), 0);
    {
        Socket peer(accept(listener_.get(), nullptr, nullptr));
        EXPECT_EQ(send(client.get(), "x", 1, 0), 1);
        EXPECT_NE(peer.Poll(POLLIN), 0);
        peer.Close();  // with a byte unread: a reset
    }
    EXPECT_NE(client.Poll(POLLIN), 0);
    char byte;
    EXPECT_LE(recv(client.get(), &byte, 1, 0), 0);
    // Sending now would be a signal's business on other systems.
    EXPECT_EQ(send(client.get(), "x", 1, 0), SOCKET_ERROR);
    EXPECT_TRUE(WSAGetLastError() == WSAECONNRESET || WSAGetLastError() == WSAECONNABORTED)
        << WSAGetLastError();
}

TEST_F(SocketsTest, RefuseWhatMakesNoSense) {
    Socket client;
    char byte = 0;
    EXPECT_EQ(recv(client.get(), &byte, 1, 0), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAENOTCONN);
    const SOCKET closed = client.get();
    client.Close();
    EXPECT_EQ(send(closed, &byte, 1, 0), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAENOTSOCK);
    EXPECT_EQ(closesocket(INVALID_SOCKET), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAENOTSOCK);
}

TEST_F(SocketsTest, HaveALastErrorOfTheThreadsOwn) {
    std::atomic<int> step{0};
    std::thread other([&step] {
        while (step != 1) {
        }
        WSASetLastError(WSAECONNRESET);
        step = 2;
    });
    WSASetLastError(WSAETIMEDOUT);
    step = 1;
    while (step != 2) {
    }
    EXPECT_EQ(WSAGetLastError(), WSAETIMEDOUT);
    other.join();
}

TEST_F(SocketsTest, ResolveAddressesAndNames) {
    const struct {
        const char* name;
        ULONG address;
    } cases[] = {{"127.0.0.1", 0x7F000001}, {"localhost", 0x7F000001}, {"10.1.2.3", 0x0A010203}};
    for (const auto& each : cases) {
        ADDRINFOA hints{};
        hints.ai_family = AF_INET;
        hints.ai_socktype = SOCK_STREAM;
        PADDRINFOA list = nullptr;
        ASSERT_EQ(getaddrinfo(each.name, nullptr, &hints, &list), 0) << each.name;
        ASSERT_NE(list, nullptr);
        EXPECT_EQ(list->ai_family, AF_INET);
        EXPECT_EQ(list->ai_addrlen, sizeof(sockaddr_in));
        const auto* const found = reinterpret_cast<const sockaddr_in*>(list->ai_addr);
        EXPECT_EQ(ntohl(found->sin_addr.s_addr), each.address) << each.name;
        freeaddrinfo(list);
    }
    ADDRINFOA hints{};
    hints.ai_family = AF_INET;
    hints.ai_flags = AI_NUMERICHOST;
    PADDRINFOA list = nullptr;
    EXPECT_EQ(getaddrinfo("no.address", nullptr, &hints, &list), WSAHOST_NOT_FOUND);
    EXPECT_EQ(WSAGetLastError(), WSAHOST_NOT_FOUND);
}

TEST_F(SocketsTest, ReadDottedAddresses) {
    in_addr address{};
    EXPECT_EQ(inet_pton(AF_INET, "192.0.2.255", &address), 1);
    EXPECT_EQ(ntohl(address.s_addr), 0xC00002FFu);
    for (const char* text : {"", "1.2.3", "1.2.3.256", "1.2.3.4.5", "1.2.3.x", "name"}) {
        EXPECT_EQ(inet_pton(AF_INET, text, &address), 0) << text;
    }
}

TEST_F(SocketsTest, FindTheMailServiceWhateverTheCaseOfItsName) {
    for (const char* name : {"smtp", "SMTP"}) {
        const servent* const service = getservbyname(name, "tcp");
        ASSERT_NE(service, nullptr) << name;
        EXPECT_EQ(ntohs(static_cast<USHORT>(service->s_port)), 25);
    }
    EXPECT_EQ(getservbyname("no-such-service", "tcp"), nullptr);
}

}  // namespace
}  // namespace quorvane

// What is about sockets on Linux: signals, and errors that Wine loses.
#include <winsock2.h>

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

#include "platform/timed_calls.h"

namespace quorvane {
namespace {

class LinuxSocketsTest : public testing::Test {
protected:
    void SetUp() override {
        listener_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        int size = sizeof address_;
        auto* const generic = reinterpret_cast<sockaddr*>(&address_);
        ASSERT_EQ(bind(listener_, generic, size), 0);
        ASSERT_EQ(listen(listener_, 0), 0);
        ASSERT_EQ(getsockname(listener_, generic, &size), 0);
        client_ = Connected();
        peer_ = accept(listener_, nullptr, nullptr);
    }
    void TearDown() override {
        closesocket(client_);
        closesocket(peer_);
        closesocket(listener_);
    }

    SOCKET Connected() const {
        const SOCKET client = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
        EXPECT_EQ(connect(client, reinterpret_cast<const sockaddr*>(&address_), sizeof address_),
                  0);
        return client;
    }

    SOCKET listener_ = INVALID_SOCKET;  // one connection may wait to be accepted
    sockaddr_in address_{};
    SOCKET client_ = INVALID_SOCKET;
    SOCKET peer_ = INVALID_SOCKET;
};

TEST_F(LinuxSocketsTest, ReportAReset) {
    EXPECT_EQ(send(client_, "x", 1, 0), 1);
    WSAPOLLFD entry{};
    entry.fd = peer_;
    entry.events = POLLIN;
    EXPECT_EQ(WSAPoll(&entry, 1, 10000), 1);
    closesocket(peer_);  // with a byte unread
    entry.fd = client_;
    EXPECT_EQ(WSAPoll(&entry, 1, 10000), 1);
    EXPECT_TRUE(entry.revents & (POLLERR | POLLHUP));
    char byte;
    EXPECT_EQ(recv(client_, &byte, 1, 0), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAECONNRESET);
    EXPECT_EQ(send(client_, "x", 1, 0), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAECONNRESET);
    peer_ = INVALID_SOCKET;
}

TEST_F(LinuxSocketsTest, NeverRaiseSigpipe) {
    struct sigaction action = {};
    sigaction(SIGPIPE, nullptr, &action);
    ASSERT_EQ(action.sa_handler, SIG_DFL);  // it would end this process
    EXPECT_EQ(shutdown(client_, SD_BOTH), 0);
    EXPECT_EQ(send(client_, "x", 1, 0), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAECONNRESET);
}

// A host's signal, say of a timer, doesn't look like a failure of the connection.
TEST_F(LinuxSocketsTest, GoOnAfterASignal) {
    static std::atomic<int> signals{0};
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = [](int) { ++signals; };  // without SA_RESTART
    sigaction(SIGUSR1, &action, &before);
    const pthread_t waiting = pthread_self();
    std::atomic<bool> polled{false};
    std::thread sender([&] {
        const auto interrupt = [waiting] {
            pthread_kill(waiting, SIGUSR1);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        };
        while (!polled) interrupt();
        for (int i = 0; i < 20; ++i) interrupt();
        send(peer_, "x", 1, 0);
    });
    WSAPOLLFD entry{};
    entry.fd = client_;
    entry.events = POLLIN;
    EXPECT_EQ(WSAPoll(&entry, 1, 20), 0);
    polled = true;
    char byte = 0;
    EXPECT_EQ(recv(client_, &byte, 1, 0), 1);
    EXPECT_EQ(byte, 'x');
    sender.join();
    sigaction(SIGUSR1, &before, nullptr);
    EXPECT_GT(signals, 0);
}

TEST_F(LinuxSocketsTest, LetATimedConnectGoOn) {
    const SOCKET waiting = Connected();
    const SOCKET late = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    ASSERT_EQ(PrepareTimedCalls(late), 0);
    EXPECT_EQ(ConnectInTime(late, address_), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEWOULDBLOCK);
    WSAPOLLFD entry{};
    entry.fd = late;
    entry.events = POLLOUT;
    EXPECT_EQ(WSAPoll(&entry, 1, 0), 0);
    const SOCKET accepted = accept(listener_, nullptr, nullptr);
    EXPECT_EQ(WSAPoll(&entry, 1, 10000), 1);
    EXPECT_EQ(entry.revents, POLLOUT);
    for (const SOCKET s : {waiting, late, accepted}) closesocket(s);
}

// Or a timer of the host's, whose signals come faster than the time passes, would keep it for ever.
TEST_F(LinuxSocketsTest, EndATimedCallWithASignal) {
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, &before);
    ASSERT_EQ(PrepareTimedCalls(client_), 0);
    const pthread_t waiting = pthread_self();
    std::atomic<bool> ended{false}, inVain{false};
    std::thread timer([&] {
        constexpr int kMany = 10 * kTimedCallLimit;
        for (int i = 0; i < kMany && !ended; ++i) {
            pthread_kill(waiting, SIGUSR1);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        inVain = !ended;
    });
    char byte = 0;
    EXPECT_EQ(ReceiveInTime(client_, &byte, 1, kTimedCallLimit), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEWOULDBLOCK);
    ended = true;
    timer.join();
    EXPECT_FALSE(inVain);
    sigaction(SIGUSR1, &before, nullptr);
}

}  // namespace
}  // namespace quorvane

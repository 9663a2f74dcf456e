// The socket under a session, and the token exchange of a handshake.
#include "smtp/socket_connection.h"

#include <gtest/gtest.h>

#include <array>
#include <span>
#include <string>
#include <thread>

#include "smtp/session.h"
#include "smtp/token_exchange.h"
#include "tests/servers/loopback.h"

namespace quorvane::testing {
namespace {

constexpr Milliseconds kLong{10000};

class Connection : public ::testing::Test {
protected:
    void SetUp() override {
        in_addr address{};
        ASSERT_TRUE(ResolveServer(OLESTR("127.0.0.1"), address));
        ASSERT_EQ(connection_.Open(), SocketStatus::Done);
        ASSERT_EQ(connection_.Connect(address, listener_.port()), SocketStatus::Done);
        ASSERT_TRUE(listener_.WaitForConnection(10000));
        peer_ = listener_.Accept();
    }

    int Receive(std::span<char> buffer) {
        return ReceiveToken(channel_, buffer, Milliseconds{1000});
    }

    LoopbackListener listener_;
    SocketConnection connection_;
    LoopbackSocket peer_;
    WideString server_ = OLESTR("mx.example.test");
    WideString text_;
    TokenChannel channel_{connection_, server_, text_};
};

TEST_F(Connection, ReceivesATokenIntoAZeroedBuffer) {
    ASSERT_TRUE(peer_.Send("token"));
    std::string buffer(16, 'x');
    EXPECT_EQ(Receive(buffer), 5);
    EXPECT_EQ(buffer, "token" + std::string(11, '\0'));
    EXPECT_EQ(text_, WideString());
}

TEST_F(Connection, TokenThatDoesNotComeIsNoFailure) {
    std::string buffer(16, 'x');
    const Stopwatch watch;
    EXPECT_EQ(Receive(buffer), 0);
    EXPECT_GE(watch.elapsed(), Milliseconds{1000});
    EXPECT_LT(watch.elapsed(), Milliseconds{2000});
    EXPECT_EQ(text_, WideString());
    EXPECT_EQ(buffer, std::string(16, '\0'));
}

TEST_F(Connection, CloseInsteadOfAToken) {
    peer_.Close();
    std::string buffer(16, 'x');
    EXPECT_EQ(Receive(buffer), -1);
    EXPECT_EQ(ToUtf8(text_), "Remote host closed connection unexpectedly");
}

// More than any buffer holds, taken by a peer that reads as it pleases.
TEST_F(Connection, SendsALongTokenWhole) {
    std::string token(8'000'000, '\0');
    for (std::size_t i = 0; i < token.size(); ++i) {
        token[i] = static_cast<char>(i * 7 + i / 251);
    }
    std::string received;
    std::thread reader([&] {
        while (received.size() < token.size() && peer_.Receive(received)) {
        }
    });
    EXPECT_EQ(SendToken(channel_, token, kLong), 1);
    connection_.Close();
    reader.join();
    EXPECT_TRUE(received == token);
}

TEST_F(Connection, TokenThatNobodyTakesFails) {
    const std::string token(8'000'000, 'x');
    EXPECT_EQ(SendToken(channel_, token, Milliseconds{1000}), -1);
    EXPECT_EQ(ToUtf8(text_),
              "Mail server mx.example.test did not accept data within specified timeout");
}

TEST_F(Connection, TokenForAPeerThatIsGone) {
    ASSERT_EQ(connection_.Send("unread", kLong), SocketStatus::Done);
    ASSERT_TRUE(peer_.WaitReadable(10000));
    peer_.Close();
    ASSERT_EQ(connection_.WaitReadable(kLong), SocketStatus::Done);
    int result = 1;
    for (int i = 0; i < 10 && result == 1; ++i) {  // the first may be taken by the system
        result = SendToken(channel_, "token", Milliseconds{1000});
    }
    EXPECT_EQ(result, -1);
    EXPECT_NE(ToUtf8(text_).find("onnection to mail server mx.example.test"), std::string::npos);
    EXPECT_EQ(WSAGetLastError(), 0);
}

TEST_F(Connection, PeekedBytesAreReceivedAgain) {
    ASSERT_TRUE(peer_.Send("220 Hi"));
    ASSERT_EQ(connection_.WaitReadable(kLong), SocketStatus::Done);
    std::array<char, 3> few;
    std::array<char, 16> all;
    std::size_t count = 0;
    EXPECT_EQ(connection_.Peek(few, count), SocketStatus::Done);
    EXPECT_EQ(std::string(few.data(), count), "220");
    EXPECT_EQ(connection_.Receive(all, count), SocketStatus::Done);
    EXPECT_EQ(std::string(all.data(), count), "220 Hi");
    EXPECT_EQ(connection_.Receive(all, count), SocketStatus::TimedOut);
}

TEST(SocketConnection, RefusedConnectionLeavesNoError) {
    const LoopbackListener refusing(false);
    SocketConnection connection;
    in_addr address{};
    ASSERT_TRUE(ResolveServer(OLESTR("127.0.0.1"), address));
    ASSERT_EQ(connection.Open(), SocketStatus::Done);
    EXPECT_EQ(connection.Connect(address, refusing.port()), SocketStatus::Failed);
    EXPECT_EQ(connection.error(), WSAECONNREFUSED);
    EXPECT_EQ(WSAGetLastError(), 0);
    EXPECT_TRUE(connection.IsOpen());
}

TEST(SocketConnection, IsInterruptedBeforeItConnects) {
    StartSockets();
    const LoopbackListener listener;
    in_addr address{};
    ASSERT_TRUE(ResolveServer(OLESTR("127.0.0.1"), address));
    SocketConnection connection([] { return true; });
    ASSERT_EQ(connection.Open(), SocketStatus::Done);
    std::this_thread::sleep_for(std::chrono::milliseconds(150));  // so that the question is due
    EXPECT_EQ(connection.Connect(address, listener.port()), SocketStatus::Failed);
    EXPECT_TRUE(connection.wasInterrupted());
    EXPECT_FALSE(listener.WaitForConnection(0));
}

TEST(Session, ForgetsAnInterruptionWithItsConnection) {
    const LoopbackListener refusing(false);
    int askedBefore = 1;  // as an operation begins
    CSmtp session([&] { return askedBefore-- <= 0; });
    session.m_port = refusing.port();
    EXPECT_EQ(session.Connect(OLESTR("127.0.0.1"), TlsNone), -2) << "before the second attempt";
    askedBefore = 1000;
    EXPECT_EQ(session.Connect(WideString(300, 'a'), TlsNone), -1) << "no socket was opened";
}

TEST(ResolveServer, TakesAddressesAndNames) {
    StartSockets();
    const struct {
        WideString name;
        bool found;
        ULONG address;
    } cases[] = {
        {OLESTR("127.0.0.1"), true, 0x7F000001},
        {OLESTR("255.255.255.255"), true, 0xFFFFFFFF},
        {OLESTR("192.0.2.130"), true, 0xC0000282},
        {OLESTR("localhost"), true, 0x7F000001},
        {OLESTR(""), false, 0},
        {WideString(OLESTR("localhost\0x"), 11), false, 0},
        {WideString(64, 'a') + OLESTR(".test"), false, 0},
        {OLESTR("::1"), false, 0},
    };
    for (const auto& c : cases) {
        in_addr address{};
        EXPECT_EQ(ResolveServer(c.name, address), c.found) << ToUtf8(c.name);
        EXPECT_EQ(ntohl(address.s_addr), c.address) << ToUtf8(c.name);
    }
}

TEST(DefaultSmtpPort, IsTwentyFive) {
    StartSockets();
    EXPECT_EQ(ntohs(DefaultSmtpPort()), 25);
}

}  // namespace
}  // namespace quorvane::testing

// TLS over a real socket, with a server whose every byte the test may hold back, cut off or change.
#include "smtp/secure_channel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <map>
#include <thread>

#include "tests/servers/loopback.h"
#include "tests/servers/tls_server.h"

namespace quorvane::testing {
namespace {

using ::testing::AnyOf;
using ::testing::StartsWith;

constexpr Milliseconds kLong{20000};
constexpr auto kSilent = "Cannot negotiate secure connection, no response from the server";
constexpr auto kClosedInHandshake = "Remote host closed connection unexpectedly";
constexpr auto kClosed = "Mail server mx.example.test closed connection unexpectedly";

// A client's channel and the socket at its other end, which a thread serves.
class Link {
public:
    explicit Link(std::function<void(LoopbackSocket&)> serve) {
        in_addr address{};
        ResolveServer(OLESTR("127.0.0.1"), address);
        EXPECT_EQ(connection_.Open(), SocketStatus::Done);
        EXPECT_EQ(connection_.Connect(address, listener_.port()), SocketStatus::Done);
        EXPECT_TRUE(listener_.WaitForConnection(10000));
        thread_ = std::jthread([serve, peer = listener_.Accept()]() mutable {
            serve(peer);
            for (std::string ignored; peer.Receive(ignored); ignored.clear()) {
            }
        });
    }
    ~Link() { connection_.Close(); }

    SecureChannel& channel() { return channel_; }
    std::string text() const { return ToUtf8(text_); }

    // Takes text until the channel fails or has given as much as that.
    std::string Receive(std::size_t size) {
        std::string received;
        std::array<char, 100> buffer;
        for (int count = 0; count >= 0 && received.size() < size;) {
            const bool readable =
                connection_.WaitReadable(channel_.pending() ? Milliseconds{0} : kLong) ==
                SocketStatus::Done;
            EXPECT_TRUE(readable || channel_.pending());
            count = channel_.Receive(buffer, readable);
            received.append(buffer.data(), static_cast<std::size_t>(std::max(count, 0)));
        }
        return received;
    }

private:
    LoopbackListener listener_;
    SocketConnection connection_;
    WideString server_ = OLESTR("mx.example.test");
    WideString text_;
    SecureChannel channel_{connection_, server_, text_};
    std::jthread thread_;
};

// Shakes hands, with each answer handed to `send` instead of the socket.
void ShakeHands(LoopbackSocket& socket, TlsServer& server,
                const std::function<bool(std::string&)>& send) {
    std::string bytes;
    while (!server.established() && socket.Receive(bytes)) {
        std::string answer = server.Handshake(bytes);
        bytes.clear();
        if (!send(answer)) {
            return;
        }
    }
}

void ShakeHands(LoopbackSocket& socket, TlsServer& server, const std::string& text = {}) {
    ShakeHands(socket, server, [&](std::string& answer) {
        return socket.Send(server.established() ? answer + server.Encrypt(text) : answer);
    });
}

enum class Fault { Cut, Stall, Change };

struct Outcome {
    int result = 0;
    std::string text;
    std::size_t said = 0;  // bytes of the server
};

constexpr std::size_t kNowhere = std::string::npos;

Outcome ShakeHandsWith(Fault fault, std::size_t place, Milliseconds limit) {
    Outcome outcome;
    {
        Link link([&outcome, fault, place](LoopbackSocket& socket) {
            const auto server = MakeTlsServer();
            ShakeHands(socket, *server, [&](std::string& answer) {
                const std::size_t begin = std::exchange(outcome.said, outcome.said + answer.size());
                if (place < begin || place >= outcome.said) {
                    return socket.Send(answer);
                }
                if (fault == Fault::Change) {
                    answer[place - begin] ^= '\xFF';
                    return socket.Send(answer);
                }
                socket.Send(answer.substr(0, place - begin));
                if (fault == Fault::Cut) {
                    shutdown(socket.get(), SD_SEND);
                }
                return false;
            });
        });
        outcome.result = link.channel().Handshake(limit);
        outcome.text = link.text();
    }
    return outcome;
}

// The fault at each byte that the server says, several at a time.
void TryEverywhere(Fault fault, Milliseconds limit,
                   const std::function<void(std::size_t, const Outcome&)>& judge) {
    const Outcome whole = ShakeHandsWith(fault, kNowhere, kLong);
    ASSERT_EQ(whole.result, 0) << whole.text;
    for (std::size_t place = 0; place < whole.said;) {
        std::map<std::size_t, std::future<Outcome>> batch;
        for (; batch.size() < 16 && place < whole.said; ++place) {
            batch[place] = std::async(std::launch::async, ShakeHandsWith, fault, place, limit);
        }
        for (auto& [byte, outcome] : batch) {
            SCOPED_TRACE("byte " + std::to_string(byte));
            judge(byte, outcome.get());
        }
    }
}

TEST(Handshake, CutAtEveryByte) {
    TryEverywhere(Fault::Cut, kLong, [](std::size_t, const Outcome& outcome) {
        EXPECT_EQ(outcome.result, -1);
        EXPECT_EQ(outcome.text, kClosedInHandshake);
    });
}

TEST(Handshake, StalledAtEveryByte) {
    TryEverywhere(Fault::Stall, Milliseconds{30}, [](std::size_t, const Outcome& outcome) {
        EXPECT_EQ(outcome.result, -1);
        EXPECT_EQ(outcome.text, kSilent);
    });
}

// A change may make the client wait for more, or the server give up; never does it go unnoticed,
// and only one in the first header makes the peer one that speaks no TLS.
TEST(Handshake, ChangedAtEveryByte) {
    constexpr std::size_t headerSize = 5;
    constexpr std::size_t minorVersion = 2;  // of the first record: nobody need look at it
    TryEverywhere(Fault::Change, Milliseconds{200}, [&](std::size_t byte, const Outcome& outcome) {
        if (byte == minorVersion) {
            return;
        }
        EXPECT_THAT(outcome.text,
                    AnyOf(kSilent, kClosedInHandshake,
                          StartsWith("Cannot negotiate secure connection with mail server "
                                     "mx.example.test, InitializeSecurityContext error 0x8009")));
        EXPECT_EQ(outcome.result, outcome.text.ends_with("0x80090308") ? -2 : -1);
        EXPECT_TRUE(outcome.result == -1 || byte < headerSize);
    });
}

TEST(Handshake, DrippingHasALimitAsAWhole) {
    Link link([](LoopbackSocket& socket) {
        const auto server = MakeTlsServer();
        ShakeHands(socket, *server, [&](const std::string& answer) {
            for (const char byte : answer) {
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
                if (!socket.Send({&byte, 1})) {
                    return false;
                }
            }
            return true;
        });
    });
    EXPECT_EQ(link.channel().Handshake(Milliseconds{200}), -1);
    EXPECT_EQ(link.text(), kSilent);
}

struct RecordCase {
    const char* what;
    TlsVersion version;
    std::function<std::string(TlsServer&)> say;
    bool closes;
    std::string text;  // what the client gets
    std::string end;   // and what it is told then; nothing: all is well
};

std::vector<RecordCase> RecordCases() {
    const std::string most(16384, 'm');
    const auto encrypt = [](const std::string& text) {
        return [text](TlsServer& server) { return server.Encrypt(text); };
    };
    const auto one_by_one = [](TlsServer& server) {
        std::string bytes;
        for (int i = 0; i < 300; ++i) {
            bytes += server.Encrypt("o");
        }
        return bytes;
    };
    // Behind a reply.
    const auto then = [](const std::function<std::string(TlsServer&)>& say) {
        return [say](TlsServer& server) {
            const std::string reply = server.Encrypt("250 OK");
            return reply + say(server);
        };
    };
    constexpr auto v12 = TlsVersion::Tls12;
    return {
        {"one byte a record", v12, one_by_one, false, std::string(300, 'o'), ""},
        {"the same, with empty ones between", TlsVersion::Tls10, one_by_one, false,
         std::string(300, 'o'), ""},
        {"the longest", v12, encrypt(most), false, most, ""},
        {"several of the longest", TlsVersion::Tls11, encrypt(most + most + "x"), false,
         most + most + "x", ""},
        {"closed", v12, encrypt("250 OK"), true, "250 OK", kClosed},
        {"closed within one", v12,
         [](TlsServer& server) { return server.Encrypt("250 OK").substr(0, 20); }, true, "",
         kClosed},
        {"farewell", v12, then([](TlsServer& server) { return server.Farewell(); }), false,
         "250 OK", kClosed},
        {"another handshake", v12, then([](TlsServer& server) { return server.HelloRequest(); }),
         false, "250 OK", "Cannot decrypt message from mail server mx.example.test, error 90321"},
        {"clear text", v12, then([](TlsServer&) { return "250 OK\r\n"; }), false, "250 OK",
         "Cannot decrypt message from mail server mx.example.test, error 80090308"},
        {"an invented record", v12, then([](TlsServer&) {
             return "\x17\x03\x03" + std::string(1, '\0') + "\x20" + std::string(32, 'i');
         }),
         false, "250 OK",
         "Cannot decrypt message from mail server mx.example.test, error 8009030f"},
    };
}

TEST(Records, ArriveWhateverTheirSegments) {
    for (const RecordCase& test : RecordCases()) {
        for (const std::size_t piece : {std::size_t{1} << 20, std::size_t{1000}, std::size_t{1}}) {
            SCOPED_TRACE(test.what + (" in pieces of " + std::to_string(piece)));
            Link link([&](LoopbackSocket& socket) {
                const auto server = MakeTlsServer(test.version);
                ShakeHands(socket, *server);
                const std::string bytes = test.say(*server);
                for (std::size_t i = 0; i < bytes.size(); i += piece) {
                    socket.Send(std::string_view(bytes).substr(i, piece));
                }
                if (test.closes) {
                    socket.Close();
                }
            });
            ASSERT_EQ(link.channel().Handshake(kLong), 0) << link.text();
            const bool fails = !test.end.empty();
            EXPECT_EQ(link.Receive(fails ? std::string::npos : test.text.size()), test.text);
            EXPECT_EQ(link.text(), test.end);
        }
    }
}

TEST(Records, MayComeWithTheEndOfTheHandshake) {
    const std::string greeting = "220 mx.example.test\r\n";
    Link link([&](LoopbackSocket& socket) {
        const auto server = MakeTlsServer();
        ShakeHands(socket, *server, greeting);
    });
    ASSERT_EQ(link.channel().Handshake(kLong), 0) << link.text();
    EXPECT_EQ(link.Receive(greeting.size()), greeting);
    link.channel().Release();
    EXPECT_FALSE(link.channel().active() || link.channel().pending());
}

TEST(Records, LongTextsAreCut) {
    const std::string sent(20000, 's');
    std::string wire, received;
    {
        Link link([&](LoopbackSocket& socket) {
            const auto server = MakeTlsServer();
            ShakeHands(socket, *server);
            std::string bytes;
            while (socket.Receive(bytes)) {
                wire += bytes;
                received += server->Decrypt(bytes);
                bytes.clear();
            }
        });
        ASSERT_EQ(link.channel().Handshake(kLong), 0) << link.text();
        EXPECT_EQ(link.channel().Send(sent, "DATA", kLong), 20000);
        EXPECT_EQ(link.channel().Send("", "DATA", kLong), 0);
    }
    EXPECT_EQ(received, sent);
    std::vector<std::size_t> sizes;  // of the records
    for (std::size_t i = 0; i + 5 <= wire.size(); i += sizes.back()) {
        sizes.push_back(5 + static_cast<unsigned char>(wire[i + 3]) * 256u +
                        static_cast<unsigned char>(wire[i + 4]));
    }
    ASSERT_EQ(sizes.size(), 2u);
    EXPECT_GE(sizes[0], 16384u);
}

TEST(Records, ThatNobodyTakesFail) {
    std::promise<void> done;
    Link link([&](LoopbackSocket& socket) {
        const auto server = MakeTlsServer();
        ShakeHands(socket, *server);
        done.get_future().wait();
    });
    ASSERT_EQ(link.channel().Handshake(kLong), 0) << link.text();
    EXPECT_EQ(link.channel().Send(std::string(8'000'000, 'x'), "MAIL\r\n", Milliseconds{100}), -1);
    EXPECT_EQ(link.text(),
              "Mail server mx.example.test did not accept data within specified timeout during the "
              "following command: MAIL");
    done.set_value();
}

}  // namespace
}  // namespace quorvane::testing

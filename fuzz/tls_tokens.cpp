// TLS: a server's bytes are the input's, or those of a real server with the input's changes. The
// handshake comes to an end with words, and no text is received that the server hasn't said.
#include <array>
#include <functional>
#include <thread>

#include "fuzz/input.h"
#include "smtp/secure_channel.h"
#include "smtp/tls_record.h"
#include "tests/servers/loopback.h"
#include "tests/servers/tls_server.h"

namespace {

using namespace quorvane;
using namespace quorvane::testing;
using fuzzing::Input;
using fuzzing::Require;

// Milliseconds that the server waits for words: a change can make the client wait for more, too.
constexpr int kPatience = 20;
constexpr int kUnchangedPatience = 10'000;
constexpr Milliseconds kLimit{20'000};  // of the client, which the server's end comes before
constexpr std::size_t kReceived = 100;  // bytes in one go

// Changes to a stream of bytes: each has a place, a kind and a byte.
class Editor {
public:
    explicit Editor(std::string_view changes) : m_changes(changes) {}

    // The next piece of the stream as it is to be sent; false when it is to be cut off behind that.
    bool Edit(std::string& piece) {
        const std::size_t begin = std::exchange(m_end, m_end + piece.size());
        for (std::string_view left = m_changes; left.size() >= 4; left.remove_prefix(4)) {
            const std::size_t place = Byte(left[0]) * 256 + Byte(left[1]);
            if (place < begin || place - begin >= piece.size()) continue;
            const std::size_t at = place - begin;
            switch (Byte(left[2]) % 4) {
                case 0:
                    piece[at] = static_cast<char>(piece[at] ^ left[3]);
                    break;
                case 1:
                    piece.insert(at, 1 + Byte(left[3]) % 16, left[3]);
                    break;
                case 2:
                    piece.erase(at, 1 + Byte(left[3]));
                    break;
                default:
                    piece.resize(at);
                    return false;
            }
        }
        return true;
    }

private:
    static std::size_t Byte(char c) { return static_cast<unsigned char>(c); }

    std::string_view m_changes;
    std::size_t m_end = 0;
};

// A real server that shakes hands, says the text and a farewell, all of it edited.
void Serve(LoopbackSocket& socket, std::string_view text, std::string_view changes) {
    Editor editor(changes);
    const auto server = MakeTlsServer();
    while (socket.WaitReadable(changes.empty() ? kUnchangedPatience : kPatience)) {
        std::string heard;
        if (!socket.Receive(heard)) return;
        std::string answer = server->Handshake(heard);
        const bool established = server->established();
        if (established) {
            answer += server->Encrypt(text);
            answer += server->Farewell();
        }
        if (!editor.Edit(answer) || !socket.Send(answer) || established) return;
    }
}

struct Outcome {
    int handshake = 0;
    std::string received;
    WideString words;
};

// What the channel makes of the server until there is no more to receive.
Outcome Receive(const std::function<void(LoopbackSocket&)>& serve) {
    static const LoopbackListener listener;
    static const WideString name = OLESTR("mx.example.test");
    Outcome outcome;
    in_addr address{};
    ResolveServer(OLESTR("127.0.0.1"), address);
    SocketConnection connection;
    Require(connection.Open() == SocketStatus::Done &&
                connection.Connect(address, listener.port()) == SocketStatus::Done,
            "the server can be connected to");
    std::jthread thread([&serve] {
        LoopbackSocket socket = listener.Accept();
        serve(socket);
        shutdown(socket.get(), SD_SEND);
        for (std::string rest; socket.Receive(rest); rest.clear()) {
        }
    });
    SecureChannel channel(connection, name, outcome.words);
    outcome.handshake = channel.Handshake(kLimit);
    std::array<char, kReceived> buffer;
    for (int count = outcome.handshake; count >= 0;) {
        const bool readable =
            connection.WaitReadable(channel.pending() ? Milliseconds{0} : kLimit) ==
            SocketStatus::Done;
        Require(readable || channel.pending(), "the server's end is seen");
        count = channel.Receive(buffer, readable);
        outcome.received.append(buffer.data(), static_cast<std::size_t>(std::max(count, 0)));
    }
    connection.Close();
    return outcome;
}

void CheckFrames(std::span<const char> bytes) {
    for (std::size_t size = 0; size < std::min<std::size_t>(bytes.size(), 8); ++size) {
        const std::span<const char> first = bytes.first(size);
        Require(MayBeginTlsRecord(first) || !MayBeginTlsRecord(bytes), "more doesn't make it TLS");
        Require(MayBeginTlsHandshake(first) || !MayBeginTlsHandshake(bytes), "nor a handshake");
        Require(!HoldsTlsRecord(first) || HoldsTlsRecord(bytes), "what is whole stays whole");
    }
    Require(!MayBeginTlsHandshake(bytes) || MayBeginTlsRecord(bytes), "a handshake is in records");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const bool isReal = input.TakeByte() % 2 != 0;
    const std::string_view text = isReal ? input.TakeText() : "";
    const std::string_view bytes = input.rest();
    CheckFrames(bytes);
    const Outcome outcome = Receive([&](LoopbackSocket& socket) {
        isReal ? Serve(socket, text, bytes) : void(socket.Send(bytes));
    });
    Require(outcome.handshake == 0 || outcome.handshake == -1 || outcome.handshake == -2,
            "a handshake is done, failed or none");
    Require(outcome.handshake != 0 || isReal, "no bytes of an input are a whole handshake");
    Require(!outcome.words.empty() && outcome.words.size() < 1000, "there are words for the end");
    Require(text.starts_with(outcome.received), "the server has said what is received");
    Require(!isReal || !bytes.empty() || outcome.received == text,
            "and that is all without changes");
    return 0;
}

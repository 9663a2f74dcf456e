#include "fuzz/peer.h"

#include "fuzz/input.h"

namespace quorvane::fuzzing {
namespace {

using testing::LoopbackListener;
using testing::LoopbackSocket;

constexpr int kPatience = 4;  // milliseconds
constexpr std::string_view kMessageEnd = "\r\n.\r\n";

const LoopbackListener& Listener() {
    static const LoopbackListener listener;
    return listener;
}

// A reply of one line that is said in one piece.
bool IsPlain(std::string_view turn) {
    return turn.size() >= 5 && turn.size() <= 512 && turn[3] != '-' && turn.ends_with("\r\n") &&
           turn.find('\n') == turn.size() - 1 && turn.find(Peer::kCut) == std::string_view::npos;
}

}  // namespace

Peer::Peer(std::string_view script) : m_script(script) {
    Listener();
    m_thread = std::thread([this] { Run(); });
}

USHORT Peer::port() const {
    return Listener().port();
}

void Peer::Finish() {
    if (!m_thread.joinable()) return;
    m_finishing = true;
    m_thread.join();
}

void Peer::Run() {
    while (!m_finishing || Listener().WaitForConnection(0)) {
        if (!Listener().WaitForConnection(1)) continue;
        LoopbackSocket socket = Listener().Accept();
        Converse(socket);
        shutdown(socket.get(), SD_SEND);
        while (socket.Receive(m_received)) {
        }
    }
}

void Peer::Converse(LoopbackSocket& socket) {
    while (!m_script.empty()) {
        Input input(reinterpret_cast<const std::uint8_t*>(m_script.data()), m_script.size());
        const std::string_view turn = input.TakeText();
        m_script = input.rest();
        m_plain = m_plain && IsPlain(turn);
        m_accepted = m_accepted || (m_plain && m_hasMessage && turn.starts_with("250"));
        if (!Say(socket, turn) || !AwaitWords(socket, turn.starts_with("354"))) return;
    }
}

bool Peer::Say(LoopbackSocket& socket, std::string_view turn) {
    while (!turn.empty()) {
        const std::string_view piece = turn.substr(0, turn.find(kCut));
        turn.remove_prefix(std::min(piece.size() + 1, turn.size()));
        m_said += piece;
        if (!socket.Send(piece)) return false;
    }
    return true;
}

bool Peer::AwaitWords(LoopbackSocket& socket, bool mayBeMessage) {
    const bool isMessage = mayBeMessage && m_received.ends_with("DATA\r\n");
    const std::string_view end = isMessage ? kMessageEnd : kMessageEnd.substr(0, 2);
    std::string words;
    while (!words.ends_with(end)) {
        if (!socket.WaitReadable(kPatience)) {
            m_plain = false;
            break;
        }
        if (!socket.Receive(words)) {
            m_received += words;
            return false;
        }
    }
    m_received += words;
    m_hasMessage = isMessage && words.ends_with(kMessageEnd);
    return true;
}

}  // namespace quorvane::fuzzing

#include "tests/servers/scripted_peer.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "tests/servers/tls_server.h"

namespace quorvane::testing {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kPatience = 10000;  // milliseconds for whatever the client does next
constexpr int kGlance = 5;        // milliseconds between looks at the flags

// The bytes in the pieces in which they are sent.
std::vector<std::string_view> Cut(std::string_view bytes, Delivery delivery) {
    std::vector<std::string_view> pieces;
    while (!bytes.empty()) {
        std::size_t size = bytes.size();
        if (delivery == Delivery::ByByte) {
            size = 1;
        } else if (delivery == Delivery::ByLine) {
            size = std::min(bytes.find('\n'), bytes.size() - 1) + 1;
        }
        pieces.push_back(bytes.substr(0, size));
        bytes.remove_prefix(size);
    }
    return pieces;
}

template <typename Condition>
bool WaitFor(const Condition& condition) {
    const auto deadline = Clock::now() + std::chrono::milliseconds(kPatience);
    while (!condition()) {
        if (Clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

std::string Difference(std::string_view expected, std::string_view actual) {
    const auto [left, right] =
        std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
    const auto offset = static_cast<std::size_t>(left - expected.begin());
    return "at byte " + std::to_string(offset) + " of " + std::to_string(expected.size()) +
           ": expected '" + Printable(expected.substr(offset)) + "' but the client said '" +
           Printable(actual.substr(offset)) + "'";
}

}  // namespace

// One connection from accept to close.
class ScriptedPeer::Conversation {
public:
    Conversation(ScriptedPeer& peer, LoopbackSocket socket)
        : peer_(peer), socket_(std::move(socket)) {}

    void Play(const Script& script) {
        for (std::size_t i = 0; i < script.size() && socket_.IsOpen(); ++i) {
            leaveUnread_ = i + 1 < script.size() && script[i + 1].kind == Step::Kind::Reset;
            if (!Play(script[i])) {
                return;
            }
        }
        if (socket_.IsOpen()) {
            ExpectEnd();
        }
    }

private:
    bool Play(const Step& step) {
        switch (step.kind) {
            case Step::Kind::Say:
                Say(Cut(step.text, peer_.delivery_));
                return true;
            case Step::Kind::SayPart:
                Say({step.text});
                return true;
            case Step::Kind::Expect:
                return ExpectLine(step.text);
            case Step::Kind::ExpectMessage:
                return ExpectMessage();
            case Step::Kind::ExpectBeginning:
                return ExpectBeginning(static_cast<std::size_t>(step.number));
            case Step::Kind::ExpectHandshake:
                return ExpectHandshake();
            case Step::Kind::Secure:
                return Secure();
            case Step::Kind::Wait:
                std::this_thread::sleep_for(std::chrono::milliseconds(step.number));
                return true;
            case Step::Kind::Close:
            case Step::Kind::Reset:
                socket_.Close();
                return true;
            case Step::Kind::StopReading:
                WaitForFinish();
                socket_.Close();
                return true;
        }
        return false;
    }

    // A client that doesn't hear all of it isn't wrong; what it does next tells.
    void Say(const std::vector<std::string_view>& pieces) {
        for (const std::string_view piece : pieces) {
            if (!socket_.Send(tls_ ? tls_->Encrypt(piece) : piece)) {
                return;
            }
        }
    }

    bool ExpectLine(std::string_view expected) {
        const std::string end = "\r\n";
        std::size_t size = 0;
        if (!ReceiveThrough(end, size)) {
            return Deviate("should have said '" + Printable(expected) + "' but said '" +
                           Printable(received_) + "' and " + ending_);
        }
        const std::string line = received_.substr(0, size - end.size());
        received_.erase(0, size);
        return line == expected || Deviate("should have said '" + Printable(expected) +
                                           "' but said '" + Printable(line) + "'");
    }

    bool ExpectMessage() {
        std::size_t size = 0;
        if (!ReceiveThrough("\r\n.\r\n", size)) {
            return Deviate("broke off in the message after " + std::to_string(received_.size()) +
                           " bytes and " + ending_);
        }
        const std::string message = received_.substr(0, size);
        received_.erase(0, size);
        const std::lock_guard lock(peer_.mutex_);
        return message == peer_.message_ ||
               Deviate("sent a wrong message, " + Difference(peer_.message_, message));
    }

    bool ExpectBeginning(std::size_t size) {
        const auto deadline = Deadline();
        while (received_.size() < size && WaitForData(deadline) && Receive()) {
        }
        const std::string beginning = received_.substr(0, size);
        received_.erase(0, size);
        const std::lock_guard lock(peer_.mutex_);
        const std::string expected = peer_.message_.substr(0, size);
        return beginning == expected ||
               Deviate("began a wrong message, " + Difference(expected, beginning));
    }

    bool ExpectHandshake() {
        constexpr std::size_t headerSize = 5;
        const auto size = [](std::string_view record) {
            return record.size() < headerSize
                       ? headerSize
                       : headerSize + static_cast<unsigned char>(record[3]) * 256u +
                             static_cast<unsigned char>(record[4]);
        };
        const auto deadline = Deadline();
        std::string& bytes = leaveUnread_ ? peeked_ : received_;
        while (bytes.size() < size(bytes) && WaitForData(deadline)) {
            if (leaveUnread_) {
                bytes = socket_.Peek();
            } else if (!socket_.Receive(bytes)) {
                break;
            }
        }
        const std::string record = bytes.substr(0, size(bytes));
        bytes.erase(0, record.size());
        return (record.size() > headerSize && record[0] == '\x16') ||
               Deviate("should have begun a TLS handshake but said '" + Printable(record) + "'");
    }

    bool Secure() {
        tls_ = MakeTlsServer();
        const auto deadline = Deadline();
        std::string bytes;
        while (!tls_->established()) {
            if (!WaitForData(deadline) || !socket_.Receive(bytes)) {
                return Deviate("broke off the TLS handshake");
            }
            socket_.Send(tls_->Handshake(bytes));
            bytes.clear();
        }
        return true;
    }

    // Adds what has arrived to what has been received.
    bool Receive() {
        if (!tls_) {
            return socket_.Receive(received_);
        }
        std::string bytes;
        const bool open = socket_.Receive(bytes);
        received_ += tls_->Decrypt(bytes);
        return open;
    }

    void ExpectEnd() {
        std::size_t size = 0;
        ReceiveThrough("\r\n", size);
        if (!received_.empty()) {
            Deviate("said '" + Printable(received_) + "' where nothing more was due");
        } else if (!closed_) {
            Deviate("kept the connection open");
        }
    }

    // Receives until the bytes hold `end`; `size` is the length up to and with it.
    bool ReceiveThrough(std::string_view end, std::size_t& size) {
        const auto deadline = Deadline();
        for (;;) {
            const std::string& bytes = leaveUnread_ ? peeked_ : received_;
            if (const std::size_t place = bytes.find(end); place != std::string::npos) {
                size = place + end.size();
                if (leaveUnread_) {
                    received_ = peeked_.substr(0, size);
                }
                return true;
            }
            if (!WaitForData(deadline)) {
                ending_ = "fell silent";
                return false;
            }
            if (leaveUnread_) {
                peeked_ = socket_.Peek();
                closed_ = peeked_.empty();
            } else {
                closed_ = !Receive();
            }
            if (closed_) {
                ending_ = "closed the connection";
                return false;
            }
        }
    }

    static Clock::time_point Deadline() {
        return Clock::now() + std::chrono::milliseconds(kPatience);
    }

    bool WaitForData(Clock::time_point deadline) {
        bool readable = false;
        peer_.listening_ = true;
        while (!readable && Clock::now() < deadline && !peer_.abandoned_) {
            readable = socket_.WaitReadable(kGlance);
        }
        peer_.listening_ = false;
        return readable;
    }

    void WaitForFinish() {
        while (!peer_.finishing_ && !peer_.abandoned_) {
            std::this_thread::sleep_for(std::chrono::milliseconds(kGlance));
        }
    }

    bool Deviate(const std::string& what) {
        peer_.deviations_.push_back("connection " + std::to_string(peer_.connections_) +
                                    ": the client " + what);
        return false;
    }

    ScriptedPeer& peer_;
    LoopbackSocket socket_;
    std::unique_ptr<TlsServer> tls_;
    std::string received_;
    std::string peeked_;
    bool leaveUnread_ = false;
    bool closed_ = false;
    std::string ending_;
};

ScriptedPeer::ScriptedPeer(std::vector<Script> scripts, Delivery delivery)
    : scripts_(std::move(scripts)), delivery_(delivery), listener_(!scripts_.empty()) {
    if (!scripts_.empty()) {
        thread_ = std::thread([this] { Run(); });
    }
}

ScriptedPeer::~ScriptedPeer() {
    abandoned_ = true;
    Finish();
}

void ScriptedPeer::ExpectMessage(std::string bytes) {
    const std::lock_guard lock(mutex_);
    message_ = std::move(bytes);
}

bool ScriptedPeer::WaitUntilListening() const {
    return WaitFor([this] { return listening_.load(); });
}

bool ScriptedPeer::WaitForEnd() const {
    return WaitFor([this] { return ended_.load(); });
}

void ScriptedPeer::Finish() {
    finishing_ = true;
    if (thread_.joinable()) {
        thread_.join();
    }
}

void ScriptedPeer::Run() {
    for (const Script& script : scripts_) {
        if (!WaitForConnection(kPatience)) {
            return;
        }
        Conversation(*this, listener_.Accept()).Play(script);
        ended_ = true;
    }
    while (WaitForConnection(kPatience)) {
        listener_.Accept();
    }
}

// Counts the connection. False when there is none in time, or when the client has made its last.
bool ScriptedPeer::WaitForConnection(int milliseconds) {
    for (int waited = 0; waited < milliseconds && !abandoned_; waited += kGlance) {
        if (listener_.WaitForConnection(kGlance)) {
            ++connections_;
            return true;
        }
        if (finishing_) {
            return false;
        }
    }
    return false;
}

}  // namespace quorvane::testing

#include "tests/faults/faulty_peer.h"

#include <algorithm>
#include <utility>

#include "tests/faults/reset.h"

namespace quorvane::faults {
namespace {

using testing::LoopbackSocket;

constexpr int kGlance = 1;  // milliseconds
// A client that does nothing for so long hangs; it will be told of.
constexpr int kPatience = 60'000;
constexpr char kFlippedBit = '\x80';

// The bytes of one side on their way to the other.
class Way {
public:
    Way(Side side, const Fault& fault) : fault_(fault.side == side ? fault : Fault{}) {}

    // What comes through of the bytes.
    std::string Pass(std::string bytes) {
        const std::size_t begin = std::exchange(count_, count_ + bytes.size());
        if (fault_.kind == Kind::None || count_ <= fault_.at) return bytes;
        const std::size_t index = fault_.at > begin ? fault_.at - begin : 0;
        if (fault_.kind == Kind::Garble) {
            if (fault_.at >= begin) {
                bytes[index] ^= kFlippedBit;
                spoilt_ = count_;
            }
            return bytes;
        }
        broken_ = true;
        return bytes.substr(0, index);
    }

    std::size_t count() const { return count_; }
    // The connection is to end.
    bool ends() const { return broken_ && fault_.kind != Kind::Stall; }
    // The bytes that were given last did not come through as they were.
    bool spoilt() const { return broken_ || (spoilt_ != 0 && spoilt_ == count_); }

private:
    const Fault fault_;
    std::size_t count_ = 0;
    std::size_t spoilt_ = 0;  // the count behind the bytes with the garbled one
    bool broken_ = false;
};

// In order: what the client still says is read, or the system would make it a reset.
void Close(const LoopbackSocket& socket) {
    shutdown(socket.get(), SD_SEND);
    std::string rest;
    while (socket.WaitReadable(kPatience) && socket.Receive(rest)) rest.clear();
}

}  // namespace

FaultyPeer::FaultyPeer(const Dialogue& dialogue, const Fault& fault)
    : dialogue_(dialogue), fault_(fault), thread_([this] { Run(); }) {}

FaultyPeer::~FaultyPeer() {
    Finish();
}

int FaultyPeer::port() const {
    return ntohs(listener_.port());
}

FaultyPeer::Result FaultyPeer::Finish() {
    ends_ = true;
    if (thread_.joinable()) thread_.join();
    return result_;
}

void FaultyPeer::Run() {
    while (!ends_) {
        if (!listener_.WaitForConnection(kGlance)) continue;
        Serve(listener_.Accept(), result_.connections++ == 0 ? fault_ : Fault{});
    }
}

void FaultyPeer::Serve(const LoopbackSocket& socket, const Fault& fault) {
    MailServer server(dialogue_);
    Way fromClient(Side::Client, fault);
    Way toClient(Side::Server, fault);
    const int acceptedBefore = result_.accepted;
    std::string answer = toClient.Pass(server.Greeting());
    std::string bytes;
    for (;;) {
        if (!socket.Send(answer)) break;
        if (fromClient.ends() || toClient.ends()) {
            if (fault.kind == Kind::Reset) {
                ResetWhenClosed(static_cast<int>(socket.get()));
            } else {
                Close(socket);
            }
            break;
        }
        bytes.clear();
        if (!socket.WaitReadable(kPatience) || !socket.Receive(bytes)) break;
        answer = toClient.Pass(server.Take(fromClient.Pass(bytes)));
        if (acceptedBefore + server.accepted() > result_.accepted) {
            result_.accepted = acceptedBefore + server.accepted();
            result_.answered = !toClient.spoilt();
            result_.answerEnd = toClient.count();
            result_.message = server.message();
        }
    }
    if (result_.connections == 1) {
        result_.clientBytes = fromClient.count();
        result_.serverBytes = toClient.count();
    }
}

}  // namespace quorvane::faults

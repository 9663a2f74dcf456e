// The whole client: whatever a server says, and in whatever pieces, the outcome is one that it has
// said or that the client has words for, and nothing is left open.
#include <unistd.h>

#include "fuzz/input.h"
#include "fuzz/peer.h"
#include "smtp/session.h"

namespace {

using namespace quorvane;
using fuzzing::Require;

constexpr std::size_t kMaxWords = 2 * kReplyCapacity;  // of an error text

COutgoingMessage Message() {
    COutgoingMessage message;
    message.sender.address = OLESTR("a@b.example");
    message.to.push_back({{}, OLESTR("c@d.example")});
    message.subject = OLESTR("Test");
    message.bodyParts.emplace_back().text = OLESTR("Hello");
    return message;
}

struct Outcome {
    int code;
    WideString text;
};

Outcome Send(USHORT port, unsigned choices) {
    CSmtp session;
    session.m_port = port;
    session.m_replyTimeout = 20;  // never needed, since the server always comes to an end
    session.m_connectAttempts = 1;
    session.m_heloHost = OLESTR("client.example");
    session.m_spa = (choices & 4) != 0;
    if (choices & 8) {
        session.m_user = OLESTR("fred");
        session.m_password = OLESTR("secret");
    }
    COutgoingMessage message = Message();
    int code = session.Connect(OLESTR("127.0.0.1"), static_cast<TlsMode>(choices % 4 % 3));
    if (code == 0) code = session.SendMail(message);
    const WideString text = session.GetErrorText();
    session.Close();
    return {code, text};
}

// True when the server has said the codes of a message that it accepts, in this order.
bool HasAccepted(std::string_view said) {
    for (const std::string_view code : {"220", "250", "250", "25", "354", "250"}) {
        const std::size_t at = said.find(code);
        if (at == std::string_view::npos) return false;
        said.remove_prefix(at + code.size());
    }
    return true;
}

// The lowest descriptor that is free.
int FreeDescriptor() {
    const int descriptor = dup(STDERR_FILENO);
    close(descriptor);
    return descriptor;
}

void Judge(const Outcome& outcome, const fuzzing::Peer& peer) {
    Require(outcome.code == 0 || outcome.code == -1 || (outcome.code >= 1 && outcome.code <= 999),
            "an outcome is 0, -1 or a reply's code");
    Require(outcome.code != 0 || HasAccepted(peer.said()), "success has been said by the server");
    Require(!peer.accepted() || outcome.code == 0, "what the server has accepted has succeeded");
    Require(outcome.code == 0 || !outcome.text.empty(), "there are words for a failure");
    Require(outcome.text.size() <= kMaxWords, "they have an end");
    Require(outcome.text.find(WCHAR(0)) == WideString::npos, "and no NUL");
    Require(outcome.code != -1 || peer.received().find("QUIT\r\n") == std::string::npos,
            "a broken connection ends without a word");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::Input input(data, size);
    const unsigned choices = input.TakeByte();
    fuzzing::Peer peer(input.rest());
    const int descriptor = FreeDescriptor();
    const Outcome outcome = Send(peer.port(), choices);
    peer.Finish();
    Require(FreeDescriptor() == descriptor, "nothing is left open");
    Judge(outcome, peer);
    return 0;
}

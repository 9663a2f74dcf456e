#include "smtp/session.h"

#include <array>
#include <new>
#include <string>
#include <utility>

#include "mime/message_composer.h"
#include "mime/unique_stamp.h"
#include "smtp/authentication.h"
#include "smtp/host_name.h"
#include "smtp/reply.h"

namespace quorvane {
namespace {

constexpr Milliseconds kAttemptPause{2000};
constexpr Milliseconds kPeekTime{300};

// Times that a server may ask for authentication before it takes a sender. One that asks again
// after each success would hold the session for ever.
constexpr int kMaxAuthenticationRequests = 3;

constexpr std::string_view kMessageEnd = "\r\n.\r\n";

}  // namespace

CSmtp::CSmtp(SocketConnection::InterruptFunction isInterrupted)
    : m_connection(std::move(isInterrupted)),
      m_secureChannel(m_connection, m_server, m_replyText),
      m_channel(m_connection, m_secureChannel, m_server, m_replyText,
                [this](ULONG sent, ULONG total) { return OnProgress(sent, total); }) {
    StartSockets();
    m_port = DefaultSmtpPort();
    m_heloHost = LocalHostName();
    SeedThreadGenerator(GetTickCount());
}

CSmtp::~CSmtp() {
    try {
        Close();
    } catch (...) {
        // Out of memory for the QUIT; the connection closes itself.
    }
}

int CSmtp::OnAuthFailed(int, const WideString&) {
    return 0;
}

int CSmtp::OnError(int, const WideString&) {
    return 0;
}

int CSmtp::OnProgress(ULONG, ULONG) {
    return 1;
}

int CSmtp::Connect(const WideString& server, TlsMode mode) {
    if (m_connection.IsInterrupted()) {
        return -2;
    }
    m_replyText.clear();
    m_errorText.clear();
    m_server = server;
    int result = Establish(mode);
    if (result != 0) {
        result = Reported(result);
        Close();
    }
    return result;
}

int CSmtp::Establish(TlsMode mode) {
    in_addr address{};
    if (Resolve(address) != 0 || ConnectWithAttempts(address) != 0) {
        return -1;
    }
    if (mode == TlsImplicit && SecureFromTheStart(address, mode) != 0) {
        return -1;
    }
    const int greeting = SendCommand(std::nullopt);
    return greeting == 220 ? Hello(mode) : greeting;
}

int CSmtp::Resolve(in_addr& address) {
    if (ToAnsi(m_server).size() > kMaxServerNameLength) {
        return Fail(TooLongText(OLESTR("Mail server name"), m_server, kMaxServerNameLength));
    }
    return ResolveServer(m_server, address) ? 0 : Fail(UnresolvedServerText(m_server));
}

int CSmtp::ConnectWithAttempts(const in_addr& address) {
    for (LONG attempt = 1;; ++attempt) {
        Close();
        if (attempt > 1 && m_connection.Pause(kAttemptPause) == SocketStatus::Failed) {
            return -1;
        }
        if (CreateAndConnect(address) == 0) {
            return 0;
        }
        if (attempt >= m_connectAttempts) {
            return -1;
        }
    }
}

int CSmtp::CreateAndConnect(const in_addr& address) {
    if (m_connection.Open() != SocketStatus::Done) {
        return Fail(SocketCreationText(m_connection.error()));
    }
    if (m_connection.Connect(address, m_port) != SocketStatus::Done) {
        return Fail(SocketErrorText(m_server, m_connection.error()));
    }
    return 0;
}

// A server that greets at once speaks in clear; one that waits expects the handshake; and one that
// turns the handshake down is connected to again to be asked for STARTTLS.
int CSmtp::SecureFromTheStart(const in_addr& address, TlsMode& mode) {
    if (PeekGreeting() == 220) {
        mode = TlsStartTls;
        return 0;
    }
    const int result = Handshake();
    if (result != -2) {
        return result;
    }
    Close();
    mode = TlsStartTls;
    return ConnectWithAttempts(address);
}

int CSmtp::PeekGreeting() {
    std::array<char, kReplyCapacity> bytes;
    std::size_t count = 0;
    SocketStatus status = m_connection.WaitReadable(kPeekTime);
    if (status == SocketStatus::Done) {
        status = m_connection.Peek(bytes, count);
    }
    switch (status) {
        case SocketStatus::Done:
            return ReplyCode({bytes.data(), count});
        case SocketStatus::TimedOut:
            return 0;
        case SocketStatus::Closed:
            return Fail(ClosedConnectionText(m_server, std::nullopt));
        default:
            return Fail(SocketErrorText(m_server, m_connection.error()));
    }
}

int CSmtp::Hello(TlsMode mode) {
    if (const int reply = SayHello()) {
        return reply;
    }
    m_greeted = true;
    if (mode != TlsNone && !m_secureChannel.active()) {
        const WideString capabilities = m_replyText;
        const int result = StartTls(capabilities);
        if (result == -1) {
            return -1;
        }
        if (result != 0) {
            // Not offered or refused: carry on in clear, as the server said it can be done.
            return m_esmtp ? Authenticate(capabilities) : 0;
        }
        if (const int reply = SayHello()) {
            return reply;
        }
    }
    return m_esmtp ? Authenticate(m_replyText) : 0;
}

// EHLO, and HELO for a server that doesn't know it: the same line with two letters exchanged.
int CSmtp::SayHello() {
    std::string line;
    const CommandArgument host{OLESTR("Sender host name"), m_heloHost, kMaxHostNameLength};
    if (!WriteCommand("EHLO %s\r\n", host, line, m_replyText)) {
        return -1;
    }
    int reply = SendCommand(line);
    m_esmtp = reply == 250;
    if (!m_esmtp && reply != -1) {
        std::swap(line[0], line[1]);
        reply = SendCommand(line);
    }
    return reply == 250 ? 0 : reply;
}

int CSmtp::StartTls(const WideString& capabilities) {
    if (!ContainsIgnoreCase(capabilities, OLESTR("STARTTLS"))) {
        return 1;
    }
    const int reply = SendCommand(WriteCommand("STARTTLS\r\n"));
    if (reply != 220) {
        return reply;
    }
    // Whatever the server has said behind its reply, perhaps in another's name, it has said in
    // clear (RFC 3207 section 6): the beginning of a handshake that is none.
    if (HoldsMoreThanReply(m_replyText)) {
        return Fail(NegotiationText(m_server, SEC_E_INVALID_TOKEN));
    }
    return Handshake() == 0 ? 0 : -1;
}

int CSmtp::Handshake() {
    return m_secureChannel.Handshake(std::chrono::seconds(m_replyTimeout));
}

int CSmtp::SendMail(COutgoingMessage& message) {
    if (m_connection.IsInterrupted()) {
        return -2;
    }
    if (message.sender.address.empty() ||
        (message.to.empty() && message.cc.empty() && message.bcc.empty())) {
        return -1;
    }
    if (const int result = MailFrom(message.sender)) {
        return result;
    }
    for (const auto* const list : {&message.to, &message.cc, &message.bcc}) {
        if (const int result = RcptTo(*list)) {
            return result;
        }
    }
    return Data(message);
}

int CSmtp::SendMailTo(COutgoingMessage& message, std::span<const CAddressEntry> recipients) {
    if (m_connection.IsInterrupted()) {
        return -2;
    }
    if (message.sender.address.empty() || recipients.empty()) {
        return -1;
    }
    if (const int result = MailFrom(message.sender)) {
        return result;
    }
    if (const int result = RcptTo(recipients)) {
        return result;
    }
    return Data(message);
}

int CSmtp::MailFrom(const CAddressEntry& sender) {
    constexpr std::string_view format = "MAIL FROM: <%s>\r\n";
    const CommandArgument address{OLESTR("Sender address"), sender.address, kMaxAddressLength};
    int reply = SendCommand(format, address);
    for (int requests = 0; reply == 530 && !m_user.empty() && requests < kMaxAuthenticationRequests;
         ++requests) {
        if (const int result = Authenticate(OLESTR("AUTH LOGIN"))) {
            return Reported(result);
        }
        reply = SendCommand(format, address);
    }
    return reply == 250 ? 0 : Reported(reply);
}

int CSmtp::RcptTo(std::span<const CAddressEntry> recipients) {
    for (const CAddressEntry& recipient : recipients) {
        if (const int result = RcptTo(recipient)) {
            return result;
        }
    }
    return 0;
}

int CSmtp::RcptTo(const CAddressEntry& recipient) {
    const CommandArgument address{OLESTR("Recipient address"), recipient.address,
                                  kMaxAddressLength};
    const int reply = SendCommand("RCPT TO: <%s>\r\n", address);
    return reply == 250 || reply == 251 ? 0 : Reported(reply);
}

int CSmtp::Data(COutgoingMessage& message) {
    // From DATA until the reply to the message, a QUIT would be a line of the message: whatever is
    // thrown meanwhile leaves none owed.
    const bool greeted = std::exchange(m_greeted, false);
    int reply = SendCommand(WriteCommand("DATA\r\n"));
    const bool accepted = reply == 354;
    if (accepted) {
        std::string text;
        ComposeMessage(message, text);
        text += kMessageEnd;
        reply = SendMessageText(text);
    }
    m_greeted = greeted;
    return accepted && reply == 250 ? 0 : Reported(reply);
}

// The server's decision holds, whether or not there is memory for its words.
int CSmtp::SendMessageText(std::string_view text) {
    try {
        return m_channel.SendCommand(text, 3LL * m_replyTimeout);
    } catch (const std::bad_alloc&) {
        if (m_channel.replyCode() < 0) {
            throw;
        }
        m_replyText.clear();
        return m_channel.replyCode();
    }
}

int CSmtp::Quit() {
    if (!m_greeted) {
        return 0;
    }
    m_greeted = false;
    m_connection.PostponeLook();
    const int reply = SendCommand(WriteCommand("QUIT\r\n"));
    return reply == 221 ? 0 : reply;
}

void CSmtp::Close() {
    if (m_connection.IsOpen()) {
        try {
            Quit();
        } catch (const std::bad_alloc&) {
            // What has been sent stays sent, whether or not there is memory for the farewell.
        }
    }
    // A connection without a socket, too: it may still know of an interruption.
    m_connection.Close();
    m_secureChannel.Release();
}

int CSmtp::SendCommand(CommandView command) {
    return m_channel.SendCommand(command, m_replyTimeout);
}

int CSmtp::SendCommand(std::string_view format, const CommandArgument& argument) {
    std::string line;
    return WriteCommand(format, argument, line, m_replyText) ? SendCommand(line) : -1;
}

int CSmtp::Fail(WideString text) {
    m_replyText = std::move(text);
    return -1;
}

int CSmtp::Reported(int code) {
    if (code == -1 && m_connection.wasInterrupted()) {
        code = -2;
    }
    ReportError(code);
    return code;
}

void CSmtp::ReportError(int code) {
    m_errorText = m_replyText;
    if (code == -1 || code == -2) {
        m_greeted = false;
    }
    OnError(code, m_replyText);
}

}  // namespace quorvane

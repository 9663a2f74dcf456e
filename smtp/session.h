// One client connection to one mail server (RFC 5321).
#pragma once

#include <winsock2.h>

#include <span>
#include <string_view>

#include "automation/wide_string.h"
#include "model/address_entry.h"
#include "model/outgoing_message.h"
#include "smtp/command_writer.h"
#include "smtp/line_channel.h"
#include "smtp/secure_channel.h"
#include "smtp/socket_connection.h"

namespace quorvane {

// How a connection is encrypted.
enum TlsMode {
    TlsNone = 0,      // never
    TlsStartTls = 1,  // with STARTTLS when the server offers it
    TlsImplicit = 2,  // from the first byte, unless the server greets in clear
};

// Operations return 0 for success, the server's reply code (three digits) when the server refused,
// -1 for a failure whose words are in the error text, or -2 when they were interrupted. After a
// refusal, and when an operation was interrupted before it began, the connection is sound and Close
// says QUIT; otherwise its state is unknown and Close just closes. Used by one thread at a time;
// every operation blocks. Throws std::bad_alloc.
class CSmtp {
public:
    // Takes the computer's name as m_heloHost. Operations that begin, and waits of those that run,
    // end when `isInterrupted` says so; it is asked on the session's thread, at least twice a
    // second while the network keeps it waiting. Only the resolver is out of its reach.
    explicit CSmtp(SocketConnection::InterruptFunction isInterrupted = {});
    virtual ~CSmtp();  // closes
    CSmtp(const CSmtp&) = delete;
    CSmtp& operator=(const CSmtp&) = delete;

    // Told of a 535 answer during authentication. 0 gives up; any other value takes the place of
    // the answer, and 1 has the authentication tried again, three times in all.
    virtual int OnAuthFailed(int code, const WideString& text);
    // Told of every reported failure; the result has no meaning.
    virtual int OnError(int code, const WideString& text);
    // Told of progress after each piece of a message longer than 8,192 bytes; 0 stops the transfer.
    virtual int OnProgress(ULONG bytesSent, ULONG bytesTotal);

    // Connects, introduces itself and authenticates. The connection is closed after a failure.
    int Connect(const WideString& server, TlsMode mode);
    // Sends the message to every To, Cc and Bcc address; -1 without words when it has no sender or
    // no recipient. One recipient that is refused fails the message. The connection stays open.
    int SendMail(COutgoingMessage& message);
    // The same for the given recipients only.
    int SendMailTo(COutgoingMessage& message, std::span<const CAddressEntry> recipients);
    // Says QUIT when it is owed, then closes. The error text stays until the next Connect.
    void Close();
    WideString GetErrorText() const { return m_errorText; }

    // Settings; those of the connection are read by Connect.
    LONG m_replyTimeout = 30;    // seconds; the reply to the message itself has three times as long
    LONG m_connectAttempts = 2;  // one attempt is always made
    LONG m_spa = 0;              // not 0 allows NTLM
    USHORT m_port;               // network byte order
    WideString m_user;           // empty means no authentication
    WideString m_password;
    WideString m_domain;    // NTLM domain
    WideString m_heloHost;  // name announced in EHLO and HELO

private:
    int Establish(TlsMode mode);
    int Resolve(in_addr& address);
    int ConnectWithAttempts(const in_addr& address);
    int CreateAndConnect(const in_addr& address);
    int SecureFromTheStart(const in_addr& address, TlsMode& mode);
    int PeekGreeting();

    int Hello(TlsMode mode);
    int SayHello();
    int StartTls(const WideString& capabilities);
    int Handshake();

    int Authenticate(const WideString& capabilities);
    int AuthLogin();
    const WideString* AnswerToPrompt() const;
    int AuthNtlm();

    int MailFrom(const CAddressEntry& sender);
    int RcptTo(std::span<const CAddressEntry> recipients);
    int RcptTo(const CAddressEntry& recipient);
    int Data(COutgoingMessage& message);
    int SendMessageText(std::string_view text);
    int Quit();

    int SendCommand(CommandView command);
    int SendCommand(std::string_view format, const CommandArgument& argument);
    int Fail(WideString text);
    int Reported(int code);
    void ReportError(int code);

    WideString m_server;     // as passed to Connect
    WideString m_replyText;  // of the last reply, or the words of the failure in hand
    WideString m_errorText;  // what GetErrorText returns
    bool m_greeted = false;  // EHLO or HELO was accepted; QUIT is owed
    bool m_esmtp = false;    // it was EHLO
    SocketConnection m_connection;
    SecureChannel m_secureChannel;
    LineChannel m_channel;
};

}  // namespace quorvane

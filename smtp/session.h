// One client connection to one mail server (RFC 5321).
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "automation/wide_string.h"
#include "model/address_entry.h"
#include "model/outgoing_message.h"

namespace quorvane {

// How a connection is encrypted.
enum TlsMode {
    TlsNone = 0,      // never
    TlsStartTls = 1,  // with STARTTLS when the server offers it
    TlsImplicit = 2,  // from the first byte, unless the server greets in clear
};

// Results of the operations: 0 for success, the server's reply code (three digits) when the server
// refused, -1 for a failure whose words are in the error text. Used by one thread at a time.
class CSmtp {
public:
    CSmtp();
    virtual ~CSmtp();  // closes
    CSmtp(const CSmtp&) = delete;
    CSmtp& operator=(const CSmtp&) = delete;

    virtual int OnAuthFailed(int code, const WideString& text);
    virtual int OnError(int code, const WideString& text);
    // Told of progress after each piece of a message longer than 8,192 bytes; 0 stops the transfer.
    virtual int OnProgress(ULONG bytesSent, ULONG bytesTotal);

    int Connect(const WideString& server, TlsMode mode);
    int SendMail(COutgoingMessage& message);
    int SendMailTo(COutgoingMessage& message, std::span<const CAddressEntry> recipients);
    void Close();
    WideString GetErrorText() const;

    // Settings: see the implementation's members of the same names.
    LONG m_replyTimeout = 30;   // seconds
    LONG m_connectAttempts = 2;
    LONG m_spa = 0;             // not 0 allows NTLM
    USHORT m_port;              // network byte order
    WideString m_user;          // empty means no authentication
    WideString m_password;
    WideString m_domain;        // NTLM domain
    WideString m_heloHost;      // name announced in EHLO and HELO
};

}  // namespace quorvane

// The client's side of a TLS handshake (RFC 5246 section 7.3) over a connected socket.
#pragma once

#include <span>
#include <vector>

#include "smtp/security_handles.h"
#include "smtp/token_exchange.h"

namespace quorvane {

// The whole handshake may take this many reply time-outs: one byte at a time would keep each single
// wait alive for ever.
inline constexpr int kHandshakeTimeouts = 3;

class TlsHandshake {
public:
    // `replyTimeout` bounds each wait for the server.
    TlsHandshake(SecurityHandles& security, const TokenChannel& channel, Milliseconds replyTimeout);

    // 0 when the session is secured; -1 after a failure; -2 when the peer doesn't speak TLS. The
    // reply text has the words then, and the handles stay as they are, to be released. Throws
    // std::bad_alloc.
    int Run();

    // What has been received behind the handshake: the beginning of the session's records.
    std::span<const char> rest() const { return std::span(m_input).first(m_used); }

private:
    int Step(SecBufferDesc* input, const SecBuffer* rest);
    int Receive();
    int TakeInput();
    int KeepRest(const SecBuffer& rest);
    int Fail(WideString text);
    int FailNegotiation(SECURITY_STATUS status);

    SecurityHandles& m_security;
    const TokenChannel m_channel;
    const Milliseconds m_replyTimeout;
    const Stopwatch m_watch;

    SECURITY_STATUS m_status = SEC_E_OK;
    std::vector<char> m_input;  // begins with a record of the peer
    std::size_t m_used = 0;     // bytes of it
    bool m_recognized = false;  // the peer has sent a record, so it does speak TLS
    bool m_goesOn = false;      // the package may do more with the input that it left
};

}  // namespace quorvane

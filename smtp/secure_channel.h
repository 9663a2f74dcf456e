// TLS over a session's connection: the handshake, and records in both directions
// (RFC 5246 section 6.2).
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "automation/wide_string.h"
#include "smtp/failure_text.h"
#include "smtp/security_handles.h"
#include "smtp/socket_connection.h"

namespace quorvane {

// Certificates are not examined, so a man in the middle is not noticed. No close alert is sent.
// Results are as of the session's steps: -1 is a failure whose words are in the reply text. Throws
// std::bad_alloc from all but Handshake.
class SecureChannel {
public:
    // The references are the session's: its connection, the server's name for the handshake and the
    // texts, and the text that receives the words of failures.
    SecureChannel(SocketConnection& connection, const WideString& server, WideString& replyText)
        : m_connection(connection), m_server(server), m_replyText(replyText) {}
    SecureChannel(const SecureChannel&) = delete;
    SecureChannel& operator=(const SecureChannel&) = delete;

    // True from a successful handshake on, until Release.
    bool active() const { return m_active; }
    // True while a receive would bring something without reading from the socket.
    bool pending() const;

    // 0 secured; -1 failed; -2 the peer doesn't speak TLS, with words too. The connection is of no
    // use after a failure. `replyTimeout` bounds each wait for the server, and three times as much
    // the whole handshake.
    int Handshake(Milliseconds replyTimeout);

    // Encrypts and sends all bytes. Their number, or -1: also when the peer takes nothing for as
    // long as the limit, for which the words name the command that the bytes are part of.
    int Send(std::string_view bytes, std::string_view command, Milliseconds limit);

    // Bytes of plain text, 0 when what arrived held none or was part of a record, which is kept; or
    // -1, for a closed connection too. Never waits; `receive` tells whether to read from the socket
    // before decrypting. Text that doesn't fit is kept for the next calls.
    int Receive(std::span<char> buffer, bool receive);

    // Ends the session without a word to the peer.
    void Release();

private:
    int PrepareRecords();
    int SendRecord(std::string_view data, std::string_view command, Milliseconds limit);
    int ReceiveRecords();
    int DecryptRecord();
    void KeepDecrypted(std::span<const SecBuffer> buffers);
    int Fail(WideString text);

    SocketConnection& m_connection;
    const WideString& m_server;
    WideString& m_replyText;

    SecurityHandles m_security;
    bool m_active = false;
    SecPkgContext_StreamSizes m_streamSizes{};
    std::vector<char> m_record;    // work area of one outgoing record: header, data, trailer
    std::vector<char> m_received;  // records of the peer that are not decrypted yet
    std::vector<char> m_plain;     // decrypted, but not taken yet
};

}  // namespace quorvane

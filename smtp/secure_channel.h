// TLS over a session's connection. This version has none: the class holds the place where a
// session uses it, and a session that is asked for encryption fails before anything is sent.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "automation/wide_string.h"

namespace quorvane {

// Results are as of the session's steps: -1 is a failure whose words are in the reply text.
class SecureChannel {
public:
    explicit SecureChannel(WideString& replyText) : m_replyText(replyText) {}
    SecureChannel(const SecureChannel&) = delete;
    SecureChannel& operator=(const SecureChannel&) = delete;

    static constexpr bool IsAvailable() { return false; }

    // True from a successful handshake on, until Release.
    bool active() const { return false; }
    // True while bytes of the peer have been received but not yet decrypted.
    bool pending() const { return false; }

    // 0 secured, -1 failed, -2 the peer doesn't speak TLS.
    int Handshake();
    // The number of bytes, all sent; or -1.
    int Send(std::string_view bytes);
    // Bytes of plain text, 0 when what arrived held none; or -1, for a closed connection too.
    // `receive` tells whether to read from the socket before decrypting.
    int Receive(std::span<char> buffer, bool receive);
    void Release() {}

private:
    WideString& m_replyText;
};

}  // namespace quorvane

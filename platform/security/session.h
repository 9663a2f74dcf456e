// One TLS client session that does no input and output of its own.
#pragma once

#include <openssl/ssl.h>
#include <sspi.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string>

#include "exchange.h"

namespace quorvane::security {

class Session {
public:
    // Null when memory runs out. `target` is a server's name in ASCII, or empty.
    static std::unique_ptr<Session> Make(SSL_CTX* settings, const std::string& target);
    ~Session() { SSL_free(m_ssl); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    bool established() const { return SSL_is_init_finished(m_ssl) == 1; }
    // True until the first bytes of the peer have been consumed.
    bool fresh() const { return m_fresh; }

    // Goes on with the handshake as far as the input, whole records, takes it. `unread` receives
    // the count of bytes at its end that are no part of the handshake, `token` what is to be sent.
    SECURITY_STATUS Handshake(std::span<const char> input, std::size_t& unread, std::string& token);

    // Encrypts `data`, which may lie within `room`, into a record at the front of `room`.
    SECURITY_STATUS Encrypt(std::span<const char> data, std::span<char> room, std::size_t& written);

    // Decrypts one whole record into `room`, which may be a part of it. `size` is that of the data.
    SECURITY_STATUS Decrypt(std::span<const char> record, std::span<char> room, std::size_t& size);

private:
    explicit Session(SSL* ssl) : m_ssl(ssl) {}

    SSL* const m_ssl;
    Exchange* m_exchange = nullptr;  // of the call in hand
    bool m_fresh = true;
};

}  // namespace quorvane::security

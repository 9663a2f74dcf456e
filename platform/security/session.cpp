#include "session.h"

#include <algorithm>

#include "openssl_errors.h"

namespace quorvane::security {
std::unique_ptr<Session> Session::Make(SSL_CTX* settings, const std::string& target) {
    const ErrorScope errors;
    SSL* const ssl = SSL_new(settings);
    if (!ssl) return nullptr;
    std::unique_ptr<Session> session(new Session(ssl));
    BIO* const bio = NewExchangeBio(&session->m_exchange);
    if (!bio) return nullptr;
    SSL_set_bio(ssl, bio, bio);
    SSL_set_connect_state(ssl);
    // A name that is too long for the extension goes without it.
    if (!target.empty()) SSL_set_tlsext_host_name(ssl, target.c_str());
    return session;
}

SECURITY_STATUS Session::Handshake(std::span<const char> input, std::size_t& unread,
                                   std::string& token) {
    const ErrorScope errors;
    Exchange exchange{input, {}, 0, {}};
    m_exchange = &exchange;
    const int result = SSL_do_handshake(m_ssl);
    unread = exchange.input.size();
    if (unread < input.size()) m_fresh = false;
    if (result != 1) {
        const SECURITY_STATUS status = errors.Status(m_ssl, result);
        if (status != SEC_E_OK) return status;
    }
    token = std::move(exchange.token);
    return result == 1 ? SEC_E_OK : SEC_I_CONTINUE_NEEDED;
}

SECURITY_STATUS Session::Encrypt(std::span<const char> data, std::span<char> room,
                                 std::size_t& written) {
    const ErrorScope errors;
    Exchange exchange{{}, room, 0, {}};
    m_exchange = &exchange;
    const int size = static_cast<int>(data.size());
    if (SSL_write(m_ssl, data.data(), size) != size) return SEC_E_ENCRYPT_FAILURE;
    written = exchange.written;
    return SEC_E_OK;
}

SECURITY_STATUS Session::Decrypt(std::span<const char> record, std::span<char> room,
                                 std::size_t& size) {
    const ErrorScope errors;
    Exchange exchange{record, {}, 0, {}};
    m_exchange = &exchange;
    const int result = SSL_read(m_ssl, room.data(), static_cast<int>(room.size()));
    size = static_cast<std::size_t>(std::max(result, 0));
    if (result > 0) return SEC_E_OK;
    const SECURITY_STATUS status = errors.Status(m_ssl, result);
    if (status != SEC_E_OK) return status;
    // Data is not answered. What is, is the wish for another handshake, and the answer has nowhere
    // to go.
    return exchange.token.empty() ? SEC_E_OK : SEC_I_RENEGOTIATE;
}

}  // namespace quorvane::security

#include "credentials.h"

#include <schannel.h>

#include <map>
#include <memory>
#include <mutex>

namespace quorvane::security {
namespace {

struct SettingsDeleter {
    void operator()(SSL_CTX* settings) const { SSL_CTX_free(settings); }
};
using Settings = std::unique_ptr<SSL_CTX, SettingsDeleter>;

struct Protocol {
    DWORD flag;
    std::uint64_t exclusion;
};

constexpr Protocol kProtocols[] = {{SP_PROT_TLS1_0_CLIENT, SSL_OP_NO_TLSv1},
                                   {SP_PROT_TLS1_1_CLIENT, SSL_OP_NO_TLSv1_1},
                                   {SP_PROT_TLS1_2_CLIENT, SSL_OP_NO_TLSv1_2}};

// Everything that the system's configuration of OpenSSL may have set for its own clients is set
// here: the old versions need security level 0, and old servers can't renegotiate securely, which
// is of no account to a client that never does.
Settings MakeClientSettings(DWORD protocols) {
    Settings settings(SSL_CTX_new(TLS_client_method()));
    SSL_CTX* const raw = settings.get();
    if (!raw || SSL_CTX_set_min_proto_version(raw, TLS1_VERSION) != 1 ||
        SSL_CTX_set_max_proto_version(raw, TLS1_2_VERSION) != 1 ||
        SSL_CTX_set_cipher_list(raw, "DEFAULT:@SECLEVEL=0") != 1) {
        return nullptr;
    }
    SSL_CTX_set_security_level(raw, 0);
    SSL_CTX_clear_options(raw, SSL_OP_NO_SSL_MASK);
    for (const Protocol& protocol : kProtocols) {
        if (!(protocols & protocol.flag)) SSL_CTX_set_options(raw, protocol.exclusion);
    }
    SSL_CTX_set_options(raw, SSL_OP_LEGACY_SERVER_CONNECT | SSL_OP_NO_RENEGOTIATION);
    SSL_CTX_set_verify(raw, SSL_VERIFY_NONE, nullptr);
    SSL_CTX_set_session_cache_mode(raw, SSL_SESS_CACHE_OFF);
    return settings;
}

class Cache {
public:
    // A program may end while threads of ours are in a dialogue: neither OpenSSL nor this may go
    // then.
    Cache() { OPENSSL_init_ssl(OPENSSL_INIT_NO_ATEXIT, nullptr); }

    SSL_CTX* Share(DWORD protocols) {
        const std::lock_guard lock(m_mutex);
        Settings& settings = m_settings[protocols];
        if (!settings) settings = MakeClientSettings(protocols);
        if (settings) SSL_CTX_up_ref(settings.get());
        return settings.get();
    }

private:
    std::mutex m_mutex;
    std::map<DWORD, Settings> m_settings;
};

}  // namespace

SSL_CTX* ShareClientSettings(DWORD protocols) {
    static Cache& cache = *new Cache;
    return cache.Share(protocols);
}

}  // namespace quorvane::security

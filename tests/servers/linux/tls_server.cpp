#include "tests/servers/tls_server.h"

#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

#include <stdexcept>

namespace quorvane::testing {
namespace {

template <auto Free>
struct Deleter {
    void operator()(auto* object) const { Free(object); }
};
using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Deleter<X509_free>>;
using Settings = std::unique_ptr<SSL_CTX, Deleter<SSL_CTX_free>>;
using Connection = std::unique_ptr<SSL, Deleter<SSL_free>>;

void Check(bool succeeded) {
    if (!succeeded) {
        throw std::runtime_error("the TLS server can't be set up");
    }
}

Certificate MakeCertificate(EVP_PKEY* key) {
    Certificate certificate(X509_new());
    X509* const raw = certificate.get();
    ASN1_INTEGER_set(X509_get_serialNumber(raw), 1);
    X509_gmtime_adj(X509_getm_notBefore(raw), -7200);
    X509_gmtime_adj(X509_getm_notAfter(raw), -3600);  // nobody looks
    X509_NAME_add_entry_by_txt(X509_get_subject_name(raw), "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>("wrong.test"), -1, -1, 0);
    X509_set_issuer_name(raw, X509_get_subject_name(raw));
    X509_set_pubkey(raw, key);
    Check(X509_sign(raw, key, EVP_sha256()) > 0);
    return certificate;
}

// RSA, so that all handshakes have the same length.
EVP_PKEY* SharedKey() {
    static const Key key(EVP_RSA_gen(2048));
    return key.get();
}

Settings MakeSettings(int version) {
    Settings settings(SSL_CTX_new(TLS_server_method()));
    SSL_CTX* const raw = settings.get();
    EVP_PKEY* const key = SharedKey();
    const Certificate certificate = MakeCertificate(key);
    SSL_CTX_set_security_level(raw, 0);
    Check(SSL_CTX_set_min_proto_version(raw, version) == 1 &&
          SSL_CTX_set_max_proto_version(raw, version) == 1 &&
          SSL_CTX_set_cipher_list(raw, "DEFAULT:@SECLEVEL=0") == 1 &&
          SSL_CTX_use_certificate(raw, certificate.get()) == 1 &&
          SSL_CTX_use_PrivateKey(raw, key) == 1);
    SSL_CTX_set_options(raw, SSL_OP_NO_TICKET);
    return settings;
}

SSL_CTX* SettingsOf(TlsVersion version) {
    static const Settings settings[] = {MakeSettings(TLS1_VERSION), MakeSettings(TLS1_1_VERSION),
                                        MakeSettings(TLS1_2_VERSION)};
    return settings[static_cast<int>(version)].get();
}

class OpenSslServer : public TlsServer {
public:
    explicit OpenSslServer(TlsVersion version) : ssl_(SSL_new(SettingsOf(version))) {
        SSL_set_bio(ssl_.get(), BIO_new(BIO_s_mem()), BIO_new(BIO_s_mem()));
        SSL_set_accept_state(ssl_.get());
    }

    std::string Handshake(std::string_view bytes) override {
        Take(bytes);
        SSL_do_handshake(ssl_.get());
        return Said();
    }

    bool established() const override { return SSL_is_init_finished(ssl_.get()) == 1; }

    std::string requestedName() const override {
        const char* const name = SSL_get_servername(ssl_.get(), TLSEXT_NAMETYPE_host_name);
        return name ? name : "";
    }

    std::string Encrypt(std::string_view text) override {
        if (!text.empty()) {
            SSL_write(ssl_.get(), text.data(), static_cast<int>(text.size()));
        }
        return Said();
    }

    std::string Decrypt(std::string_view bytes) override {
        Take(bytes);
        std::string text;
        char buffer[16384];
        for (int count; (count = SSL_read(ssl_.get(), buffer, sizeof buffer)) > 0;) {
            text.append(buffer, static_cast<std::size_t>(count));
        }
        return text;
    }

    std::string Farewell() override {
        SSL_shutdown(ssl_.get());
        return Said();
    }

    std::string HelloRequest() override {
        SSL_renegotiate(ssl_.get());
        SSL_do_handshake(ssl_.get());
        return Said();
    }

private:
    void Take(std::string_view bytes) {
        BIO_write(SSL_get_rbio(ssl_.get()), bytes.data(), static_cast<int>(bytes.size()));
    }

    std::string Said() {
        BIO* const bio = SSL_get_wbio(ssl_.get());
        std::string bytes(BIO_ctrl_pending(bio), '\0');
        BIO_read(bio, bytes.data(), static_cast<int>(bytes.size()));
        return bytes;
    }

    Connection ssl_;
};

}  // namespace

std::unique_ptr<TlsServer> MakeTlsServer(TlsVersion version) {
    return std::make_unique<OpenSslServer>(version);
}

}  // namespace quorvane::testing

// The server's side of a TLS session over bytes in memory: the test decides how they travel.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace quorvane::testing {

enum class TlsVersion { Tls10, Tls11, Tls12 };

// Failures of the session show in what it says, or in what it doesn't say any more.
class TlsServer {
public:
    virtual ~TlsServer() = default;

    // Takes what the client has sent and returns what the server says to it.
    virtual std::string Handshake(std::string_view bytes) = 0;
    virtual bool established() const = 0;
    // The name that the client has sent, or nothing.
    virtual std::string requestedName() const = 0;

    // The text in records, of at most 16,384 bytes each.
    virtual std::string Encrypt(std::string_view text) = 0;
    // The text of the records that the bytes, with those of earlier calls, make whole.
    virtual std::string Decrypt(std::string_view bytes) = 0;
    // The record that closes the session (close_notify), and the one that asks for another
    // handshake.
    virtual std::string Farewell() = 0;
    virtual std::string HelloRequest() = 0;
};

// With a certificate that nobody has signed. Null where there is no TLS server: in the Windows
// build.
std::unique_ptr<TlsServer> MakeTlsServer(TlsVersion version = TlsVersion::Tls12);

}  // namespace quorvane::testing

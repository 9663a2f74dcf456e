// Settings of TLS clients.
#pragma once

#include <openssl/ssl.h>
#include <windef.h>

namespace quorvane::security {

// Settings for the protocols of the mask (SP_PROT_...), the same object for every session that asks
// for the same ones, since making them costs more than a handshake. Null when memory runs out.
// The caller owns a reference.
SSL_CTX* ShareClientSettings(DWORD protocols);

}  // namespace quorvane::security

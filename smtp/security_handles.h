// Credentials and context of one TLS session with the system's security package.
#pragma once

#include <windows.h>
#include <schannel.h>
#include <security.h>

#include "automation/wide_string.h"

namespace quorvane {

// Statuses are the package's own; 0 is success.
class SecurityHandles {
public:
    SecurityHandles();
    ~SecurityHandles() { Release(); }
    SecurityHandles(const SecurityHandles&) = delete;
    SecurityHandles& operator=(const SecurityHandles&) = delete;

    // Client credentials for TLS 1.0, 1.1 and 1.2, without a certificate.
    SECURITY_STATUS AcquireCredentials();

    // One step of the handshake with the server of that name; the first, which has no input, makes
    // the context. The server's certificate is not examined.
    SECURITY_STATUS Negotiate(const WideString& server, SecBufferDesc* input, SecBufferDesc& output,
                              ULONG& attributes);

    PCtxtHandle context() { return &m_context; }

    // Deletes the context and frees the credentials, as far as there are any.
    void Release();

private:
    CredHandle m_credentials;
    CtxtHandle m_context;
};

}  // namespace quorvane

// What OpenSSL says of failed calls.
#pragma once

#include <openssl/ssl.h>
#include <sspi.h>

namespace quorvane::security {

// Empties the thread's error queue before and after the calls in between: OpenSSL judges a call by
// what is in it, and what it leaves there is nobody else's concern.
class ErrorScope {
public:
    ErrorScope();
    ~ErrorScope();
    ErrorScope(const ErrorScope&) = delete;
    ErrorScope& operator=(const ErrorScope&) = delete;

    // Of a call on the session that gave `result`, 0 or less: SEC_E_OK when it only wants more
    // input, SEC_I_CONTEXT_EXPIRED when the peer has said its farewell, or what Windows would call
    // the failure.
    SECURITY_STATUS Status(const SSL* ssl, int result) const;
};

}  // namespace quorvane::security

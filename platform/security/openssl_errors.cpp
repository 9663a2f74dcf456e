#include "openssl_errors.h"

#include <openssl/err.h>

namespace quorvane::security {
namespace {

SECURITY_STATUS StatusOfError(unsigned long error) {
    const int reason = ERR_GET_REASON(error);
    if (reason == ERR_R_MALLOC_FAILURE) return SEC_E_INSUFFICIENT_MEMORY;
    if (ERR_GET_LIB(error) != ERR_LIB_SSL) return SEC_E_INTERNAL_ERROR;
    switch (reason) {
        case SSL_AD_REASON_OFFSET + SSL_AD_PROTOCOL_VERSION:  // an alert of the peer's
        case SSL_R_UNSUPPORTED_PROTOCOL:
        case SSL_R_WRONG_SSL_VERSION:
            return SEC_E_UNSUPPORTED_FUNCTION;
        case SSL_AD_REASON_OFFSET + SSL_AD_INTERNAL_ERROR:
        case ERR_R_INTERNAL_ERROR:
            return SEC_E_INTERNAL_ERROR;
        case SSL_AD_REASON_OFFSET + SSL_AD_BAD_RECORD_MAC:
        case SSL_R_DECRYPTION_FAILED_OR_BAD_RECORD_MAC:
        case SSL_R_DIGEST_CHECK_FAILED:
            return SEC_E_MESSAGE_ALTERED;
        default:
            return SEC_E_ILLEGAL_MESSAGE;
    }
}

}  // namespace

ErrorScope::ErrorScope() {
    ERR_clear_error();
}

ErrorScope::~ErrorScope() {
    ERR_clear_error();
}

SECURITY_STATUS ErrorScope::Status(const SSL* ssl, int result) const {
    switch (SSL_get_error(ssl, result)) {
        case SSL_ERROR_WANT_READ:
            return SEC_E_OK;
        case SSL_ERROR_ZERO_RETURN:
            return SEC_I_CONTEXT_EXPIRED;
        default:
            return StatusOfError(ERR_peek_last_error());
    }
}

}  // namespace quorvane::security

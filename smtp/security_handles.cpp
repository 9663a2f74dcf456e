#include "smtp/security_handles.h"

namespace quorvane {
namespace {

// Without USE_SUPPLIED_CREDS the system might offer a certificate of the user's.
constexpr ULONG kRequest = ISC_REQ_USE_SUPPLIED_CREDS | ISC_REQ_ALLOCATE_MEMORY | ISC_REQ_STREAM |
                           ISC_REQ_MANUAL_CRED_VALIDATION;

}  // namespace

SecurityHandles::SecurityHandles() {
    SecInvalidateHandle(&m_credentials);
    SecInvalidateHandle(&m_context);
}

SECURITY_STATUS SecurityHandles::AcquireCredentials() {
    SCHANNEL_CRED record{};
    record.dwVersion = SCHANNEL_CRED_VERSION;
    record.grbitEnabledProtocols =
        SP_PROT_TLS1_0_CLIENT | SP_PROT_TLS1_1_CLIENT | SP_PROT_TLS1_2_CLIENT;
    WideString package = UNISP_NAME_W;
    return AcquireCredentialsHandleW(nullptr, package.data(), SECPKG_CRED_OUTBOUND, nullptr,
                                     &record, nullptr, nullptr, &m_credentials, nullptr);
}

SECURITY_STATUS SecurityHandles::Negotiate(const WideString& server, SecBufferDesc* input,
                                           SecBufferDesc& output, ULONG& attributes) {
    const bool first = !SecIsValidHandle(&m_context);
    return InitializeSecurityContextW(&m_credentials, first ? nullptr : &m_context,
                                      const_cast<SEC_WCHAR*>(server.c_str()), kRequest, 0, 0, input,
                                      0, &m_context, &output, &attributes, nullptr);
}

void SecurityHandles::Release() {
    if (SecIsValidHandle(&m_context)) {
        DeleteSecurityContext(&m_context);
        SecInvalidateHandle(&m_context);
    }
    if (SecIsValidHandle(&m_credentials)) {
        FreeCredentialsHandle(&m_credentials);
        SecInvalidateHandle(&m_credentials);
    }
}

}  // namespace quorvane

// Credentials of the TLS package.
#pragma once

#include "sspi.h"

#define UNISP_NAME_W u"Microsoft Unified Security Protocol Provider"

#define SP_PROT_TLS1_0_CLIENT 0x00000080
#define SP_PROT_TLS1_1_CLIENT 0x00000200
#define SP_PROT_TLS1_2_CLIENT 0x00000800

#define SCHANNEL_CRED_VERSION 4

typedef struct _SCHANNEL_CRED {
    DWORD dwVersion;
    DWORD cCreds;
    const struct _CERT_CONTEXT** paCred;
    void* hRootStore;
    DWORD cMappers;
    struct _HMAPPER** aphMappers;
    DWORD cSupportedAlgs;
    unsigned int* palgSupportedAlgs;
    DWORD grbitEnabledProtocols;  // SP_PROT_...
    DWORD dwMinimumCipherStrength;
    DWORD dwMaximumCipherStrength;
    DWORD dwSessionLifespan;
    DWORD dwFlags;
    DWORD dwCredFormat;
} SCHANNEL_CRED, *PSCHANNEL_CRED;

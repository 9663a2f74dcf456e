// The security-package interface (SSPI) as a client of its TLS package uses it.
#pragma once

#include "windef.h"
#include "winerror.h"

typedef LONG SECURITY_STATUS;
typedef WCHAR SEC_WCHAR;

typedef struct _SecHandle {
    ULONG_PTR dwLower;
    ULONG_PTR dwUpper;
} SecHandle, *PSecHandle;
typedef SecHandle CredHandle, *PCredHandle;
typedef SecHandle CtxtHandle, *PCtxtHandle;

// A handle without a value has all its bits set.
#define SecInvalidateHandle(handle)                    \
    ((PSecHandle)(handle))->dwLower = (ULONG_PTR)(-1); \
    ((PSecHandle)(handle))->dwUpper = (ULONG_PTR)(-1)
#define SecIsValidHandle(handle)                           \
    (((PSecHandle)(handle))->dwLower != (ULONG_PTR)(-1) && \
     ((PSecHandle)(handle))->dwUpper != (ULONG_PTR)(-1))

typedef struct _SECURITY_INTEGER* PTimeStamp;
typedef void(WINAPI* SEC_GET_KEY_FN)(void*, void*, ULONG, void**, SECURITY_STATUS*);

typedef struct _SecBuffer {
    ULONG cbBuffer;
    ULONG BufferType;
    void* pvBuffer;
} SecBuffer, *PSecBuffer;

typedef struct _SecBufferDesc {
    ULONG ulVersion;
    ULONG cBuffers;
    PSecBuffer pBuffers;
} SecBufferDesc, *PSecBufferDesc;

#define SECBUFFER_VERSION 0
#define SECBUFFER_EMPTY 0
#define SECBUFFER_DATA 1
#define SECBUFFER_TOKEN 2
#define SECBUFFER_MISSING 4
#define SECBUFFER_EXTRA 5
#define SECBUFFER_STREAM_TRAILER 6
#define SECBUFFER_STREAM_HEADER 7

#define SECPKG_CRED_OUTBOUND 2
#define SECPKG_ATTR_STREAM_SIZES 4

#define ISC_REQ_USE_SUPPLIED_CREDS 0x00000080
#define ISC_REQ_ALLOCATE_MEMORY 0x00000100
#define ISC_REQ_STREAM 0x00008000
#define ISC_REQ_MANUAL_CRED_VALIDATION 0x00080000
#define ISC_RET_ALLOCATED_MEMORY 0x00000100

// Room that a record needs around its data.
typedef struct _SecPkgContext_StreamSizes {
    ULONG cbHeader;
    ULONG cbTrailer;
    ULONG cbMaximumMessage;  // bytes of data
    ULONG cBuffers;
    ULONG cbBlockSize;
} SecPkgContext_StreamSizes, *PSecPkgContext_StreamSizes;

extern "C" {

// Client credentials of the package UNISP_NAME_W out of a SCHANNEL_CRED; the package takes its
// configuration (ciphers, verification) from nothing else. Freed with FreeCredentialsHandle.
// Differs from Windows: only the protocol mask of the record counts, and it names TLS 1.0, 1.1 or
// 1.2; principal, logon, key function and expiry are not used.
SECURITY_STATUS WINAPI AcquireCredentialsHandleW(SEC_WCHAR* principal, SEC_WCHAR* package,
                                                 ULONG use, void* logonId, void* authData,
                                                 SEC_GET_KEY_FN getKey, void* getKeyArgument,
                                                 PCredHandle credentials, PTimeStamp expiry);
SECURITY_STATUS WINAPI FreeCredentialsHandle(PCredHandle credentials);

// One step of a handshake. Without a context: makes one, and the output is the first token.
// With one: input is a token buffer that begins with a record and an empty buffer.
// SEC_E_OK: the handshake is done; SEC_I_CONTINUE_NEEDED: more must come from the peer. Either way
// there may be a token to send, allocated for FreeContextBuffer, and the input's second buffer is
// SECBUFFER_EXTRA with the count of the bytes at its end that were not consumed, if any.
// SEC_E_INCOMPLETE_MESSAGE: not a whole record; nothing was consumed and the second buffer is
// SECBUFFER_MISSING with the count of bytes that are known to be missing.
// Differs from Windows: all whole records are consumed while the handshake lasts; a failed step
// has no token; memory is always allocated and certificates are never examined, as the flags must
// ask for; the target name is sent to the server unless it is an address or not ASCII.
SECURITY_STATUS WINAPI InitializeSecurityContextW(PCredHandle credentials, PCtxtHandle context,
                                                  SEC_WCHAR* target, ULONG request, ULONG reserved1,
                                                  ULONG dataRepresentation, PSecBufferDesc input,
                                                  ULONG reserved2, PCtxtHandle newContext,
                                                  PSecBufferDesc output, ULONG* attributes,
                                                  PTimeStamp expiry);
SECURITY_STATUS WINAPI DeleteSecurityContext(PCtxtHandle context);
SECURITY_STATUS WINAPI FreeContextBuffer(void* buffer);

// SECPKG_ATTR_STREAM_SIZES, once the handshake is done.
SECURITY_STATUS WINAPI QueryContextAttributesW(PCtxtHandle context, ULONG attribute, void* value);

// Encrypts one message in place: header, data and trailer get the sizes that they have in the
// record. Differs from Windows: the three must lie back to back in this order.
SECURITY_STATUS WINAPI EncryptMessage(PCtxtHandle context, ULONG quality, PSecBufferDesc message,
                                      ULONG sequence);

// Decrypts the record that the data buffer begins with, in place. SEC_E_OK: the four buffers are
// header, data (of size 0 when the record held none), trailer, and SECBUFFER_EXTRA with what
// follows the record, if anything does. SEC_E_INCOMPLETE_MESSAGE: part of a record, untouched; the
// first buffer is SECBUFFER_MISSING. SEC_I_CONTEXT_EXPIRED: the peer closed the session.
// SEC_I_RENEGOTIATE: it wants another handshake, and the context is of no further use.
SECURITY_STATUS WINAPI DecryptMessage(PCtxtHandle context, PSecBufferDesc message, ULONG sequence,
                                      ULONG* quality);

}  // extern "C"

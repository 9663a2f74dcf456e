// "Microsoft Unified Security Protocol Provider" over OpenSSL.
#include <schannel.h>
#include <security.h>

#include <arpa/inet.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "credentials.h"
#include "record.h"
#include "session.h"

namespace quorvane::security {
namespace {

constexpr DWORD kProtocols = SP_PROT_TLS1_0_CLIENT | SP_PROT_TLS1_1_CLIENT | SP_PROT_TLS1_2_CLIENT;
constexpr ULONG kRequest = ISC_REQ_USE_SUPPLIED_CREDS | ISC_REQ_ALLOCATE_MEMORY | ISC_REQ_STREAM |
                           ISC_REQ_MANUAL_CRED_VALIDATION;
// What a session always has: replay and sequence detection, confidentiality.
constexpr ULONG kAlwaysGiven = 0x0000001C;

// Behind the data: at most a block of explicit IV, MAC and padding, and once more with a header for
// the empty record that OpenSSL puts in front of each one of TLS 1.0.
constexpr ULONG kTrailerSize = 256;
constexpr ULONG kBlockSize = 16;

SECURITY_STATUS Guarded(auto&& body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return SEC_E_INSUFFICIENT_MEMORY;
    }
}

template <typename Object>
Object* FromHandle(const SecHandle* handle) {
    const bool valid = handle && SecIsValidHandle(handle) && handle->dwLower != 0;
    return valid ? reinterpret_cast<Object*>(handle->dwLower) : nullptr;
}

void ToHandle(void* object, PSecHandle handle) {
    handle->dwLower = reinterpret_cast<ULONG_PTR>(object);
    handle->dwUpper = 0;
}

bool IsAddress(const char* text) {
    unsigned char address[16];
    return inet_pton(AF_INET, text, address) == 1 || inet_pton(AF_INET6, text, address) == 1;
}

// The name to send (RFC 6066 section 3): ASCII, no address, without a dot at its end.
std::string ServerName(const SEC_WCHAR* target) {
    std::string name;
    for (; target && *target; ++target) {
        if (*target > 0x7F) return {};
        name += static_cast<char>(*target);
    }
    if (name.ends_with('.')) name.pop_back();
    return IsAddress(name.c_str()) ? std::string() : name;
}

SecBuffer* FindBuffer(const SecBufferDesc* description, ULONG type) {
    if (!description) return nullptr;
    const auto end = description->pBuffers + description->cBuffers;
    const auto found = std::find_if(description->pBuffers, end, [type](const SecBuffer& buffer) {
        return buffer.BufferType == type;
    });
    return found == end ? nullptr : found;
}

std::span<char> BytesOf(const SecBuffer& buffer) {
    return {static_cast<char*>(buffer.pvBuffer), buffer.cbBuffer};
}

void Describe(SecBuffer& buffer, ULONG type, std::span<char> bytes) {
    buffer = {static_cast<ULONG>(bytes.size()), type, bytes.data()};
}

// The whole records at the beginning of the bytes; `problem` tells why there is none.
std::span<const char> WholeRecords(std::span<const char> bytes, bool fresh, std::size_t& missing,
                                   SECURITY_STATUS& problem) {
    std::size_t size = 0;
    for (;;) {
        const std::span<const char> rest = bytes.subspan(size);
        const RecordView record = ViewRecord(rest);
        if (!record.valid || !record.complete) {
            problem = record.valid ? SEC_E_INCOMPLETE_MESSAGE
                                   : (fresh ? SEC_E_INVALID_TOKEN : SEC_E_ILLEGAL_MESSAGE);
            missing = record.size - std::min(record.size, rest.size());
            return bytes.first(size);
        }
        size += record.size;
    }
}

// Gives the token away in memory that FreeContextBuffer takes back.
SECURITY_STATUS GiveToken(const std::string& token, SecBuffer& output) {
    output = {0, SECBUFFER_TOKEN, nullptr};
    if (token.empty()) return SEC_E_OK;
    output.pvBuffer = std::malloc(token.size());
    if (!output.pvBuffer) return SEC_E_INSUFFICIENT_MEMORY;
    std::memcpy(output.pvBuffer, token.data(), token.size());
    output.cbBuffer = static_cast<ULONG>(token.size());
    return SEC_E_OK;
}

SECURITY_STATUS Advance(Session& session, std::span<const char> records, std::size_t& unread,
                        SecBuffer& output) {
    std::string token;
    const SECURITY_STATUS status = session.Handshake(records, unread, token);
    if (FAILED(status)) return status;
    // A farewell is no answer to a handshake.
    if (status == SEC_I_CONTEXT_EXPIRED) return SEC_E_ILLEGAL_MESSAGE;
    const SECURITY_STATUS given = GiveToken(token, output);
    return given == SEC_E_OK ? status : given;
}

SECURITY_STATUS Begin(SSL_CTX* settings, const SEC_WCHAR* target, PCtxtHandle newContext,
                      SecBuffer& output) {
    auto session = Session::Make(settings, ServerName(target));
    if (!session) return SEC_E_INSUFFICIENT_MEMORY;
    std::size_t unread = 0;
    const SECURITY_STATUS status = Advance(*session, {}, unread, output);
    if (!FAILED(status)) ToHandle(session.release(), newContext);
    return status;
}

SECURITY_STATUS Continue(Session& session, const SecBufferDesc* input, SecBuffer& output) {
    const SecBuffer* const token = FindBuffer(input, SECBUFFER_TOKEN);
    SecBuffer* const rest = FindBuffer(input, SECBUFFER_EMPTY);
    if (!token || !rest) return SEC_E_INVALID_TOKEN;
    const std::span<char> bytes = BytesOf(*token);
    std::size_t missing = 0;
    SECURITY_STATUS problem = SEC_E_OK;
    const auto records = WholeRecords(bytes, session.fresh(), missing, problem);
    if (records.empty()) {
        if (problem == SEC_E_INCOMPLETE_MESSAGE) {
            *rest = {static_cast<ULONG>(missing), SECBUFFER_MISSING, nullptr};
        }
        return problem;
    }
    std::size_t unread = 0;
    const SECURITY_STATUS status = Advance(session, records, unread, output);
    unread += bytes.size() - records.size();
    if (!FAILED(status) && unread != 0) Describe(*rest, SECBUFFER_EXTRA, bytes.last(unread));
    return status;
}

// The record replaces the three buffers that lie where it goes.
SECURITY_STATUS Encrypt(Session& session, const SecBufferDesc* message) {
    SecBuffer* const header = FindBuffer(message, SECBUFFER_STREAM_HEADER);
    SecBuffer* const data = FindBuffer(message, SECBUFFER_DATA);
    SecBuffer* const trailer = FindBuffer(message, SECBUFFER_STREAM_TRAILER);
    if (!header || !data || !trailer) return SEC_E_INVALID_TOKEN;
    const std::span<char> front = BytesOf(*header);
    const std::span<char> middle = BytesOf(*data);
    const std::span<char> back = BytesOf(*trailer);
    if (front.data() + front.size() != middle.data() ||
        middle.data() + middle.size() != back.data()) {
        return SEC_E_INVALID_TOKEN;
    }
    if (middle.empty() || middle.size() > kMaxRecordData ||
        front.size() + back.size() < kRecordHeaderSize + kTrailerSize) {
        return SEC_E_BUFFER_TOO_SMALL;
    }
    std::size_t written = 0;
    const SECURITY_STATUS status = session.Encrypt(
        middle, {front.data(), front.size() + middle.size() + back.size()}, written);
    if (status == SEC_E_OK) {
        trailer->cbBuffer = static_cast<ULONG>(written - front.size() - middle.size());
    }
    return status;
}

SECURITY_STATUS Decrypt(Session& session, SecBufferDesc* message) {
    const SecBuffer* const data = FindBuffer(message, SECBUFFER_DATA);
    if (!data || message->cBuffers != 4) return SEC_E_INVALID_TOKEN;
    const std::span<char> bytes = BytesOf(*data);
    PSecBuffer buffers = message->pBuffers;
    const RecordView record = ViewRecord(bytes);
    if (!record.valid) return SEC_E_INVALID_TOKEN;
    if (!record.complete) {
        const std::size_t missing = record.size - std::min(record.size, bytes.size());
        buffers[0] = {static_cast<ULONG>(missing), SECBUFFER_MISSING, nullptr};
        return SEC_E_INCOMPLETE_MESSAGE;
    }
    const std::span<char> content = bytes.subspan(0, record.size).subspan(kRecordHeaderSize);
    std::size_t size = 0;
    const SECURITY_STATUS status = session.Decrypt(bytes.first(record.size), content, size);
    if (status != SEC_E_OK) return status;
    const std::span<char> extra = bytes.subspan(record.size);
    Describe(buffers[0], SECBUFFER_STREAM_HEADER, bytes.first(kRecordHeaderSize));
    Describe(buffers[1], SECBUFFER_DATA, content.first(size));
    Describe(buffers[2], SECBUFFER_STREAM_TRAILER, content.subspan(size));
    buffers[3] = {0, SECBUFFER_EMPTY, nullptr};
    if (!extra.empty()) Describe(buffers[3], SECBUFFER_EXTRA, extra);
    return SEC_E_OK;
}

}  // namespace
}  // namespace quorvane::security

using namespace quorvane::security;

SECURITY_STATUS WINAPI AcquireCredentialsHandleW(SEC_WCHAR*, SEC_WCHAR* package, ULONG use, void*,
                                                 void* authData, SEC_GET_KEY_FN, void*,
                                                 PCredHandle credentials, PTimeStamp) {
    if (!package || std::u16string_view(package) != UNISP_NAME_W) return SEC_E_SECPKG_NOT_FOUND;
    const auto* const record = static_cast<const SCHANNEL_CRED*>(authData);
    if (!credentials || !record || record->dwVersion != SCHANNEL_CRED_VERSION ||
        use != SECPKG_CRED_OUTBOUND || record->grbitEnabledProtocols == 0 ||
        (record->grbitEnabledProtocols & ~kProtocols) != 0) {
        return SEC_E_UNKNOWN_CREDENTIALS;
    }
    return Guarded([&]() -> SECURITY_STATUS {
        SSL_CTX* const settings = ShareClientSettings(record->grbitEnabledProtocols);
        if (!settings) return SEC_E_INSUFFICIENT_MEMORY;
        ToHandle(settings, credentials);
        return SEC_E_OK;
    });
}

SECURITY_STATUS WINAPI FreeCredentialsHandle(PCredHandle credentials) {
    auto* const settings = FromHandle<SSL_CTX>(credentials);
    if (!settings) return SEC_E_INVALID_HANDLE;
    SSL_CTX_free(settings);
    return SEC_E_OK;
}

SECURITY_STATUS WINAPI InitializeSecurityContextW(PCredHandle credentials, PCtxtHandle context,
                                                  SEC_WCHAR* target, ULONG request, ULONG, ULONG,
                                                  PSecBufferDesc input, ULONG,
                                                  PCtxtHandle newContext, PSecBufferDesc output,
                                                  ULONG* attributes, PTimeStamp) {
    if ((request & kRequest) != kRequest) return SEC_E_UNSUPPORTED_FUNCTION;
    if (!output || output->cBuffers == 0 || !attributes) return SEC_E_INVALID_TOKEN;
    *attributes = 0;
    const SECURITY_STATUS status = Guarded([&]() -> SECURITY_STATUS {
        SecBuffer& token = output->pBuffers[0];
        if (context) {
            auto* const session = FromHandle<Session>(context);
            return session ? Continue(*session, input, token) : SEC_E_INVALID_HANDLE;
        }
        auto* const settings = FromHandle<SSL_CTX>(credentials);
        return settings && newContext ? Begin(settings, target, newContext, token)
                                      : SEC_E_INVALID_HANDLE;
    });
    if (!FAILED(status)) *attributes = kRequest | kAlwaysGiven;
    return status;
}

SECURITY_STATUS WINAPI DeleteSecurityContext(PCtxtHandle context) {
    auto* const session = FromHandle<Session>(context);
    if (!session) return SEC_E_INVALID_HANDLE;
    delete session;
    return SEC_E_OK;
}

SECURITY_STATUS WINAPI FreeContextBuffer(void* buffer) {
    std::free(buffer);
    return SEC_E_OK;
}

SECURITY_STATUS WINAPI QueryContextAttributesW(PCtxtHandle context, ULONG attribute, void* value) {
    const auto* const session = FromHandle<Session>(context);
    if (!session || !session->established()) return SEC_E_INVALID_HANDLE;
    if (attribute != SECPKG_ATTR_STREAM_SIZES || !value) return SEC_E_UNSUPPORTED_FUNCTION;
    *static_cast<SecPkgContext_StreamSizes*>(value) = {kRecordHeaderSize, kTrailerSize,
                                                       kMaxRecordData, 4, kBlockSize};
    return SEC_E_OK;
}

SECURITY_STATUS WINAPI EncryptMessage(PCtxtHandle context, ULONG, PSecBufferDesc message, ULONG) {
    auto* const session = FromHandle<Session>(context);
    if (!session || !session->established()) return SEC_E_INVALID_HANDLE;
    return Guarded([&] { return Encrypt(*session, message); });
}

SECURITY_STATUS WINAPI DecryptMessage(PCtxtHandle context, PSecBufferDesc message, ULONG, ULONG*) {
    auto* const session = FromHandle<Session>(context);
    if (!session || !session->established()) return SEC_E_INVALID_HANDLE;
    return Guarded([&] { return Decrypt(*session, message); });
}

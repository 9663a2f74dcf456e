#include "smtp/secure_channel.h"

#include <algorithm>
#include <array>
#include <new>
#include <string>
#include <utility>

#include "smtp/tls_handshake.h"
#include "smtp/tls_record.h"

namespace quorvane {
namespace {

// Received in one go. A record that is longer is completed by later calls.
constexpr std::size_t kReceiveSize = 2048;

std::string_view BytesOf(const SecBuffer& buffer) {
    return {static_cast<const char*>(buffer.pvBuffer), buffer.cbBuffer};
}

// Header, data and trailer as one: where they lie, or in `gathered` when the package has left gaps.
std::string_view RecordOf(std::span<const SecBuffer, 4> buffers, std::string& gathered) {
    std::string_view record = BytesOf(buffers[0]);
    for (const SecBuffer& buffer : buffers.subspan<1, 2>()) {
        const std::string_view part = BytesOf(buffer);
        if (gathered.empty() && record.data() + record.size() == part.data()) {
            record = {record.data(), record.size() + part.size()};
        } else {
            if (gathered.empty()) {
                gathered = record;
            }
            gathered += part;
            record = gathered;
        }
    }
    return record;
}

}  // namespace

bool SecureChannel::pending() const {
    return !m_plain.empty() || HoldsTlsRecord(m_received) || !MayBeginTlsRecord(m_received);
}

int SecureChannel::Handshake(Milliseconds replyTimeout) {
    // The first command follows the end of the handshake, which has no answer of its own.
    m_connection.DelayNoSegments();
    try {
        TlsHandshake handshake(m_security, {m_connection, m_server, m_replyText}, replyTimeout);
        if (const int result = handshake.Run()) {
            return result;
        }
        m_received.assign(handshake.rest().begin(), handshake.rest().end());
        return PrepareRecords();
    } catch (const std::bad_alloc&) {
        return Fail(SecurityMemoryText());
    }
}

int SecureChannel::PrepareRecords() {
    m_streamSizes = {};
    const SECURITY_STATUS status =
        QueryContextAttributesW(m_security.context(), SECPKG_ATTR_STREAM_SIZES, &m_streamSizes);
    if (status != SEC_E_OK) {
        return Fail(StreamSizesText(m_server, status));
    }
    m_record.resize(std::size_t{m_streamSizes.cbHeader} + m_streamSizes.cbMaximumMessage +
                    m_streamSizes.cbTrailer);
    m_active = true;
    return 0;
}

int SecureChannel::Send(std::string_view bytes, std::string_view command, Milliseconds limit) {
    const std::size_t size = bytes.size();
    while (!bytes.empty()) {
        const std::string_view data = bytes.substr(0, m_streamSizes.cbMaximumMessage);
        if (SendRecord(data, command, limit) != 0) {
            return -1;
        }
        bytes.remove_prefix(data.size());
    }
    return static_cast<int>(size);
}

int SecureChannel::SendRecord(std::string_view data, std::string_view command, Milliseconds limit) {
    char* const header = m_record.data();
    char* const body = header + m_streamSizes.cbHeader;
    std::copy(data.begin(), data.end(), body);
    std::array<SecBuffer, 4> buffers{{
        {m_streamSizes.cbHeader, SECBUFFER_STREAM_HEADER, header},
        {static_cast<ULONG>(data.size()), SECBUFFER_DATA, body},
        {m_streamSizes.cbTrailer, SECBUFFER_STREAM_TRAILER, body + data.size()},
        {0, SECBUFFER_EMPTY, nullptr},
    }};
    SecBufferDesc message{SECBUFFER_VERSION, buffers.size(), buffers.data()};
    const SECURITY_STATUS status = EncryptMessage(m_security.context(), 0, &message, 0);
    if (status != SEC_E_OK) {
        return Fail(EncryptionText(m_server, status));
    }
    std::string gathered;
    switch (m_connection.Send(RecordOf(buffers, gathered), limit)) {
        case SocketStatus::Done:
            return 0;
        case SocketStatus::TimedOut:
            return Fail(BlockedSendText(m_server, command));
        default:
            return Fail(SocketErrorText(m_server, m_connection.error()));
    }
}

int SecureChannel::Receive(std::span<char> buffer, bool receive) {
    if (m_plain.empty()) {
        // More than what is at hand stays in the socket, which bounds what is kept here.
        if (receive && !HoldsTlsRecord(m_received) && ReceiveRecords() != 0) {
            return -1;
        }
        if (!m_received.empty() && DecryptRecord() != 0) {
            return -1;
        }
    }
    const std::size_t count = std::min(buffer.size(), m_plain.size());
    const auto end = m_plain.begin() + static_cast<std::ptrdiff_t>(count);
    std::copy(m_plain.begin(), end, buffer.begin());
    m_plain.erase(m_plain.begin(), end);
    return static_cast<int>(count);
}

int SecureChannel::ReceiveRecords() {
    const std::size_t kept = m_received.size();
    m_received.resize(kept + kReceiveSize);
    std::size_t count = 0;
    const SocketStatus status = m_connection.Receive(std::span(m_received).subspan(kept), count);
    m_received.resize(kept + count);
    switch (status) {
        case SocketStatus::Closed:
            return Fail(ClosedConnectionText(m_server, std::nullopt));
        case SocketStatus::Failed:
            return Fail(SocketErrorText(m_server, m_connection.error()));
        default:
            return 0;
    }
}

// Decrypts the first record, if it is whole.
int SecureChannel::DecryptRecord() {
    if (!MayBeginTlsRecord(m_received)) {
        return Fail(DecryptionText(m_server, SEC_E_INVALID_TOKEN));
    }
    std::array<SecBuffer, 4> buffers{};
    buffers[0] = {static_cast<ULONG>(m_received.size()), SECBUFFER_DATA, m_received.data()};
    SecBufferDesc message{SECBUFFER_VERSION, buffers.size(), buffers.data()};
    const SECURITY_STATUS status = DecryptMessage(m_security.context(), &message, 0, nullptr);
    if (status == SEC_E_INCOMPLETE_MESSAGE && !HoldsTlsRecord(m_received)) {
        return 0;
    }
    if (status == SEC_I_CONTEXT_EXPIRED) {
        return Fail(ClosedConnectionText(m_server, std::nullopt));
    }
    if (status != SEC_E_OK) {
        return Fail(DecryptionText(m_server, status));
    }
    KeepDecrypted(buffers);
    return 0;
}

// The buffers lie within what was received: the text first, what follows the record at the end.
void SecureChannel::KeepDecrypted(std::span<const SecBuffer> buffers) {
    std::size_t rest = 0;
    for (const SecBuffer& buffer : buffers) {
        if (buffer.BufferType == SECBUFFER_DATA && buffer.pvBuffer) {
            const std::string_view text = BytesOf(buffer);
            m_plain.assign(text.begin(), text.end());
        } else if (buffer.BufferType == SECBUFFER_EXTRA) {
            rest = std::min<std::size_t>(buffer.cbBuffer, m_received.size());
        }
    }
    m_received.erase(m_received.begin(), m_received.end() - static_cast<std::ptrdiff_t>(rest));
}

void SecureChannel::Release() {
    m_security.Release();
    m_active = false;
    m_streamSizes = {};
    m_record = {};
    m_received = {};
    m_plain = {};
}

int SecureChannel::Fail(WideString text) {
    m_replyText = std::move(text);
    return -1;
}

}  // namespace quorvane

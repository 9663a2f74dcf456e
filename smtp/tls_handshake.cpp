#include "smtp/tls_handshake.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "smtp/failure_text.h"
#include "smtp/tls_record.h"

namespace quorvane {
namespace {

constexpr std::size_t kInputSize = 32768;

// The token that a step of the package gives out, freed as the package wants it.
class OutputToken {
public:
    ~OutputToken() {
        if (m_buffer.pvBuffer && (m_attributes & ISC_RET_ALLOCATED_MEMORY)) {
            FreeContextBuffer(m_buffer.pvBuffer);
        }
    }

    SecBufferDesc& description() { return m_description; }
    ULONG& attributes() { return m_attributes; }
    std::string_view bytes() const {
        return m_buffer.pvBuffer ? std::string_view(static_cast<const char*>(m_buffer.pvBuffer),
                                                    m_buffer.cbBuffer)
                                 : std::string_view();
    }

private:
    SecBuffer m_buffer{0, SECBUFFER_EMPTY, nullptr};
    SecBufferDesc m_description{SECBUFFER_VERSION, 1, &m_buffer};
    ULONG m_attributes = 0;
};

}  // namespace

TlsHandshake::TlsHandshake(SecurityHandles& security, const TokenChannel& channel,
                           Milliseconds replyTimeout)
    : m_security(security), m_channel(channel), m_replyTimeout(replyTimeout) {}

int TlsHandshake::Run() {
    const SECURITY_STATUS acquired = m_security.AcquireCredentials();
    if (acquired != SEC_E_OK) {
        return Fail(CredentialsText(acquired));
    }
    m_input.resize(kInputSize);
    int result = Step(nullptr, nullptr);
    while (result == 0 && m_status != SEC_E_OK) {
        if (!m_goesOn) {
            result = Receive();
        }
        if (result == 0) {
            result = TakeInput();
        }
    }
    return result;
}

// One call of the package; what it wants to be said is sent.
int TlsHandshake::Step(SecBufferDesc* input, const SecBuffer* rest) {
    OutputToken token;
    m_status =
        m_security.Negotiate(m_channel.server, input, token.description(), token.attributes());
    m_goesOn = false;
    if (m_status == SEC_E_INCOMPLETE_MESSAGE) {
        return 0;
    }
    if (m_status != SEC_E_OK && m_status != SEC_I_CONTINUE_NEEDED) {
        return FailNegotiation(m_status);
    }
    if (rest && KeepRest(*rest) != 0) {
        return -1;
    }
    return token.bytes().empty() || SendToken(m_channel, token.bytes(), m_replyTimeout) == 1 ? 0
                                                                                             : -1;
}

int TlsHandshake::Receive() {
    const std::span<char> room = std::span(m_input).subspan(m_used);
    if (room.empty()) {
        return FailNegotiation(SEC_E_INCOMPLETE_MESSAGE);
    }
    const Milliseconds left = m_replyTimeout * kHandshakeTimeouts - m_watch.elapsed();
    const int count =
        left.count() > 0 ? ReceiveToken(m_channel, room, std::min(left, m_replyTimeout)) : 0;
    if (count == 0) {
        return Fail(SilentHandshakeText());
    }
    if (count < 0) {
        return -1;
    }
    m_used += static_cast<std::size_t>(count);
    return 0;
}

int TlsHandshake::TakeInput() {
    const std::span<const char> bytes = std::span(m_input).first(m_used);
    if (!m_recognized && !MayBeginTlsHandshake(bytes)) {
        return FailNegotiation(SEC_E_INVALID_TOKEN);
    }
    if (!MayBeginTlsRecord(bytes)) {
        return FailNegotiation(SEC_E_ILLEGAL_MESSAGE);
    }
    SecBuffer buffers[] = {{static_cast<ULONG>(m_used), SECBUFFER_TOKEN, m_input.data()},
                           {0, SECBUFFER_EMPTY, nullptr}};
    SecBufferDesc input{SECBUFFER_VERSION, 2, buffers};
    return Step(&input, &buffers[1]);
}

// Moves the bytes that the package left to the front. It may have left whole records, so as long as
// it consumes any it is called again before more is received.
int TlsHandshake::KeepRest(const SecBuffer& rest) {
    const std::size_t size = rest.BufferType == SECBUFFER_EXTRA ? rest.cbBuffer : 0;
    if (size > m_used) {
        return Fail(ExtraBufferText());
    }
    const auto end = m_input.begin() + static_cast<std::ptrdiff_t>(m_used);
    std::copy(end - static_cast<std::ptrdiff_t>(size), end, m_input.begin());
    const bool consumed = size < m_used;
    m_recognized = m_recognized || consumed;
    m_goesOn = consumed && size > 0;
    m_used = size;
    return 0;
}

int TlsHandshake::Fail(WideString text) {
    m_channel.replyText = std::move(text);
    return -1;
}

int TlsHandshake::FailNegotiation(SECURITY_STATUS status) {
    Fail(NegotiationText(m_channel.server, status));
    return status == SEC_E_INVALID_TOKEN ? -2 : -1;
}

}  // namespace quorvane

#include "smtp/secure_channel.h"

#include "smtp/failure_text.h"

namespace quorvane {

int SecureChannel::Handshake() {
    m_replyText = NoEncryptionText();
    return -1;
}

int SecureChannel::Send(std::string_view) {
    return Handshake();
}

int SecureChannel::Receive(std::span<char>, bool) {
    return Handshake();
}

}  // namespace quorvane

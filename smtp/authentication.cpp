// The session's choice of an authentication mechanism, and AUTH LOGIN.
#include "smtp/authentication.h"

#include <span>
#include <string>

#include "mime/base64.h"
#include "smtp/session.h"

namespace quorvane {
namespace {

constexpr int kMaxAttempts = 3;

// AUTH LOGIN has two prompts; a server that asks more often than this never comes to an end.
constexpr int kMaxPrompts = 10;

constexpr std::size_t kPromptStart = 4;  // behind "334 "

WideString ToUpper(WideView text) {
    WideString upper(text);
    for (WCHAR& c : upper) {
        if (c >= WCHAR('a') && c <= WCHAR('z')) {
            c = static_cast<WCHAR>(c - WCHAR('a') + WCHAR('A'));
        }
    }
    return upper;
}

// The decoded text up to its first zero byte, which is where padding begins.
std::string DecodeBase64(const std::string& encoded) {
    CBase64 codec;
    codec.Decode(encoded.c_str());
    const auto* const decoded = reinterpret_cast<const char*>(codec.GetDecoded());
    return decoded ? decoded : "";
}

std::string EncodeBase64(const std::string& text) {
    std::string encoded;
    AppendBase64({reinterpret_cast<const BYTE*>(text.data()), text.size()}, encoded);
    return encoded;
}

}  // namespace

AuthOffers ParseAuthOffers(WideView capabilities) {
    const WideString text = ToUpper(capabilities);
    const std::size_t start = text.find(OLESTR("AUTH"));
    if (start == WideString::npos) {
        return {};
    }
    return {.login = text.find(OLESTR("LOGIN"), start) != WideString::npos,
            .ntlm = text.find(OLESTR("NTLM"), start) != WideString::npos};
}

bool ContainsIgnoreCase(WideView text, WideView word) {
    return ToUpper(text).find(word) != WideString::npos;
}

int CSmtp::Authenticate(const WideString& capabilities) {
    if (m_user.empty()) {
        return 0;
    }
    AuthOffers offers = ParseAuthOffers(capabilities);
    int result = 0;
    for (int attempt = 1; attempt <= kMaxAttempts; ++attempt) {
        if (offers.ntlm && m_spa) {
            result = AuthNtlm();
            if (result == 502 || result == 504) {
                offers.ntlm = false;
                continue;
            }
        } else if (!offers.login && !offers.ntlm) {
            return 0;
        } else {
            // Also when only NTLM is offered and not allowed: some servers take LOGIN unannounced.
            result = AuthLogin();
            if (result == 502) {
                return 0;
            }
        }
        if (result != 1) {
            break;
        }
    }
    return result == 235 ? 0 : result;
}

int CSmtp::AuthLogin() {
    int reply = SendCommand(WriteCommand("AUTH LOGIN\r\n"));
    for (int prompts = 0; reply == 334 && prompts < kMaxPrompts; ++prompts) {
        const WideString* const answer = AnswerToPrompt();
        if (!answer) {
            return reply;
        }
        reply = SendCommand(WriteCommand("%s\r\n", EncodeBase64(ToAnsi(*answer))));
        if (reply == 535) {
            reply = OnAuthFailed(reply, m_replyText);
            if (reply == 0) {
                m_replyText = WrongCredentialsText();
                return 535;
            }
        }
    }
    return reply;
}

// What the prompt in the reply text asks for; null when it is neither user name nor password.
const WideString* CSmtp::AnswerToPrompt() const {
    const std::string reply = ToAnsi(m_replyText);
    const std::string prompt =
        reply.size() > kPromptStart ? DecodeBase64(reply.substr(kPromptStart)) : "";
    if (EqualIgnoreCase(std::string_view(prompt), std::string_view("Username:"))) {
        return &m_user;
    }
    if (EqualIgnoreCase(std::string_view(prompt), std::string_view("Password:"))) {
        return &m_password;
    }
    return nullptr;
}

// Answers for a server that doesn't know the mechanism: this version can't speak it.
int CSmtp::AuthNtlm() {
    return 504;
}

}  // namespace quorvane

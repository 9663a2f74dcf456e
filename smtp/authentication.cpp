// The session's choice of an authentication mechanism, AUTH LOGIN and AUTH NTLM.
#include "smtp/authentication.h"

#include <span>
#include <string>
#include <vector>

#include "mime/base64.h"
#include "smtp/ntlm.h"
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

// What follows the code in the text of a reply.
std::string ChallengeOf(const WideString& replyText) {
    std::string reply = ToAnsi(replyText);
    reply.erase(0, kPromptStart);
    return reply;
}

// The decoded text up to its first zero byte, which is where padding begins.
std::string DecodePrompt(const std::string& encoded) {
    CBase64 codec;
    codec.Decode(encoded.c_str());
    const auto* const decoded = reinterpret_cast<const char*>(codec.GetDecoded());
    return decoded ? decoded : "";
}

// The bytes of a challenge without those that padding stands for. Some servers write a "+" before
// it, as the other protocols that use NTLM do.
std::vector<BYTE> DecodeChallenge(std::string_view encoded) {
    encoded = encoded.substr(0, encoded.find('\r'));
    if (encoded.starts_with("+ ")) {
        encoded.remove_prefix(2);
    }
    encoded = encoded.substr(0, encoded.find_last_not_of('=') + 1);
    CBase64 codec;
    codec.Decode(reinterpret_cast<const BYTE*>(encoded.data()), static_cast<DWORD>(encoded.size()));
    const BYTE* const decoded = codec.GetDecoded();
    const std::size_t size = codec.EncodedLength() * std::size_t{3} / 4;
    return {decoded, decoded + size};
}

std::string EncodeBase64(std::span<const BYTE> bytes) {
    std::string encoded;
    AppendBase64(bytes, encoded);
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
    AuthOffers offers = ParseAuthOffers(capabilities);  // which the next reply may overwrite
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
        reply = SendCommand(WriteCommand("%s\r\n", EncodeBase64(BytesOf(ToAnsi(*answer)))));
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
    const std::string prompt = DecodePrompt(ChallengeOf(m_replyText));
    if (EqualIgnoreCase(std::string_view(prompt), std::string_view("Username:"))) {
        return &m_user;
    }
    if (EqualIgnoreCase(std::string_view(prompt), std::string_view("Password:"))) {
        return &m_password;
    }
    return nullptr;
}

int CSmtp::AuthNtlm() {
    const std::string user = ToAnsi(m_user);
    if (!IsNtlmUserName(user)) {
        return Fail(TooLongText(OLESTR("NTLM user name"), m_user, kMaxNtlmNameLength));
    }
    const std::vector<BYTE> negotiation = MakeNtlmNegotiation(user, ToAnsi(m_domain));
    int reply = SendCommand(WriteCommand("AUTH NTLM %s\r\n", EncodeBase64(negotiation)));
    if (reply != 334) {
        return reply;
    }
    const auto response =
        MakeNtlmResponse(DecodeChallenge(ChallengeOf(m_replyText)), user, ToAnsi(m_password));
    if (!response) {
        m_replyText = UnusableChallengeText(m_server);
        return reply;
    }
    reply = SendCommand(WriteCommand("%s\r\n", EncodeBase64(*response)));
    if (reply == 535) {
        const int verdict = OnAuthFailed(reply, m_replyText);
        return verdict != 0 ? verdict : reply;
    }
    return reply;
}

}  // namespace quorvane

#include "tests/faults/mail_server.h"

namespace quorvane::faults {
namespace {

constexpr std::string_view kMessageEnd = "\r\n.\r\n";

}  // namespace

MailServer::MailServer(const Dialogue& dialogue) : dialogue_(dialogue) {
    if (dialogue.encryption == Encryption::Implicit) tls_ = testing::MakeTlsServer();
}

std::string MailServer::Greeting() {
    return tls_ ? "" : "220 server.test\r\n";
}

std::string MailServer::Take(std::string_view bytes) {
    if (!tls_) {
        std::string answer = TakeText(bytes);
        if (startTls_) {
            startTls_ = false;
            tls_ = testing::MakeTlsServer();
        }
        return answer;
    }
    if (!tls_->established()) {
        std::string answer = tls_->Handshake(bytes);
        if (tls_->established() && dialogue_.encryption == Encryption::Implicit) {
            answer += tls_->Encrypt("220 server.test\r\n");
        }
        return answer;
    }
    const std::string answer = TakeText(tls_->Decrypt(bytes));
    return answer.empty() ? answer : tls_->Encrypt(answer);
}

std::string MailServer::TakeText(std::string_view text) {
    input_ += text;
    std::string answer;
    while (!inMessage_ && !startTls_) {
        const std::size_t end = input_.find("\r\n");
        if (end == std::string::npos) return answer;
        const std::string line = input_.substr(0, end);
        input_.erase(0, end + 2);
        answer += TakeLine(line);
    }
    return answer + (inMessage_ ? TakeMessage() : "");
}

std::string MailServer::TakeLine(const std::string& line) {
    if (prompts_ > 0) {
        authenticated_ = --prompts_ == 0;
        return authenticated_ ? "235 welcome\r\n" : "334 UGFzc3dvcmQ6\r\n";
    }
    if (line.starts_with("EHLO ")) {
        std::string answer = "250-server.test\r\n";
        if (dialogue_.encryption == Encryption::StartTls && !tls_) answer += "250-STARTTLS\r\n";
        if (dialogue_.authenticates) answer += "250-AUTH LOGIN\r\n";
        return answer + "250 SIZE\r\n";
    }
    if (line == "STARTTLS") {
        startTls_ = true;
        return "220 go ahead\r\n";
    }
    if (line == "AUTH LOGIN") {
        prompts_ = 2;
        return "334 VXNlcm5hbWU6\r\n";
    }
    if (line == "QUIT") {
        goodbye_ = true;
        return "221 bye\r\n";
    }
    if (dialogue_.authenticates && !authenticated_) return "554 who are you?\r\n";
    if (line.starts_with("MAIL FROM:") || line.starts_with("RCPT TO:")) return "250 ok\r\n";
    if (line != "DATA") return "500 what?\r\n";
    inMessage_ = true;
    return "354 go on\r\n";
}

std::string MailServer::TakeMessage() {
    const std::size_t end = input_.find(kMessageEnd);
    if (end == std::string::npos) return {};
    message_ = input_.substr(0, end);
    input_.erase(0, end + kMessageEnd.size());
    inMessage_ = false;
    ++accepted_;
    return "250 kept\r\n";
}

}  // namespace quorvane::faults

#include "tests/faults/mail_client.h"

#include <stdexcept>

#include "tests/support/objects.h"

namespace quorvane::faults {
namespace {

constexpr std::string_view kFirstWords = "The first line.";
constexpr std::string_view kLastWords = "The last line.";

void Check(HRESULT hr) {
    if (hr != S_OK) throw std::runtime_error("the client can't be set up");
}

}  // namespace

MailClient::MailClient() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    Check(Make<CSmtpMail>(mail_));
    Check(mail_->put_SmtpServer(Text(OLESTR("127.0.0.1"))));
    Check(mail_->put_ReplyTimeout(1));
    Check(mail_->put_ConnectAttempts(1));
    Check(mail_->put_SenderHostname(Text(OLESTR("client.test"))));

    message_ = MessageOf(OLESTR("me@client.test"), 0);
    Check(message_->put_MessageSubject(Text(OLESTR("Test"))));
    Check(message_->put_MessageBody(Text(OLESTR("The first line.\r\n.dot\r\nThe last line."))));
}

MailClient::~MailClient() {
    message_.Reset();
    mail_.Reset();
    CoUninitialize();
}

Outcome MailClient::Send(int port, const Dialogue& dialogue) {
    const WideView user = dialogue.authenticates ? OLESTR("user") : OLESTR("");
    mail_->put_SmtpPort(port);
    mail_->put_SmtpSSL(dialogue.encryption == Encryption::None ? VARIANT_FALSE : VARIANT_TRUE);
    mail_->put_SmtpUsername(Text(user));
    mail_->put_SmtpPassword(Text(user));
    Outcome outcome{};
    BstrHolder text;
    outcome.status = mail_->Send(message_.Get(), VARIANT_TRUE, text.Receive(), &outcome.code);
    outcome.text = ToUtf8(FromBstr(text.Get()));
    return outcome;
}

bool IsWhole(const std::string& message) {
    const std::size_t first = message.find(kFirstWords);
    return first != std::string::npos && message.find("\r\n..dot\r\n") > first &&
           message.find(kLastWords) != std::string::npos;
}

}  // namespace quorvane::faults

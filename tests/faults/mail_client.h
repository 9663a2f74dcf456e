// The client under test: SmtpMail, as a program uses it.
#pragma once

#include <string>

#include "automation/com_ptr.h"
#include "automation/module.h"
#include "component/smtp_mail.h"
#include "tests/faults/mail_server.h"

namespace quorvane::faults {

struct Outcome {
    HRESULT status;
    LONG code;
    std::string text;
};

// Sends the same message over and over; for one thread.
class MailClient {
public:
    MailClient();
    ~MailClient();
    MailClient(const MailClient&) = delete;
    MailClient& operator=(const MailClient&) = delete;

    Outcome Send(int port, const Dialogue& dialogue);

private:
    ComPtr<ISmtpMail> mail_;
    ComPtr<IMailMessage> message_;
};

// What has arrived is the whole message.
bool IsWhole(const std::string& message);

}  // namespace quorvane::faults

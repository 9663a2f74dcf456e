// A client of SmtpMail that queues small messages for a peer.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "component/smtp_mail.h"
#include "model/mail_address.h"
#include "model/mail_message.h"
#include "tests/support/com.h"

namespace quorvane {

// True when the condition comes true within twenty seconds.
template <class Condition>
bool Eventually(Condition&& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

class AsyncClient {
public:
    // Reply time-outs don't help a test along: they come after ten minutes.
    explicit AsyncClient(int port) : mail(New<CSmtpMail, ISmtpMail>()) {
        mail->put_SmtpServer(Bstr(OLESTR("127.0.0.1")));
        mail->put_SmtpPort(port);
        mail->put_SenderHostname(Bstr(OLESTR("client.test")));
        mail->put_ReplyTimeout(600);
        mail->put_ConnectAttempts(1);
    }

    static ComPtr<IMailMessage> Message(WideView sender, std::size_t bodySize = 4) {
        auto message = New<CMailMessage, IMailMessage>();
        const auto address = New<CMailAddress, IMailAddress>();
        address->put_Address(Bstr(sender));
        message->put_Sender(address.Get());
        message->AddRecipient(address.Get());
        message->put_MessageBody(Bstr(WideString(bodySize, WCHAR('x'))));
        return message;
    }

    // Queues a message that the sender's address says how to treat, and returns its number.
    LONG Send(WideView sender, std::size_t bodySize = 4) {
        LONG number = 0;
        EXPECT_EQ(mail->SendAsync(Message(sender, bodySize).Get(), VARIANT_TRUE, &number), S_OK);
        return number;
    }

    LONG Status(LONG number) {
        MailStatus status = MailStatusQueued;
        EXPECT_EQ(mail->GetStatus(number, &status), S_OK);
        return EnumerationValue(status);
    }
    bool WaitForStatus(LONG number, LONG status) {
        return Eventually([&] { return Status(number) == status; });
    }
    LONG QueueSize() {
        LONG size = -1;
        EXPECT_EQ(mail->GetQueueSize(&size), S_OK);
        return size;
    }
    LONG Code(LONG number) {
        LONG code = 99;
        EXPECT_EQ(mail->GetErrorCode(number, &code), S_OK);
        return code;
    }
    std::string Text(LONG number) {
        BstrHolder text;
        EXPECT_EQ(mail->GetErrorDescription(number, text.Receive()), S_OK);
        return Show(FromBstr(text.Get()));
    }

    ComPtr<ISmtpMail> mail;
};

}  // namespace quorvane

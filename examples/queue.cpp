// Sends in the background: a large mail with a bar that shows how far it is, then ten small ones
// whose status is told as it changes.
//
//     queue-example server [port]
#include <quorvane_events.hpp>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>

namespace qv = quorvane::client;
using qv::Bstr;
using qv::Check;
using qv::ComPtr;

constexpr const char* kWords[] = {"is queued", "is being sent", "was sent", "was not sent",
                                  "was cancelled"};
constexpr std::chrono::milliseconds kMoment{50};

ComPtr<IMailAddress> Address(const char* text) {
    auto address = qv::Create<IMailAddress>();
    Check(address->put_Address(Bstr(text)), address);
    return address;
}

ComPtr<IMailMessage> Compose(const std::string& subject, const std::string& body) {
    auto message = qv::Create<IMailMessage>();
    Check(message->put_Sender(Address("Zoe <zoe@bjork.example>")), message);
    Check(message->AddRecipient(Address("Ann Miller <ann@example.org>")), message);
    Check(message->put_MessageSubject(Bstr(subject)), message);
    Check(message->put_MessageBody(Bstr(body)), message);
    return message;
}

std::string LongText(int lines) {
    std::string text;
    while (lines-- > 0) text += std::string(62, '*') + "\r\n";
    return text;
}

void ShowBar(LONG bytesSent, LONG bytesTotal) {
    constexpr int kWidth = 40;
    const int full = static_cast<int>(static_cast<long long>(bytesSent) * kWidth / bytesTotal);
    std::cout << "\r[" << std::string(full, '#') << std::string(kWidth - full, '.') << "] "
              << 100LL * bytesSent / bytesTotal << " %" << (full == kWidth ? "\n" : "")
              << std::flush;
}

LONG Queue(const ComPtr<ISmtpMail>& mail, const ComPtr<IMailMessage>& message) {
    LONG number = 0;
    Check(mail->SendAsync(message, VARIANT_TRUE, &number), mail);
    return number;
}

// Tells of those that were not sent; returns how many were.
int CountSent(const ComPtr<ISmtpMail>& mail, LONG last) {
    int sent = 0;
    for (LONG number = 1; number <= last; ++number) {
        LONG code = 0;
        Bstr text;
        Check(mail->GetErrorCode(number, &code), mail);
        Check(mail->GetErrorDescription(number, text.Put()), mail);
        if (code == 0) {
            ++sent;
        } else {
            std::cerr << "Message " << number << ": " << code << ' ' << text.utf8() << '\n';
        }
    }
    return sent;
}

int main(int count, char** arguments) {
    if (count < 2) {
        std::cerr << "Usage: queue-example server [port]\n";
        return 2;
    }
    try {
        const qv::Apartment apartment;
        auto mail = qv::Create<ISmtpMail>();
        Check(mail->put_SmtpServer(Bstr(arguments[1])), mail);
        if (count > 2) Check(mail->put_SmtpPort(std::atoi(arguments[2])), mail);
        LONG ended = 0;
        const qv::EventListener listener(
            mail,
            [&](LONG number, MailStatus status) {
                if (status >= MailStatusSent) ++ended;
                std::cout << "Message " << number << ' ' << kWords[status] << '\n';
            },
            [](LONG, LONG bytesSent, LONG bytesTotal) { ShowBar(bytesSent, bytesTotal); });

        // Events arrive while messages are taken.
        LONG last = Queue(mail, Compose("A long one", LongText(32000)));
        while (ended < last) qv::TakeMessages(kMoment);
        for (int i = 1; i <= 10; ++i) {
            last = Queue(mail, Compose("Short one " + std::to_string(i), "Dinner at eight?"));
        }
        while (ended < last) qv::TakeMessages(kMoment);
        const int sent = CountSent(mail, last);
        std::cout << sent << " of " << last << " messages sent.\n";
        return sent == last ? 0 : 1;
    } catch (const qv::Error& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}

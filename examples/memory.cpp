// Sends an attachment that never was a file.
//
//     memory-example server [port]
#include <quorvane.hpp>

#include <cstdlib>
#include <iostream>
#include <string>

namespace qv = quorvane::client;
using qv::Bstr;
using qv::Check;
using qv::ComPtr;

ComPtr<IMailAddress> Address(const char* text) {
    auto address = qv::Create<IMailAddress>();
    Check(address->put_Address(Bstr(text)), address);
    return address;
}

// The attachment keeps a copy of the bytes.
ComPtr<IMailAttachment> Attachment(const char* name, const char* type, std::string bytes) {
    auto attachment = qv::Create<IMailAttachment>();
    Check(attachment->put_Name(Bstr(name)), attachment);
    Check(attachment->put_ContentType(Bstr(type)), attachment);
    Check(attachment->LoadFromMemory(reinterpret_cast<unsigned char*>(bytes.data()),
                                     static_cast<LONG>(bytes.size())),
          attachment);
    return attachment;
}

int main(int count, char** arguments) {
    if (count < 2) {
        std::cerr << "Usage: memory-example server [port]\n";
        return 2;
    }
    try {
        const qv::Apartment apartment;
        std::string table = "n,square\r\n";
        for (int n = 1; n <= 100; ++n) {
            table += std::to_string(n) + "," + std::to_string(n * n) + "\r\n";
        }
        auto message = qv::Create<IMailMessage>();
        Check(message->put_Sender(Address("Zoe <zoe@bjork.example>")), message);
        Check(message->AddRecipient(Address("ann@example.org")), message);
        Check(message->put_MessageSubject(Bstr("Squares")), message);
        Check(message->put_MessageBody(Bstr("The table is attached.")), message);
        Check(message->AddAttachment(Attachment("squares.csv", "text/csv", table)), message);

        auto mail = qv::Create<ISmtpMail>();
        Check(mail->put_SmtpServer(Bstr(arguments[1])), mail);
        if (count > 2) Check(mail->put_SmtpPort(std::atoi(arguments[2])), mail);
        const qv::Outcome outcome = qv::Send(mail, message);
        if (!outcome.sent()) {
            std::cerr << "Not sent (" << outcome.code << "): " << outcome.text << '\n';
            return 1;
        }
        std::cout << "Sent.\n";
    } catch (const qv::Error& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}

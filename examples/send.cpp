// Sends the sample message: an HTML body with a picture inside it, the same as plain text for
// readers without HTML, and two attachments.
//
//     send-example folder server [port]
//
// The folder is examples/sample. Text is UTF-8.
#include <quorvane.hpp>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>

namespace qv = quorvane::client;
using qv::Bstr;
using qv::Check;
using qv::ComPtr;

std::string ReadText(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

ComPtr<IMailAddress> Person(const char* name, const char* address) {
    auto person = qv::Create<IMailAddress>();
    Check(person->put_Name(Bstr(name)), person);
    Check(person->put_Address(Bstr(address)), person);
    return person;
}

ComPtr<IMailAttachment> FileToAttach(const std::string& file, const char* type, const char* name) {
    auto attachment = qv::Create<IMailAttachment>();
    Check(attachment->put_File(Bstr(file)), attachment);
    Check(attachment->put_ContentType(Bstr(type)), attachment);
    Check(attachment->put_Name(Bstr(name)), attachment);
    return attachment;
}

ComPtr<IMailMessage> Compose(const std::string& folder) {
    auto message = qv::Create<IMailMessage>();
    Check(message->put_Sender(Person("Zoë Björk", "zoe@bjork.example")), message);
    Check(message->AddRecipient(Person("Ann Miller", "ann@example.org")), message);
    Check(message->AddCcRecipient(Person("", "music@example.org")), message);
    Check(message->AddBccRecipient(Person("", "archive@bjork.example")), message);
    Check(message->put_MessageSubject(Bstr("Midsummer at Café Björk – programme and menu")),
          message);

    Check(message->put_MessageBodyFormat(MailFormatHtml), message);
    Check(message->put_MessageBody(Bstr(ReadText(folder + "/body.html"))), message);
    Check(message->put_AltMessageBody(Bstr(ReadText(folder + "/body.txt"))), message);

    auto picture = FileToAttach(folder + "/logo.png", "image/png", "logo.png");
    Check(picture->put_Inline(VARIANT_TRUE), picture);
    Check(picture->put_ContentId(Bstr("logo@bjork.example")), picture);
    Check(message->AddAttachment(picture), message);

    auto programme = FileToAttach(folder + "/programme.pdf", "application/pdf", "programme.pdf");
    Check(message->AddAttachment(programme), message);

    auto menu = FileToAttach(folder + "/menu.csv", "text/csv", "Menü.csv");
    Check(menu->put_Charset(Bstr("utf-8")), menu);
    Check(message->AddAttachment(menu), message);
    return message;
}

int main(int count, char** arguments) {
    if (count < 3) {
        std::cerr << "Usage: send-example folder server [port]\n";
        return 2;
    }
    try {
        const qv::Apartment apartment;
        auto mail = qv::Create<ISmtpMail>();
        Check(mail->put_SmtpServer(Bstr(arguments[2])), mail);
        if (count > 3) Check(mail->put_SmtpPort(std::atoi(arguments[3])), mail);

        const qv::Outcome outcome = qv::Send(mail, Compose(arguments[1]));
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

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
std::string ReadText(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

qv::Message Compose(const std::string& folder) {
    qv::Message message;
    message.From(qv::Mailbox("Zoë Björk", "zoe@bjork.example"))
        .To(qv::Mailbox("Ann Miller", "ann@example.org"))
        .Cc("music@example.org")
        .Bcc("archive@bjork.example")
        .Subject("Midsummer at Café Björk – programme and menu");

    message.Html(ReadText(folder + "/body.html")).Alternative(ReadText(folder + "/body.txt"));

    qv::Attachment picture(folder + "/logo.png");
    message.Attach(picture.ContentType("image/png").Inline("logo@bjork.example"));
    qv::Attachment programme(folder + "/programme.pdf");
    message.Attach(programme.ContentType("application/pdf"));
    qv::Attachment menu(folder + "/menu.csv");
    message.Attach(menu.Name("Menü.csv").ContentType("text/csv").Charset("utf-8"));
    return message;
}

int main(int count, char** arguments) {
    if (count < 3) {
        std::cerr << "Usage: send-example folder server [port]\n";
        return 2;
    }
    try {
        const qv::Apartment apartment;
        qv::Mailer mailer(arguments[2], count > 3 ? std::atoi(arguments[3]) : 25);
        const qv::Outcome outcome = mailer.Send(Compose(arguments[1]));
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

// Sends an HTML file with the pictures that it shows to three people, and the same as plain text
// for readers without HTML.
//
//     newsletter-example folder server [port]
//
// The folder is examples/newsletter.
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
    message.From("Zoe <zoe@bjork.example>").ReplyTo("Desk <desk@bjork.example>");
    message.To("Ann Miller <ann@example.org>").To("bob@example.org").Bcc("archive@bjork.example");
    message.Header("List-Unsubscribe", "<mailto:desk@bjork.example?subject=unsubscribe>");
    message.Subject("Midsummer")
        .ImportHtml(folder + "/newsletter.html")
        .Alternative(ReadText(folder + "/newsletter.txt"));
    return message;
}

int main(int count, char** arguments) {
    if (count < 3) {
        std::cerr << "Usage: newsletter-example folder server [port]\n";
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

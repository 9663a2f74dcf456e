// Sends a plain text.
//
//     simple-example server [port]
#include <quorvane.hpp>

#include <cstdlib>
#include <iostream>

namespace qv = quorvane::client;

int main(int count, char** arguments) {
    if (count < 2) {
        std::cerr << "Usage: simple-example server [port]\n";
        return 2;
    }
    const int port = count > 2 ? std::atoi(arguments[2]) : 25;

    const qv::Apartment apartment;
    qv::Message message;
    message.From("Zoë <zoe@bjork.example>").To("ann@example.org").To("bob@example.org");
    message.Subject("Dinner").Text("Dinner at eight?");
    const qv::Outcome outcome = qv::Mailer(arguments[1], port).Send(message);

    std::cout << (outcome.sent() ? "Sent." : outcome.text) << '\n';
    return outcome.sent() ? 0 : 1;
}

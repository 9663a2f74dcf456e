// Sends an attachment that never was a file.
//
//     memory-example server [port]
#include <quorvane.hpp>

#include <cstdlib>
#include <iostream>
#include <string>

namespace qv = quorvane::client;

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
        qv::Message message;
        message.From("Zoe <zoe@bjork.example>")
            .To("ann@example.org")
            .Subject("Squares")
            .Text("The table is attached.")
            .Attach(qv::Attachment("squares.csv", table).ContentType("text/csv"));

        qv::Mailer mailer(arguments[1], count > 2 ? std::atoi(arguments[2]) : 25);
        const qv::Outcome outcome = mailer.Send(message);
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

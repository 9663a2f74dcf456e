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
constexpr const char* kWords[] = {"is queued", "is being sent", "was sent", "was not sent",
                                  "was cancelled"};
constexpr std::chrono::milliseconds kMoment{50};

qv::Message Compose(const std::string& subject, const std::string& body) {
    qv::Message message;
    message.From("Zoe <zoe@bjork.example>").To("Ann Miller <ann@example.org>");
    message.Subject(subject).Text(body);
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

// Tells of those that were not sent; returns how many were.
int CountSent(const qv::Mailer& mailer, LONG last) {
    int sent = 0;
    for (LONG number = 1; number <= last; ++number) {
        const qv::Outcome outcome = mailer.OutcomeOf(number);
        if (outcome.sent()) {
            ++sent;
        } else {
            std::cerr << "Message " << number << ": " << outcome.code << ' ' << outcome.text
                      << '\n';
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
        qv::Mailer mailer(arguments[1], count > 2 ? std::atoi(arguments[2]) : 25);
        LONG ended = 0;
        const qv::EventListener listener(
            mailer,
            [&](LONG number, MailStatus status) {
                if (status >= MailStatusSent) ++ended;
                std::cout << "Message " << number << ' ' << kWords[status] << '\n';
            },
            [](LONG, LONG bytesSent, LONG bytesTotal) { ShowBar(bytesSent, bytesTotal); });

        // Events arrive while messages are taken.
        LONG last = mailer.Queue(Compose("A long one", LongText(32000)));
        while (ended < last) qv::TakeMessages(kMoment);
        for (int i = 1; i <= 10; ++i) {
            last = mailer.Queue(Compose("Short one " + std::to_string(i), "Dinner at eight?"));
        }
        while (ended < last) qv::TakeMessages(kMoment);
        const int sent = CountSent(mailer, last);
        std::cout << sent << " of " << last << " messages sent.\n";
        return sent == last ? 0 : 1;
    } catch (const qv::Error& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}

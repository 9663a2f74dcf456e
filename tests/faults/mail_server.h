// A mail server without a socket: what it says to the bytes that a client sends.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tests/servers/tls_server.h"

namespace quorvane::faults {

enum class Encryption { None, StartTls, Implicit };

// How a client reaches the server.
struct Dialogue {
    Encryption encryption = Encryption::None;
    bool authenticates = false;
};

class MailServer {
public:
    explicit MailServer(const Dialogue& dialogue);

    // Said when the connection is made.
    std::string Greeting();
    // Takes what has arrived and returns the answer, empty when there is nothing to answer yet.
    std::string Take(std::string_view bytes);

    // Messages that the server has taken on, and the text of the last one without its final dot.
    int accepted() const { return accepted_; }
    const std::string& message() const { return message_; }
    // True once the client has said QUIT.
    bool saidGoodbye() const { return goodbye_; }

private:
    std::string TakeText(std::string_view text);
    std::string TakeLine(const std::string& line);
    std::string TakeMessage();

    const Dialogue dialogue_;
    std::unique_ptr<testing::TlsServer> tls_;  // null while the connection is in clear
    std::string input_;
    int prompts_ = 0;  // AUTH LOGIN answers that are due
    bool authenticated_ = false;
    bool inMessage_ = false;
    bool startTls_ = false;  // the reply in hand is the last one in clear
    bool goodbye_ = false;
    int accepted_ = 0;
    std::string message_;
};

}  // namespace quorvane::faults

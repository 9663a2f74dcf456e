// Dialogues between a session and a scripted server, read from files of cases. How a case is
// written stands in tests/smtp/cases/README.md.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/servers/script.h"

namespace quorvane::testing {

struct Call {
    enum class Kind { Connect, Send, SendTo, Close, WaitForServer, WaitForEnd };
    Kind kind;
    std::vector<std::string> recipients{};  // SendTo
    int code = 0;
    std::vector<std::string> texts{};  // any of them; none: the error text isn't looked at
};

struct DialogueCase {
    std::string name;
    std::string place;  // file and line

    // Settings of the session.
    std::string server = "127.0.0.1";
    std::string user;
    std::string password;
    std::string helo = "client.example.test";
    int timeout = 5;
    int attempts = 1;
    bool spa = false;
    int tls = 0;
    int authVerdict = 0;  // what OnAuthFailed answers

    // The message.
    std::string from = "alice@example.test";
    std::vector<std::string> to;  // bob@example.test when there is no recipient at all
    std::vector<std::string> cc;
    std::vector<std::string> bcc;
    bool noRecipients = false;
    std::string body = "Hello";
    std::size_t composedSize = 0;  // not 0: the body is filled up until the composed text has it

    std::vector<Delivery> deliveries{Delivery::Whole, Delivery::ByLine, Delivery::ByByte};
    std::vector<Script> connections;
    std::vector<Call> calls;

    // What else must come out.
    std::vector<unsigned> progress;  // bytes in each report
    bool anyProgress = false;        // the reports aren't looked at
    unsigned stopAt = 0;             // the report that is answered with 0
    std::vector<std::string> wire;   // texts that the message on the wire holds
    std::optional<int> accepted;     // connections; else as many as scripts
    int leastDuration = 0;           // milliseconds of all calls
    bool slow = false;               // mostly waits: once, beside the other slow ones
};

// All cases of the files in the folder, those of usual.txt first. Throws std::runtime_error with
// file and line for what it can't read.
std::vector<DialogueCase> LoadDialogueCases(const std::string& folder);

}  // namespace quorvane::testing

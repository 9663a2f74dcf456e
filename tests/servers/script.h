// One connection as a script tells it: what the client must say and what the server answers.
//
//     S: 220 mx.example.test ESMTP         the server says this line; lines that follow each other
//                                          are one reply
//     C: EHLO client.example.test          the client must say exactly this line
//     C: (message)                         the client must say the message, as the test expects it
//     C: (message up to 8192)              and this many bytes of its beginning
//     C: (handshake)                       the first record of a TLS handshake
//     S part: "250-mx"                     the server says these bytes, without a line end
//     S filler: 2048 "x"                   the server says this, repeated, up to that many bytes
//     server secures                       the connection with TLS, where there is a TLS server:
//     each
//                                          piece of what it says is a record then
//     server waits 300                     milliseconds
//     server closes                        the connection
//     server resets                        the connection, leaving the client's last line unread
//     server stops reading                 for good, but keeps the connection
//
// At the end of its script the server waits for the client to close the connection, and any byte
// that the client still sends is a deviation. Texts in quotes know \r \n \t \0 \\ \" and \xHH.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane::testing {

struct Step {
    enum class Kind {
        Say,
        SayPart,
        Expect,
        ExpectMessage,
        ExpectBeginning,
        ExpectHandshake,
        Secure,
        Wait,
        Close,
        Reset,
        StopReading
    };
    Kind kind;
    std::string text;  // Say: with line end; Expect: without
    int number = 0;    // Wait: milliseconds; ExpectBeginning: bytes
};

using Script = std::vector<Step>;

// How the server hands its replies to the network.
enum class Delivery { Whole, ByLine, ByByte };

// Adds the step that the line tells, if it is a step of a script; throws std::invalid_argument when
// it is a wrong one.
bool ParseStep(std::string_view line, Script& script);
// A whole script; throws std::invalid_argument for a line that is no step.
Script ParseScript(std::initializer_list<std::string_view> lines);

// Takes a quoted text off the front of `line`, blanks included; throws std::invalid_argument.
std::string TakeQuoted(std::string_view& line);

// Takes the prefix off the front of `line`, and the blanks behind it, if the line begins with it.
bool TakePrefix(std::string_view& line, std::string_view prefix);

// Takes a whole number off the front of `line`; throws std::invalid_argument.
int TakeNumber(std::string_view& line);

// The bytes as they would stand in quotes, cut when they are many.
std::string Printable(std::string_view bytes);

}  // namespace quorvane::testing

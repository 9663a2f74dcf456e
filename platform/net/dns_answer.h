// The records of a DNS answer (RFC 1035 section 4.1).
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace quorvane::dns {

// Names are in the text form of zone files, without the last dot; the root is ".".
struct Record {
    std::string name;
    std::uint16_t type = 0;
    std::uint16_t preference = 0;  // of a mail exchanger
    std::string exchanger;
};

// Appends the records of the answer, authority and additional sections in the answer's order. False
// when the answer is damaged: cut off, or with a name that runs in circles or out of it.
bool ParseAnswer(std::span<const unsigned char> answer, std::vector<Record>& records);

}  // namespace quorvane::dns

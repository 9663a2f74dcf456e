// Questions to DNS servers.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace quorvane::dns {

enum class Outcome {
    Answered,
    NoSuchName,
    NoRecords,  // of that type
    ServerFailed,
    NotUnderstood,
    NotImplemented,
    Refused,
    BadName,
    BadAnswer,
    TimedOut,
    OutOfMemory,
};

// Asks for the records of a name, as it stands, the servers with these IPv4 addresses (network byte
// order), or those of /etc/resolv.conf when there are none, one after the other until one knows.
// Blocks, ten seconds at most. Any number of threads may ask at once.
Outcome Ask(const std::string& name, std::uint16_t type, std::span<const std::uint32_t> servers,
            std::vector<unsigned char>& answer);

}  // namespace quorvane::dns

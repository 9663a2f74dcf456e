// Generated messages, and what is meant by them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "model/outgoing_message.h"

namespace quorvane::testing {

struct MeantMessage {
    COutgoingMessage message;
    // What the message was made of, for a reader in another language: texts as the hexadecimal
    // digits of their UTF-16 units, in little-endian bytes, and contents as those of their bytes.
    nlohmann::json meaning;
    bool composedTwice = false;  // as a message for two domains is
};

// The message of that number in the series of the seed. Writes the files that it names into the
// folder, in the place of those of the message before.
MeantMessage MakeMessage(std::uint64_t seed, std::uint64_t number,
                         const std::filesystem::path& folder);

// Hexadecimal digits of the bytes.
std::string Hex(std::string_view bytes);

}  // namespace quorvane::testing

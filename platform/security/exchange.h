// The caller's memory in the place of a socket, as OpenSSL's own input and output.
#pragma once

#include <openssl/bio.h>

#include <cstddef>
#include <span>
#include <string>

namespace quorvane::security {

// What one call of the package moves. OpenSSL reads and writes the caller's buffers themselves.
struct Exchange {
    std::span<const char> input;  // what OpenSSL has not read yet
    std::span<char> room;         // where it may write, if it is expected to
    std::size_t written = 0;      // bytes of it
    std::string token;            // what it wrote without having been given room
};

// A BIO over the exchange that `*current` points to at the time of each read and write, for both
// directions. Null when memory runs out.
BIO* NewExchangeBio(Exchange** current);

}  // namespace quorvane::security

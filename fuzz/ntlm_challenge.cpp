// The server's NTLM challenge: an answer or a refusal, and nothing read outside of it.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "smtp/ntlm.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // In a block of its own size, so that a byte read behind it is found.
    const std::vector<BYTE> challenge(data, data + size);
    const auto response = quorvane::MakeNtlmResponse(challenge, "fred", "secret");
    if (response.has_value() != quorvane::IsUsableNtlmChallenge(challenge)) std::abort();
    return 0;
}

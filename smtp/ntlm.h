// The messages of AUTH NTLM, made by libntlm. Strings are in the ANSI code page.
#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quorvane {

// Most bytes of a user or domain name, and most units of the name that a challenge carries:
// libntlm widens names in a buffer that holds no more, and doesn't check.
inline constexpr std::size_t kMaxNtlmNameLength = 160;

// Whether the user name can be used: neither what stands before its first at sign nor what stands
// behind it, which is a domain, is longer than kMaxNtlmNameLength.
bool IsNtlmUserName(const std::string& user);

// Whether the name that a challenge carries, which may be none, lies within the challenge and
// isn't too long. Everything else in a challenge may have any value.
bool IsUsableNtlmChallenge(std::span<const BYTE> challenge);

// The first message, from client to server. The user name must be usable.
std::vector<BYTE> MakeNtlmNegotiation(const std::string& user, const std::string& domain);

// The third message, which answers the server's challenge: what is missing of a short challenge
// counts as zeros, what is more than 1,072 bytes is ignored. None when the challenge is not usable.
std::optional<std::vector<BYTE>> MakeNtlmResponse(std::span<const BYTE> challenge,
                                                  const std::string& user,
                                                  const std::string& password);

}  // namespace quorvane

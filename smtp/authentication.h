// What a server's capabilities say about authentication (RFC 4954).
#pragma once

#include "automation/wide_string.h"

namespace quorvane {

// The mechanisms that a session can use.
struct AuthOffers {
    bool login = false;
    bool ntlm = false;
};

// Reads the text of the reply to EHLO. Lenient: everything behind the first "AUTH", in any case,
// counts, so that "AUTH=LOGIN", the form of old servers, is understood too.
AuthOffers ParseAuthOffers(WideView capabilities);

// True when the text holds the word, which is in capitals, in any case.
bool ContainsIgnoreCase(WideView text, WideView word);

}  // namespace quorvane

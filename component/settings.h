// What the properties of SmtpMail configure.
#pragma once

#include "Quorvane.h"
#include "automation/wide_string.h"

namespace quorvane {

struct SmtpSettings {
    WideString server;    // relay name or IP address
    LONG port = 25;       // as given; the session uses its low 16 bits
    WideString username;  // empty means no authentication
    WideString password;
    WideString domain;          // NTLM domain; no property sets it
    WideString senderHostname;  // announced in EHLO; empty means the session's own default
    VARIANT_BOOL useSsl = VARIANT_FALSE;
    VARIANT_BOOL useSpa = VARIANT_FALSE;
    LONG connectAttempts = 2;
    LONG replyTimeout = 30;  // seconds
};

// How a send ended: 0 sent, a three-digit reply code of a server that refused, -1 another failure.
struct SendOutcome {
    LONG code = 0;
    WideString text;  // empty when sent
};

}  // namespace quorvane

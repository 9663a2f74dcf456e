// The words of every failure that a session reports, made in one place. Server names stand in them
// exactly as the user gave them.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "automation/wide_string.h"

namespace quorvane {

// The command that a failure came with; none while the greeting is awaited.
using CommandView = std::optional<std::string_view>;

// The command up to its line end, 40 bytes at most, each byte widened to one unit. The answers of
// AUTH LOGIN show in their Base64 form, which hides nothing.
WideString CommandExcerpt(std::string_view command);

// Of a failed connect, send, receive or wait; `error` is the number of the socket error.
WideString SocketErrorText(WideView server, int error);
WideString SocketCreationText(int error);
WideString UnresolvedServerText(WideView server);

WideString NoReplyText(WideView server, CommandView command);
WideString ClosedConnectionText(WideView server, CommandView command);
WideString OverlongReplyText(WideView server, CommandView command);
WideString ReplyWithoutCodeText(WideView server, CommandView command);
// The peer stopped taking what is sent to it.
WideString BlockedSendText(WideView server, CommandView command);
// The peer talks on and on without having been asked.
WideString UnrequestedDataText(WideView server, std::string_view command);

// A value that can't stand in a command line or be looked up; `what` names it. Control characters
// show as '?'.
WideString LineBreakText(WideView what, WideView value);
WideString TooLongText(WideView what, WideView value, std::size_t limit);

// Of a domain whose mail servers were looked up. The system's text of the DNS status stands in them
// as the system gave it, line end included; without one, the number does.
WideString EmptyDomainText();
WideString FailedLookupText(WideView domain, WideView systemText, LONG status);
WideString NoMailServerText(WideView domain);
WideString NoMailWantedText(WideView domain);

WideString WrongCredentialsText();
// An NTLM challenge that no answer can be made for.
WideString UnusableChallengeText(WideView server);
WideString PeerClosedHandshakeText();

// Of encrypted connections; `status` is what the security package said, shown in hexadecimal.
WideString CredentialsText(LONG status);
WideString SecurityMemoryText();
WideString NegotiationText(WideView server, LONG status);
WideString SilentHandshakeText();
WideString ExtraBufferText();
WideString StreamSizesText(WideView server, LONG status);
WideString EncryptionText(WideView server, LONG status);
WideString DecryptionText(WideView server, LONG status);

}  // namespace quorvane

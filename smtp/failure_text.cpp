#include "smtp/failure_text.h"

#include <winsock2.h>
#include <fmt/format.h>

#include <algorithm>
#include <initializer_list>
#include <string>

namespace quorvane {
namespace {

constexpr std::size_t kExcerptLength = 40;  // bytes of a command
constexpr std::size_t kShownLength = 60;    // units of a value that is too long to be shown

WideString Join(std::initializer_list<WideView> pieces) {
    WideString text;
    for (const WideView piece : pieces) {
        text += piece;
    }
    return text;
}

WideString Number(long long value) {
    return WidenBytes(std::to_string(value));
}

WideString Hexadecimal(LONG status) {
    return WidenBytes(fmt::format("{:x}", static_cast<ULONG>(status)));
}

WideString Shown(WideView value) {
    WideString text(value);
    const auto isControl = [](WCHAR c) { return c < WCHAR(' ') || c == WCHAR(0x7F); };
    std::replace_if(text.begin(), text.end(), isControl, WCHAR('?'));
    return text;
}

WideString ShownBeginning(WideView value) {
    return value.size() <= kShownLength ? Shown(value)
                                        : Shown(value.substr(0, kShownLength)) + OLESTR("...");
}

// "Mail server %s <what happened>", then the command with the words that lead to it.
WideString ServerText(WideView server, WideView happened, WideView lead, CommandView command) {
    WideString text = Join({OLESTR("Mail server "), server, happened});
    if (command) {
        text += lead;
        text += CommandExcerpt(*command);
    }
    return text;
}

}  // namespace

WideString CommandExcerpt(std::string_view command) {
    return WidenBytes(command.substr(0, command.find_first_of("\r\n")).substr(0, kExcerptLength));
}

WideString SocketErrorText(WideView server, int error) {
    switch (error) {
        case WSAENETUNREACH:
            return Join({OLESTR("Could not connect to mail server "), server,
                         OLESTR(", the destination host is unreachable.")});
        case WSAECONNABORTED:
            return Join({OLESTR("Connection to mail server "), server,
                         OLESTR(" was aborted by the software on your computer.")});
        case WSAECONNRESET:
            return Join({OLESTR("Connection to mail server "), server,
                         OLESTR(" was forcibly closed by the remote server.")});
        case WSAETIMEDOUT:
            return Join({OLESTR("Could not connect to mail server "), server,
                         OLESTR(", connection attempt timed out.")});
        case WSAECONNREFUSED:
            return Join({OLESTR("Could not connect to mail server "), server,
                         OLESTR(", connection refused.")});
        default:
            return Join({OLESTR("Connection to mail server "), server,
                         OLESTR(" failed, socket error "), Number(error), OLESTR(".")});
    }
}

WideString SocketCreationText(int error) {
    return OLESTR("Could not create socket, error ") + Number(error);
}

WideString UnresolvedServerText(WideView server) {
    return Join({OLESTR("Unable to resolve hostname "), server, OLESTR(".")});
}

WideString NoReplyText(WideView server, CommandView command) {
    return ServerText(server, OLESTR(" did not reply within specified timeout"),
                      OLESTR(" to the following command: "), command);
}

WideString ClosedConnectionText(WideView server, CommandView command) {
    return ServerText(server, OLESTR(" closed connection unexpectedly"),
                      OLESTR(" after the following command: "), command);
}

WideString OverlongReplyText(WideView server, CommandView command) {
    return ServerText(server, OLESTR(" sent a reply that is too long"),
                      OLESTR(" to the following command: "), command);
}

WideString ReplyWithoutCodeText(WideView server, CommandView command) {
    return ServerText(server, OLESTR(" sent a reply without a code"),
                      OLESTR(" to the following command: "), command);
}

WideString BlockedSendText(WideView server, CommandView command) {
    return ServerText(server, OLESTR(" did not accept data within specified timeout"),
                      OLESTR(" during the following command: "), command);
}

WideString UnrequestedDataText(WideView server, std::string_view command) {
    return ServerText(server, OLESTR(" sent too much data that was not asked for"),
                      OLESTR(" before the following command: "), command);
}

WideString LineBreakText(WideView what, WideView value) {
    return Join({what, OLESTR(" holds a line break or a NUL character and can't be used: "),
                 ShownBeginning(value)});
}

WideString TooLongText(WideView what, WideView value, std::size_t limit) {
    return Join({what, OLESTR(" is longer than "), Number(static_cast<long long>(limit)),
                 OLESTR(" bytes and can't be used: "), ShownBeginning(value)});
}

WideString EmptyDomainText() {
    return OLESTR("Invalid address: domain can't be empty");
}

WideString FailedLookupText(WideView domain, WideView systemText, LONG status) {
    const WideString text = Join(
        {OLESTR("Couldn't find mail server for domain '"), domain, OLESTR("' - "), systemText});
    return systemText.empty() ? text + OLESTR("DNS error ") + Number(status) : text;
}

WideString NoMailServerText(WideView domain) {
    return Join(
        {OLESTR("Domain '"), domain, OLESTR("' doesn't have mail server configured in DNS")});
}

WideString NoMailWantedText(WideView domain) {
    return Join({OLESTR("Domain '"), domain, OLESTR("' doesn't accept mail")});
}

WideString WrongCredentialsText() {
    return OLESTR("Authentication failed, invalid username or password");
}

WideString UnusableChallengeText(WideView server) {
    return ServerText(server, OLESTR(" sent an NTLM challenge that can't be used"), {},
                      std::nullopt);
}

WideString PeerClosedHandshakeText() {
    return OLESTR("Remote host closed connection unexpectedly");
}

WideString CredentialsText(LONG status) {
    return OLESTR("Cannot initialize security, AcquireCredentialsHandle error ") +
           Hexadecimal(status);
}

WideString SecurityMemoryText() {
    return OLESTR("Not enough memory for security buffers");
}

WideString NegotiationText(WideView server, LONG status) {
    return Join({OLESTR("Cannot negotiate secure connection with mail server "), server,
                 OLESTR(", InitializeSecurityContext error 0x"), Hexadecimal(status)});
}

WideString SilentHandshakeText() {
    return OLESTR("Cannot negotiate secure connection, no response from the server");
}

WideString ExtraBufferText() {
    return OLESTR("Cannot negotiate secure connection, wrong size of the extra buffer");
}

WideString StreamSizesText(WideView server, LONG status) {
    return Join({OLESTR("Cannot negotiate secure connection to mail server "), server,
                 OLESTR(", QueryContextAttributes error "), Hexadecimal(status)});
}

WideString EncryptionText(WideView server, LONG status) {
    return Join({OLESTR("Cannot encrypt message to mail server "), server, OLESTR(", error "),
                 Hexadecimal(status)});
}

WideString DecryptionText(WideView server, LONG status) {
    return Join({OLESTR("Cannot decrypt message from mail server "), server, OLESTR(", error "),
                 Hexadecimal(status)});
}

}  // namespace quorvane

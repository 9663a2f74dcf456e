#include "cli/hints.h"

#include <algorithm>

namespace quorvane::cli {
namespace {

enum class When { kAlways, kWithoutUser, kWithoutSsl };

// The first rule that fits gives the hint.
struct Rule {
    int lowest, highest;        // codes
    std::string_view fragment;  // of the text, in lower case
    When when;
    std::string_view hint;  // {port} stands for the server's
};

constexpr std::string_view kLogIn =
    "the server wants authentication: add --user and --password-file.";
constexpr std::string_view kEncrypt = "the server wants an encrypted connection: add --ssl.";
constexpr std::string_view kWrongPassword =
    "check --user and the first line of the file of --password-file. Some providers want a "
    "password "
    "made for programs.";
constexpr std::string_view kNoLogin =
    "the server offered no login that --user could use; many offer it on an encrypted connection "
    "only: add --ssl.";
constexpr std::string_view kPort =
    "is the port right ({port})? Servers take mail at 25, 587 or 465: --server HOST:PORT.";
constexpr std::string_view kWay =
    "check the network. Many providers block port 25: try --server HOST:587 with a user name, or a "
    "server of your provider.";
constexpr std::string_view kTls =
    "TLS 1.0 to 1.2 are spoken here. Is the port right ({port}), and does the server speak one of "
    "them? Without --ssl nothing is encrypted.";
constexpr std::string_view kDomain =
    "check the recipient's address behind the at sign, and this computer's DNS.";
constexpr std::string_view kLater = "the server refuses for the moment; try again in some minutes.";
constexpr std::string_view kRecipient = "check the addresses in --from, --to, --cc and --bcc.";

constexpr Rule kRules[] = {
    {-1, -1, "unable to resolve hostname", When::kAlways,
     "is the name in --server spelled right, and does this computer's DNS know it?"},
    {-1, -1, "connection refused", When::kAlways, kPort},
    {-1, -1, "unreachable", When::kAlways, kWay},
    {-1, -1, "connection attempt timed out", When::kAlways, kWay},
    {-1, -1, "did not reply within specified timeout", When::kWithoutSsl,
     "a server that waits for encryption says nothing (port 465): add --ssl. A slow one wants a "
     "longer --timeout."},
    {-1, -1, "did not reply within specified timeout", When::kAlways,
     "is the port right ({port})? A slow server wants a longer --timeout."},
    {-1, -1, "cannot initialize security", When::kAlways,
     "this system has no TLS; under Wine install libgnutls30."},
    {-1, -1, "cannot negotiate secure connection", When::kAlways, kTls},
    {-1, -1, "remote host closed connection", When::kAlways, kTls},
    {-1, -1, "couldn't find mail server for domain", When::kAlways, kDomain},
    {-1, -1, "doesn't have mail server", When::kAlways, kDomain},
    {-1, -1, "doesn't accept mail", When::kAlways, kDomain},
    {-1, -1, "closed connection unexpectedly", When::kAlways,
     "the server's log tells why; often a limit, or an address that it doesn't want."},
    {535, 535, "", When::kAlways, kWrongPassword},
    {400, 599, "authentication failed", When::kAlways, kWrongPassword},
    {400, 599, "starttls", When::kWithoutSsl, kEncrypt},
    {400, 599, "encryption required", When::kWithoutSsl, kEncrypt},
    {530, 530, "", When::kWithoutUser, kLogIn},
    {530, 530, "", When::kWithoutSsl, kNoLogin},
    {500, 599, "authenticat", When::kWithoutUser, kLogIn},
    {500, 599, "relay", When::kWithoutUser,
     "the server passes mail on for those whom it knows: add --user and --password-file, or use "
     "the server of your provider."},
    {500, 599, "relay", When::kWithoutSsl, kNoLogin},
    {500, 599, "helo", When::kAlways,
     "the server dislikes the name of this computer: give one with a dot by --helo."},
    {500, 599, "hostname", When::kAlways,
     "the server dislikes the name of this computer: give one with a dot by --helo."},
    {334, 334, "ntlm challenge", When::kAlways,
     "the server's NTLM is none that can be answered: try without --spa."},
    {334, 334, "", When::kAlways,
     "the server logs in by other words than \"Username:\" and \"Password:\", the only ones "
     "that are answered. Try with --spa, or without it, or another server."},
    {552, 552, "", When::kAlways, "the mailbox is full, or the message too large for the server."},
    {400, 499, "", When::kAlways, kLater},
    {550, 551, "", When::kAlways, kRecipient},
    {553, 553, "", When::kAlways, kRecipient},
};

bool Fits(When when, const Options& options) {
    switch (when) {
        case When::kWithoutUser:
            return options.user.empty() && !options.direct;
        case When::kWithoutSsl:
            return !options.ssl && !options.direct;
        default:
            return true;
    }
}

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    }
    return lower;
}

}  // namespace

std::string HintFor(const client::Outcome& outcome, const Options& options) {
    const std::string text = LowerCase(outcome.text);
    const auto rule = std::ranges::find_if(kRules, [&](const Rule& candidate) {
        return outcome.code >= candidate.lowest && outcome.code <= candidate.highest &&
               text.find(candidate.fragment) != text.npos && Fits(candidate.when, options);
    });
    if (rule == std::end(kRules)) return {};
    std::string hint(rule->hint);
    constexpr std::string_view kPlace = "{port}";
    const auto place = hint.find(kPlace);
    if (place != hint.npos) {
        hint.replace(place, kPlace.size(), std::to_string(options.server.port));
    }
    return hint;
}

std::string HintForRefusal(std::string_view text) {
    constexpr struct {
        std::string_view beginning, end, hint;
    } kRefusals[] = {
        {"Message must have at least one recipient", "",
         "add --to, --cc or --bcc with an address."},
        {"Couldn't open attachment file", "=",
         "put each value behind src= in double quotes; single ones don't end it."},
        {"Couldn't open attachment file", "",
         "check the name; it counts from the current folder, of a picture from that of the HTML "
         "file. --no-import leaves pictures out."},
        {"Can't read the file", "", "check the name, and whether you may read it."},
        {"Cannot import malformed HTML file", "",
         "put each value behind src= in double quotes, or use --no-import."},
    };
    if (text.starts_with("Couldn't open attachment file") && text.find("data:") != text.npos) {
        return "a picture whose bytes stand behind src= is none to import: use --no-import.";
    }
    for (const auto& refusal : kRefusals) {
        if (text.starts_with(refusal.beginning) && text.ends_with(refusal.end))
            return std::string(refusal.hint);
    }
    return {};
}

}  // namespace quorvane::cli

// What users are advised to do about failures.
#include "cli/hints.h"

#include <gtest/gtest.h>

#include <string>

namespace quorvane::cli {
namespace {

TEST(Hints, FitTheFailureAndWhatWasAsked) {
    Options plain;
    plain.server = {"mail.example.org", 2525};
    Options user = plain;
    user.user = "zoe";
    Options ssl = plain;
    ssl.ssl = true;
    Options both = user;
    both.ssl = true;
    Options direct;
    direct.direct = true;
    const struct {
        LONG code;
        const char* text;
        const Options& options;
        const char* fragment;  // empty for no hint
    } cases[] = {
        {530, "530 5.7.0 Authentication required", plain,
         "the server wants authentication: add --user and --password-file"},
        {530, "530 5.7.0 Must issue a STARTTLS command first", plain, "add --ssl"},
        {530, "530 5.7.0 Authentication required", user, "add --ssl"},
        {530, "530 5.7.0 Authentication required", both, ""},
        {535, "Authentication failed, invalid username or password", both, "check --user"},
        {550, "550 5.7.1 Relaying denied", ssl, "add --user"},
        {554, "554 5.7.1 Relay access denied", both, ""},
        {550, "550 relay not permitted", direct, "check the addresses"},
        {550, "550 5.1.1 no such user here", plain, "check the addresses"},
        {504, "504 5.5.2 <x>: Helo command rejected: need fully-qualified hostname", plain,
         "--helo"},
        {451, "451 4.7.1 Greylisted", plain, "try again"},
        {334, "334 VXNlciBOYW1lAA==", both, "\"Username:\""},
        {334, "Mail server x sent an NTLM challenge that can't be used", both, "without --spa."},
        {552, "552 5.3.4 too big", plain, "too large"},
        {-1, "Could not connect to mail server x, connection refused.", plain, "right (2525)"},
        {-1, "Could not connect to mail server x, connection attempt timed out.", plain, "587"},
        {-1, "Unable to resolve hostname x.", plain, "spelled right"},
        {-1, "Mail server x did not reply within specified timeout", plain, "add --ssl"},
        {-1, "Mail server x did not reply within specified timeout", ssl, "--timeout"},
        {-1,
         "Cannot negotiate secure connection with mail server x, InitializeSecurityContext error "
         "0x80090308",
         ssl, "TLS 1.0 to 1.2"},
        {-1, "Couldn't find mail server for domain 'x' - DNS name does not exist.", direct,
         "recipient's address"},
        {-2, "", plain, ""},
        {0, "", plain, ""},
    };
    for (const auto& c : cases) {
        const std::string hint = HintFor({c.code, c.text}, c.options);
        EXPECT_EQ(hint.empty(), *c.fragment == '\0') << c.text << ": " << hint;
        EXPECT_NE(hint.find(c.fragment), hint.npos) << c.text << ": " << hint;
    }
}

TEST(Hints, TellAMissingFileFromOneInSingleQuotes) {
    const std::string file = "Couldn't open attachment file page\\o'clock.png";
    EXPECT_NE(HintForRefusal(file).find("check the name"), std::string::npos);
    EXPECT_NE(HintForRefusal(file + "' alt=").find("double quotes"), std::string::npos);
    EXPECT_NE(HintForRefusal(file + "data:image\\png;base64,AA=").find("none to import"),
              std::string::npos);
}

}  // namespace
}  // namespace quorvane::cli

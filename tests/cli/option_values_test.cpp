// The forms of addresses, files, header fields and servers on the command line.
#include "cli/option_values.h"

#include <gtest/gtest.h>

#include <string>

namespace quorvane::cli {
namespace {

TEST(OptionValues, Addresses) {
    const struct {
        const char* text;
        const char* name;
        const char* address;
    } cases[] = {
        {"a@b", "", "a@b"},
        {"  a@b\t", "", "a@b"},
        {"<a@b>", "", "a@b"},
        {"Ann Miller <a@b>", "Ann Miller", "a@b"},
        {"\"Miller, Ann\" <a@b>", "Miller, Ann", "a@b"},
        {R"("The \"Ann\" \\" <a@b>)", R"(The "Ann" \)", "a@b"},
        {"Ann <at home> <a@b>", "Ann <at home>", "a@b"},
        {"Zoë<a@b>", "Zoë", "a@b"},
        {"\" <a@b>", "\"", "a@b"},
        {"\"a@b, c\" <d@e>", "a@b, c", "d@e"},
        {"Miller, Ann @ home <a@b>", "Miller, Ann @ home", "a@b"},
    };
    for (const auto& c : cases) {
        const Address address = ParseAddress(c.text);
        EXPECT_EQ(address.name, c.name) << c.text;
        EXPECT_EQ(address.address, c.address) << c.text;
    }
    for (const char* text : {"", "a", "a@", "@b", "Ann <a@b", "a@b>", "<>", "a b@c", "Ann a@b",
                             "a@b <c>", "<a@ü>", "user@[10.0.0.1]", "Ann <[a]@b>", "a@b,c@d",
                             "a@b;c@d", "Ann <a@b>, Bob <c@d>", "\"Ann\" <a@b>; \"Bob\" <c@d>"}) {
        EXPECT_THROW(ParseAddress(text), UsageError) << text;
    }
}

TEST(OptionValues, Files) {
    const struct {
        const char* text;
        const char* file;
        const char* name;
        const char* type;
        const char* charset;
        const char* contentId;
    } cases[] = {
        {"a.txt", "a.txt", "a.txt", "", "utf-8", ""},
        {"sub/a.txt", "sub/a.txt", "a.txt", "", "utf-8", ""},
        {"a, b,c.txt", "a, b,c.txt", "a, b,c.txt", "", "utf-8", ""},
        {"a,name=b, c.txt", "a", "b, c.txt", "", "utf-8", ""},
        {"a,type=x/y,name=b", "a", "b", "x/y", "utf-8", ""},
        {"a,name=b,type=x/y", "a", "b", "x/y", "utf-8", ""},
        {"a,type=text/csv; charset=\"koi8-r\"", "a", "a", "text/csv", "koi8-r", ""},
        {"a,type=text/calendar; CHARSET=utf-16 ;method=REQUEST", "a", "a",
         "text/calendar; method=REQUEST", "utf-16", ""},
        {"a,type=text/plain; format=\"a;b\"; charset=\"koi8-r\"", "a", "a",
         "text/plain; format=\"a;b\"", "koi8-r", ""},
        {"a,cid=<x@y>,type=image/png", "a", "a", "image/png", "utf-8", "x@y"},
        {"a,nickname=b", "a,nickname=b", "a,nickname=b", "", "utf-8", ""},
    };
    for (const auto& c : cases) {
        const FileArgument file = ParseFileArgument(c.text);
        EXPECT_EQ(file.file, c.file) << c.text;
        EXPECT_EQ(file.name, c.name) << c.text;
        EXPECT_EQ(file.contentType, c.type) << c.text;
        EXPECT_EQ(file.charset, c.charset) << c.text;
        EXPECT_EQ(file.contentId, c.contentId) << c.text;
    }
    for (const char* text : {"", ",name=a", "a,name=", "a,type=,name=b", "a,cid="}) {
        EXPECT_THROW(ParseFileArgument(text), UsageError) << text;
    }
}

TEST(OptionValues, Servers) {
    EXPECT_EQ(ParseServer("mail.example.org").port, 25);
    EXPECT_EQ(ParseServer("mail.example.org:2525").host, "mail.example.org");
    EXPECT_EQ(ParseServer("mail.example.org:2525").port, 2525);
    EXPECT_EQ(ParseServer("h:65535").port, 65535);
    for (const char* text : {"", ":25", "h:", "h:0", "h:65536", "h:-1", "h:2 5", "h:25:26",
                             "h:99999999999999999999"}) {
        EXPECT_THROW(ParseServer(text), UsageError) << text;
    }
}

TEST(OptionValues, HeaderFields) {
    const Header header = ParseHeader("X-Note :  a: b ");
    EXPECT_EQ(header.name, "X-Note");
    EXPECT_EQ(header.value, "a: b");
    EXPECT_EQ(ParseHeader("X:").value, "");
    for (const char* text : {"", "X", ":x", " : x", "X Y: z", "X\r\nY: z", "Xü: z"}) {
        EXPECT_THROW(ParseHeader(text), UsageError) << text;
    }
}

}  // namespace
}  // namespace quorvane::cli

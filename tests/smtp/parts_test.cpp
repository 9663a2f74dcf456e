// The parts of a session that are functions of their arguments.
#include <gtest/gtest.h>

#include <string>

#include "smtp/authentication.h"
#include "smtp/command_writer.h"
#include "smtp/failure_text.h"
#include "smtp/host_name.h"
#include "smtp/reply.h"

namespace quorvane {

void PrintTo(const WideString& text, std::ostream* out) {
    *out << '"' << ToUtf8(text) << '"';
}

namespace {

using namespace std::string_literals;

TEST(HostName, KeepsWhatMayStandInOne) {
    const struct {
        WideString name;
        WideString host;
    } cases[] = {
        {OLESTR("MAIL"), OLESTR("MAIL")},
        {OLESTR("mail.example-1.test"), OLESTR("mail.example-1.test")},
        {OLESTR("my_pc (2)"), OLESTR("mypc2")},
        {OLESTR("B\u00DCRO-PC"), OLESTR("BRO-PC")},
        {OLESTR("\uFF21\u0130x"), OLESTR("x")},
        {OLESTR("-.-pc.-."), OLESTR("pc")},
        {OLESTR("_-pc-_"), OLESTR("pc")},
        {OLESTR("a..-b"), OLESTR("a..-b")},
        {OLESTR("-.-"), OLESTR("EMPTY")},
        {OLESTR("\u0410\u0411"), OLESTR("EMPTY")},
        {OLESTR(""), OLESTR("EMPTY")},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(MakeHostName(c.name), c.host) << ToUtf8(c.name);
    }
}

TEST(HostName, OfThisComputerCanBeSaid) {
    const WideString name = LocalHostName();
    EXPECT_FALSE(name.empty());
    EXPECT_EQ(MakeHostName(name), name);
    EXPECT_LE(name.size(), 15u);
}

TEST(CommandExcerpt, EndsAtTheLineEndOrAtForty) {
    const struct {
        std::string command;
        WideString excerpt;
    } cases[] = {
        {"QUIT\r\n", OLESTR("QUIT")},
        {"", OLESTR("")},
        {"\r\nQUIT", OLESTR("")},
        {"one\ntwo\r\n", OLESTR("one")},
        {std::string(39, 'x') + "\r\n", WideString(39, 'x')},
        {std::string(40, 'x') + "\r\n", WideString(40, 'x')},
        {std::string(41, 'x') + "\r\n", WideString(40, 'x')},
        {"\xE4\x80\r\n", OLESTR("\u00E4\u0080")},  // widened, not converted
    };
    for (const auto& c : cases) {
        EXPECT_EQ(CommandExcerpt(c.command), c.excerpt) << c.command;
    }
}

// Wherever the stream is cut: not complete before the last byte of the last line, complete then.
TEST(Reply, IsCompleteAtItsVeryEnd) {
    const std::string replies[] = {
        "250 OK\r\n",
        "250 OK\n",
        "220\r\n",
        "250 \n",
        "250-a\r\n250 b\r\n",
        "250-a\n250-b\n250 c\n",
        "250-a\r\n250\r\n",
        "250-\r\n250-\r\n250 \r\n",
        "-----\r\n250 x\r\n",
        "+OK!\n",
    };
    for (const std::string& reply : replies) {
        for (std::size_t size = 0; size < reply.size(); ++size) {
            EXPECT_FALSE(IsCompleteReply(reply.substr(0, size))) << reply << size;
        }
        EXPECT_TRUE(IsCompleteReply(reply)) << reply;
        EXPECT_TRUE(IsCompleteReply(reply + "250")) << reply;  // a next reply has begun
    }
}

TEST(Reply, IsNotCompleteWithoutAnEnd) {
    const std::string replies[] = {
        "",
        "\n",
        "\r\n",
        "250\n",  // four bytes and no more
        "250 OK",
        "250-OK\r\n",
        "250-a\r\n250-b\r\n250 c",
        std::string(kReplyCapacity, '\0'),
    };
    for (const std::string& reply : replies) {
        EXPECT_FALSE(IsCompleteReply(reply)) << reply;
    }
}

// Short lines within: a blank line directly before the end isn't seen as one, a short line is.
TEST(Reply, ShortLines) {
    EXPECT_FALSE(IsCompleteReply("250-a\n\n"));
    EXPECT_TRUE(IsCompleteReply("250-a\r\n\r\n"));
    EXPECT_TRUE(IsCompleteReply("250-a\r\nb\r\n"));
    EXPECT_TRUE(IsCompleteReply("\n\n\n\n\n"));
}

TEST(Reply, HasTheCodeOfItsFirstLineAndAllWords) {
    const struct {
        std::string bytes;
        int code;
        WideString text;
    } cases[] = {
        {"250 OK\r\n", 250, OLESTR("250 OK")},
        {"250-a \r\n550 b \t\r\n\n", 250, OLESTR("250-a \r\n550 b")},
        {"250", 250, OLESTR("250")},
        {"2500 x\r\n", 250, OLESTR("2500 x")},
        {"999 x", 999, OLESTR("999 x")},
        {"100 x", 100, OLESTR("100 x")},
        {"099 x", 99, OLESTR("099 x")},
        {"000 x", -1, OLESTR("000 x")},
        {" 250 x", -1, OLESTR(" 250 x")},
        {"+25 x", -1, OLESTR("+25 x")},
        {"-25 x", -1, OLESTR("-25 x")},
        {"25", -1, OLESTR("25")},
        {"25x", -1, OLESTR("25x")},
        {"\xB2\xB5\xB0", -1, OLESTR("")},
        {"", -1, OLESTR("")},
        {" \r\n", -1, OLESTR("")},
        {"550 a\0b\r\n"s, 550, OLESTR("550 a?b")},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ReplyCode(c.bytes), c.code) << c.bytes;
        WideString text = OLESTR("of the reply before, which was longer than this one");
        AssignReplyText(c.bytes, text);
        if (!c.text.empty() || c.bytes.find_first_not_of(" \r\n") == std::string::npos) {
            EXPECT_EQ(text, c.text);
        }
    }
}

// Words behind a reply may be another's, put there before the connection was encrypted.
TEST(Reply, MayHaveMoreBehindIt) {
    const struct {
        WideString text;
        bool more;
    } cases[] = {
        {OLESTR(""), false},
        {OLESTR("220 Go"), false},
        {OLESTR("220"), false},
        {OLESTR("220-Go\r\n220 ahead"), false},
        {OLESTR("220-Go\r\n220-ahead"), false},
        {OLESTR("220 Go\r\n250 x"), true},
        {OLESTR("220\n2"), true},
        {OLESTR("220-Go\r\n220 ahead\r\n220-x"), true},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(HoldsMoreThanReply(c.text), c.more) << ToUtf8(c.text);
    }
}

TEST(SocketError, HasItsText) {
    const WideString server = OLESTR("Mail.Example.TEST");
    const struct {
        int error;
        WideString text;
    } cases[] = {
        {10051, OLESTR("Could not connect to mail server Mail.Example.TEST, the destination host "
                       "is unreachable.")},
        {10053, OLESTR("Connection to mail server Mail.Example.TEST was aborted by the software on "
                       "your computer.")},
        {10054, OLESTR("Connection to mail server Mail.Example.TEST was forcibly closed by the "
                       "remote server.")},
        {10060, OLESTR("Could not connect to mail server Mail.Example.TEST, connection attempt "
                       "timed out.")},
        {10061, OLESTR("Could not connect to mail server Mail.Example.TEST, connection refused.")},
        {10065, OLESTR("Connection to mail server Mail.Example.TEST failed, socket error 10065.")},
        {0, OLESTR("Connection to mail server Mail.Example.TEST failed, socket error 0.")},
        {-1, OLESTR("Connection to mail server Mail.Example.TEST failed, socket error -1.")},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(SocketErrorText(server, c.error), c.text);
    }
    EXPECT_EQ(SocketCreationText(10024), OLESTR("Could not create socket, error 10024"));
}

TEST(AuthOffers, AreReadFromTheFirstAuthOn) {
    const struct {
        WideString capabilities;
        bool login;
        bool ntlm;
    } cases[] = {
        {OLESTR("250-mx\r\n250 AUTH LOGIN"), true, false},
        {OLESTR("250-AUTH=LOGIN\r\n250 8BITMIME"), true, false},
        {OLESTR("250 auth plain login ntlm"), true, true},
        {OLESTR("250-AUTH NTLM\r\n250 HELP"), false, true},
        {OLESTR("250-AUTH PLAIN\r\n250 X-LOGIN"), true, false},
        {OLESTR("250-login.example.test\r\n250 AUTH PLAIN CRAM-MD5"), false, false},
        {OLESTR("250-ntlm LOGIN\r\n250 HELP"), false, false},
        {OLESTR("250-authority.example.test\r\n250-LOGIN"), true, false},
        {OLESTR(""), false, false},
    };
    for (const auto& c : cases) {
        const AuthOffers offers = ParseAuthOffers(c.capabilities);
        EXPECT_EQ(offers.login, c.login) << ToUtf8(c.capabilities);
        EXPECT_EQ(offers.ntlm, c.ntlm) << ToUtf8(c.capabilities);
    }
}

// A refused value leaves nothing that could be sent.
TEST(CommandWriter, RefusesWithoutALine) {
    std::string line = "left over";
    WideString problem;
    const WideString long_value(257, 'a');
    for (const WideString& value : {WideString(OLESTR("a\rb")), WideString(OLESTR("a\nb")),
                                    WideString(1, WCHAR(0)), long_value}) {
        EXPECT_FALSE(WriteCommand("X <%s>\r\n", {OLESTR("Value"), value, 256}, line, problem));
        EXPECT_EQ(line, "");
        EXPECT_NE(problem, WideString());
        problem.clear();
    }
    EXPECT_TRUE(
        WriteCommand("X <%s>\r\n", {OLESTR("Value"), OLESTR("%s \u00E9\t"), 256}, line, problem));
    EXPECT_EQ(line, "X <%s " + ToAnsi(OLESTR("\u00E9")) + "\t>\r\n");
    EXPECT_EQ(problem, WideString());
}

}  // namespace
}  // namespace quorvane

// Hostile text in everything that a caller can set: line breaks and what some program takes for
// one. Nothing comes out of its place: no command, recipient, field or part that wasn't meant.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "component/smtp_mail.h"
#include "model/mail_address.h"
#include "model/mail_attachment.h"
#include "model/mail_message.h"
#include "tests/servers/recording_peer.h"
#include "tests/servers/script.h"
#include "tests/support/com.h"
#include "tests/support/scratch_folder.h"

namespace quorvane {
namespace {

using std::string_view_literals::operator""sv;

constexpr WCHAR kBreaks[][9] = {
    {'\r'},
    {'\n'},
    {'\r', '\n'},
    {'\n', '\r'},
    {'\r', '\n', ' '},
    {'\r', '\n', '\t'},
    {'\r', '\n', '\r', '\n'},
    {'\r', '\n', ' ', '\r', '\n'},
    {'\r', '\n', '.', '\r', '\n'},
    {'\n', '.', '\n'},
    {0x0B, 0x0C, 0x1C, 0x1E},
    {'%', '0', 'D', '%', '0', 'A'},
    {'=', '0', 'D', '=', '0', 'A'},
    {'\\', 'r', '\\', 'n'},
    {0x85},                    // next line
    {0xC0, 0x8D, 0xC0, 0x8A},  // CR and LF in overlong UTF-8
    {0x2028, 0x2029},          // line and paragraph separator
    {0x010D, 0x010A},          // their low bytes are CR and LF, as of the next three
    {0x560D, 0x560A},
    {0xFF0D, 0xFF0A},
    {0x0D0A, 0x0A0D},  // both bytes are, in either order
    {0x240D, 0x240A},  // pictures of CR and LF
    {0xDC0D, 0xD80A},  // halves of pairs
};

// What would be a field, a command and a part if the break were one.
WideString Attack(WideView lineBreak) {
    WideString text = OLESTR("a");
    for (const WideView line :
         {OLESTR("X-Injected: 1"), OLESTR("RCPT TO: evil@x"), OLESTR("--MessagePart_0")}) {
        text.append(lineBreak).append(line);
    }
    return text.append(lineBreak).append(OLESTR("b"));
}

std::vector<WideString> Attacks() {
    std::vector<WideString> attacks;
    for (const auto& lineBreak : kBreaks) attacks.push_back(Attack(lineBreak));
    attacks.push_back(Attack({OLESTR("\0"), 1}));
    attacks.push_back(OLESTR("a=?utf-8?B?DQpYLUluamVjdGVkOiAxDQo=?="));  // CRLF inside
    attacks.push_back(OLESTR("\u00E9 a\r\nX-Injected: 1\r\n"));          // becomes a word
    return attacks;
}

// A message with every text that there is, and an account to send it with.
struct Draft {
    WideString fromAddress = OLESTR("from@x"), fromName = OLESTR("From");
    WideString replyToAddress = OLESTR("reply@x"), replyToName = OLESTR("Reply");
    WideString toAddress = OLESTR("to@x"), toName = OLESTR("To");
    WideString ccAddress = OLESTR("cc@x"), ccName = OLESTR("Cc");
    WideString bccAddress = OLESTR("bcc@x"), bccName = OLESTR("Bcc");
    WideString subject = OLESTR("Gr\u00FC\u00DFe"), messageId = OLESTR("id@x");
    WideString fieldName = OLESTR("X-Own"), fieldValue = OLESTR("own");
    WideString body = OLESTR("body"), bodyCharset = OLESTR("iso-8859-1");
    WideString altBody = OLESTR("text"), altCharset = OLESTR("iso-8859-1");
    WideString bodyFile;
    WideString name = OLESTR("name.txt"), file, type = OLESTR("text/plain");
    WideString charset = OLESTR("us-ascii"), contentId = OLESTR("part@x");
    WideString helo = OLESTR("client.test"), user = OLESTR("jo"), password = OLESTR("secret");
    WideString server = OLESTR("127.0.0.1");
    LONG encoding = 0;
};

struct Place {
    const char* what;
    WideString Draft::*text;
    enum class Kind { Message, Command, Server } kind = Kind::Message;
    LONG encoding = 0;
};

const Place kPlaces[] = {
    {"sender", &Draft::fromAddress, Place::Kind::Command},
    {"sender's name", &Draft::fromName},
    {"reply-to", &Draft::replyToAddress},
    {"reply-to's name", &Draft::replyToName},
    {"recipient", &Draft::toAddress, Place::Kind::Command},
    {"recipient's name", &Draft::toName},
    {"cc recipient", &Draft::ccAddress, Place::Kind::Command},
    {"cc recipient's name", &Draft::ccName},
    {"bcc recipient", &Draft::bccAddress, Place::Kind::Command},
    {"bcc recipient's name", &Draft::bccName},
    {"subject", &Draft::subject},
    {"message id", &Draft::messageId},
    {"field name", &Draft::fieldName},
    {"field value", &Draft::fieldValue},
    {"body, encoding chosen", &Draft::body, Place::Kind::Message, 0},
    {"body, 7bit", &Draft::body, Place::Kind::Message, 1},
    {"body, 8bit", &Draft::body, Place::Kind::Message, 2},
    {"body, quoted-printable", &Draft::body, Place::Kind::Message, 3},
    {"body, Base64", &Draft::body, Place::Kind::Message, 4},
    {"alternative body", &Draft::altBody},
    {"body's character set", &Draft::bodyCharset},
    {"alternative body's character set", &Draft::altCharset},
    {"body file", &Draft::bodyFile},
    {"attachment's name", &Draft::name},
    {"attachment's file", &Draft::file},
    {"attachment's type", &Draft::type},
    {"attachment's character set", &Draft::charset},
    {"attachment's identifier", &Draft::contentId},
    {"announced name", &Draft::helo, Place::Kind::Command},
    {"user", &Draft::user},
    {"password", &Draft::password},
    {"server", &Draft::server, Place::Kind::Server},
};

// The names of the fields of a header and, in brackets, those of the parts below. A line of the
// header that is no field stands with a '!' before it.
class Shape {
public:
    static std::vector<std::string> Of(std::string_view message) {
        Shape shape;
        shape.Read(message);
        return shape.names_;
    }

private:
    void Read(std::string_view text) {
        const std::size_t end = text.find("\r\n\r\n");
        const std::string_view body =
            end == std::string_view::npos ? std::string_view() : text.substr(end + 2);
        std::string_view header = text.substr(0, end);
        const std::string boundary = BoundaryOf(header);
        while (!header.empty()) AddLine(TakeLine(header));
        if (!boundary.empty()) ReadParts(body, "\r\n--" + boundary);
    }

    static std::string_view TakeLine(std::string_view& text) {
        const std::size_t end = std::min(text.find("\r\n"), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 2, text.size()));
        return line;
    }

    void AddLine(std::string_view line) {
        const bool isBroken = line.find_first_of("\r\n\0"sv) != std::string_view::npos;
        const bool continues = line.starts_with(' ') || line.starts_with('\t');
        const std::size_t colon = line.find(':');
        if (isBroken || (!continues && colon == std::string_view::npos)) {
            names_.push_back("!" + testing::Printable(line));
        } else if (!continues) {
            names_.emplace_back(line.substr(0, colon));
        }
    }

    static std::string BoundaryOf(std::string_view header) {
        constexpr std::string_view kMark = "\r\n\tboundary=\"MessagePart_";
        const std::size_t start = header.find(kMark);
        if (start == std::string_view::npos) return {};
        const std::string_view value =
            header.substr(start + std::string_view("\r\n\tboundary=\"").size());
        return std::string(value.substr(0, value.find('"')));
    }

    void ReadParts(std::string_view body, const std::string& delimiter) {
        std::size_t start = body.find(delimiter);
        while (start != std::string_view::npos) {
            const std::string_view part = body.substr(start + delimiter.size());
            start = body.find(delimiter, start + delimiter.size());
            if (!part.starts_with("\r\n")) break;
            names_.push_back("(");
            const std::size_t next = part.find(delimiter);
            Read(part.substr(2, next == std::string_view::npos ? next : next - 2));
            names_.push_back(")");
        }
        if (start != std::string_view::npos) names_.push_back("!parts behind the last");
    }

    std::vector<std::string> names_;
};

ComPtr<IMailAddress> Address(const WideString& address, const WideString& name) {
    auto object = New<CMailAddress, IMailAddress>();
    object->put_Address(Bstr(address));
    object->put_Name(Bstr(name));
    return object;
}

ComPtr<IMailAttachment> Attachment(const Draft& draft, bool isInline) {
    BYTE data[] = {'d', 'a', 't', 'a'};
    auto object = New<CMailAttachment, IMailAttachment>();
    object->LoadFromMemory(data, sizeof data);
    // A file's name counts where there is no other.
    object->put_Name(Bstr(draft.file.empty() ? draft.name : WideString()));
    object->put_File(Bstr(draft.file));
    object->put_ContentType(Bstr(draft.type));
    object->put_Charset(Bstr(draft.charset));
    object->put_ContentId(Bstr(draft.contentId));
    object->put_Inline(isInline ? VARIANT_TRUE : VARIANT_FALSE);
    return object;
}

ComPtr<IMailMessage> Message(const Draft& draft) {
    auto message = New<CMailMessage, IMailMessage>();
    message->put_Sender(Address(draft.fromAddress, draft.fromName).Get());
    message->put_ReplyTo(Address(draft.replyToAddress, draft.replyToName).Get());
    message->AddRecipient(Address(draft.toAddress, draft.toName).Get());
    message->AddCcRecipient(Address(draft.ccAddress, draft.ccName).Get());
    message->AddBccRecipient(Address(draft.bccAddress, draft.bccName).Get());
    message->put_MessageSubject(Bstr(draft.subject));
    message->put_MessageId(Bstr(draft.messageId));
    message->put_MessageBody(Bstr(draft.body));
    message->put_MessageBodyFile(Bstr(draft.bodyFile));
    message->put_MessageBodyCharset(Bstr(draft.bodyCharset));
    message->put_MessageBodyEncoding(static_cast<MailEncoding>(draft.encoding));
    message->put_AltMessageBody(Bstr(draft.altBody));
    message->put_AltMessageBodyCharset(Bstr(draft.altCharset));
    EXPECT_EQ(message->AddHeader(Bstr(draft.fieldName), Bstr(draft.fieldValue)), S_OK);
    message->AddAttachment(Attachment(draft, true).Get());
    message->AddAttachment(Attachment(draft, false).Get());
    return message;
}

// The commands without their arguments; anything else as it was said.
std::vector<std::string> Verbs(const std::vector<std::string>& lines) {
    std::vector<std::string> verbs;
    std::size_t answers = 0;
    for (const std::string& line : lines) {
        std::string verb = line;
        if (answers > 0) {
            --answers;
            verb = line.find_first_of("\r\n \0"sv) == std::string::npos ? "(answer)" : line;
        }
        for (const std::string_view known : {"EHLO "sv, "MAIL FROM: <"sv, "RCPT TO: <"sv}) {
            if (line.starts_with(known) && line.find_first_of("\r\n\0"sv) == std::string::npos) {
                verb = known;
            }
        }
        if (line == "AUTH LOGIN") answers = 2;
        verbs.push_back(verb);
    }
    return verbs;
}

bool BreaksLine(WideView text) {
    return ToAnsi(text.substr(0, text.find(WCHAR(0)))).find_first_of("\r\n") != std::string::npos;
}

class Injection : public ::testing::Test {
protected:
    testing::RecordingPeer peer;
    const ComPtr<ISmtpMail> mail = New<CSmtpMail, ISmtpMail>();
    const std::vector<WideString> attacks = Attacks();
    BstrHolder outcome;
    LONG code = 77;

    Injection() {
        mail->put_SmtpPort(peer.port());
        mail->put_ConnectAttempts(1);
        mail->put_ReplyTimeout(5);
        UseAccount({});
    }

    void UseAccount(const Draft& draft) {
        mail->put_SmtpServer(Bstr(draft.server));
        mail->put_SenderHostname(Bstr(draft.helo));
        mail->put_SmtpUsername(Bstr(draft.user));
        mail->put_SmtpPassword(Bstr(draft.password));
    }

    HRESULT Send(const Draft& draft) {
        UseAccount(draft);
        return mail->Send(Message(draft).Get(), VARIANT_TRUE, outcome.Receive(), &code);
    }

    // Nothing was sent, and the caller is told why.
    void ExpectRefusal(HRESULT status, const std::vector<std::string>& verbs) {
        EXPECT_TRUE(FAILED(status) || code == -1);
        EXPECT_TRUE(FAILED(status) ? TakeErrorText() != "-" : !FromBstr(outcome.Get()).empty());
        EXPECT_THAT(verbs, ::testing::Not(::testing::Contains("DATA")));
    }

    using Record = testing::RecordingPeer::Record;

    // The same dialogue and the same structure; the name of the caller's own field may differ.
    static void ExpectAsMeant(const Record& record, const Record& meant, bool otherName) {
        EXPECT_EQ(Verbs(record.lines), Verbs(meant.lines));
        ASSERT_EQ(record.messages.size(), 1u);
        std::vector<std::string> names = Shape::Of(record.messages[0]);
        const std::vector<std::string> meantNames = Shape::Of(meant.messages[0]);
        if (otherName && names.size() == meantNames.size()) {
            const auto own = std::find(meantNames.begin(), meantNames.end(), "X-Own");
            std::string& name = names[static_cast<std::size_t>(own - meantNames.begin())];
            EXPECT_TRUE(name.starts_with('a') || name.starts_with('\xE9')) << name;
            name = "X-Own";
        }
        EXPECT_EQ(names, meantNames);
    }
};

TEST_F(Injection, StaysInItsPlaceWhereverItIs) {
    for (const Place& place : kPlaces) {
        Draft harmless;
        harmless.encoding = place.encoding;
        if ((harmless.*place.text).empty()) harmless.*place.text = OLESTR("none");
        ASSERT_EQ(Send(harmless), S_OK) << place.what;
        const auto meant = peer.Take();
        ASSERT_EQ(meant.messages.size(), 1u);
        for (const WideString& attack : attacks) {
            SCOPED_TRACE(std::string(place.what) + ": " + testing::Printable(ToUtf8(attack)));
            Draft hostile = harmless;
            WideString& text = hostile.*place.text;
            text = place.kind == Place::Kind::Server ? text + attack.substr(1) : attack;
            const bool isRefused = place.kind != Place::Kind::Message && BreaksLine(text);
            // What isn't refused as the name of a server is looked up in the network.
            if (place.kind == Place::Kind::Server && !isRefused) continue;
            const HRESULT status = Send(hostile);
            const auto record = peer.Take();
            EXPECT_EQ(record.rest, "");
            if (isRefused) {
                ExpectRefusal(status, Verbs(record.lines));
            } else {
                EXPECT_EQ(status, S_OK) << Show(FromBstr(outcome.Get()));
                ExpectAsMeant(record, meant, place.text == &Draft::fieldName);
            }
        }
    }
}

// In the lists of the simple sends, and in HTML files, whose references become names of files.
TEST_F(Injection, StaysInItsPlaceInSimpleSends) {
    const ScratchFolder folder;
    const WideString from = OLESTR("from@x"), to = OLESTR("to@x"), plain = OLESTR("a");
    const auto send = [&](const WideString& sender, const WideString& recipients,
                          const WideString& subject, const WideString& body,
                          const WideString& attachments = {}) {
        return mail->SimpleSendAttachment(Bstr(sender), Bstr(recipients), Bstr(subject), Bstr(body),
                                          Bstr(attachments), outcome.Receive(), &code);
    };
    const auto sendPage = [&](const WideString& path) {
        return mail->SimpleSendHTML(Bstr(from), Bstr(to), Bstr(plain), Bstr(path),
                                    outcome.Receive(), &code);
    };
    const auto sendReference = [&](const WideString& reference) {
        return sendPage(
            ToWide(folder.Write("page.html", "<img src=\"" + LowBytes(reference) + "\">")));
    };
    enum class Outcome { Sent, RefusedIfBroken, Refused };
    const struct {
        const char* what;
        Outcome outcome;
        std::size_t recipients;
        std::function<HRESULT(const WideString& attack)> send;
    } cases[] = {
        {"from", Outcome::RefusedIfBroken, 1,
         [&](const WideString& attack) { return send(attack, to, plain, plain); }},
        {"name in from", Outcome::Sent, 1,
         [&](const WideString& attack) {
             return send(attack + OLESTR("<from@x>"), to, plain, plain);
         }},
        {"second recipient", Outcome::RefusedIfBroken, 2,
         [&](const WideString& attack) {
             return send(from, OLESTR("to@x; ") + attack, plain, plain);
         }},
        {"subject", Outcome::Sent, 1,
         [&](const WideString& attack) { return send(from, to, attack, plain); }},
        {"body", Outcome::Sent, 1,
         [&](const WideString& attack) { return send(from, to, plain, attack); }},
        {"HTML body", Outcome::Sent, 1,
         [&](const WideString& attack) {
             return send(from, to, plain, OLESTR("<html>") + attack);
         }},
        {"attachment", Outcome::Refused, 0,
         [&](const WideString& attack) { return send(from, to, plain, plain, attack); }},
        {"HTML file", Outcome::Refused, 0, sendPage},
        {"reference", Outcome::Refused, 0, sendReference},
        {"remote reference", Outcome::Sent, 1,
         [&](const WideString& attack) {
             const WideString whole = attack.substr(0, attack.find(WCHAR(0)));
             return sendReference(OLESTR("http://x/") + whole);
         }},
    };
    ASSERT_EQ(send(from, to, plain, plain), S_OK);
    const std::vector<std::string> meantNames = Shape::Of(peer.Take().messages.at(0));
    for (const auto& c : cases) {
        for (const WideString& attack : attacks) {
            SCOPED_TRACE(std::string(c.what) + ": " + testing::Printable(ToUtf8(attack)));
            const HRESULT status = c.send(attack);
            const auto record = peer.Take();
            const std::vector<std::string> verbs = Verbs(record.lines);
            if (c.outcome == Outcome::Refused ||
                (c.outcome == Outcome::RefusedIfBroken && BreaksLine(attack))) {
                ExpectRefusal(status, verbs);
                continue;
            }
            EXPECT_EQ(status, S_OK) << Show(FromBstr(outcome.Get()));
            EXPECT_EQ(std::count(verbs.begin(), verbs.end(), "RCPT TO: <"),
                      static_cast<std::ptrdiff_t>(c.recipients));
            EXPECT_EQ(verbs.size(), c.recipients + 7);
            ASSERT_EQ(record.messages.size(), 1u);
            EXPECT_EQ(Shape::Of(record.messages[0]), meantNames);
        }
    }
}

}  // namespace
}  // namespace quorvane

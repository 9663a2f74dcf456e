// quorvane.hpp: texts, ownership and failures, as its users meet them.
#include "quorvane.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <string_view>
#include <tuple>

#include "quorvane_events.hpp"

namespace quorvane::client {
namespace {

using namespace std::string_view_literals;

TEST(ClientHeader, TextGoesThereAndBack) {
    const struct {
        std::string_view utf8;
        std::u16string_view utf16;
    } cases[] = {
        {"", u""},
        {"a\0b"sv, u"a\0b"sv},
        {"\x7F\xC2\x80\xDF\xBF", u"\x7F\u0080\u07FF"},
        {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", u"\u0800\uD7FF\uE000\uFFFF"},
        {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\U00010000\U0010FFFF"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ToUtf16(c.utf8), c.utf16);
        EXPECT_EQ(ToUtf8(c.utf16), c.utf8);
        EXPECT_EQ(Bstr(c.utf8).utf8(), c.utf8);
        EXPECT_EQ(Bstr(c.utf16).utf16(), c.utf16);
    }
}

TEST(ClientHeader, MalformedTextBecomesReplacements) {
    const struct {
        std::string_view utf8;
        std::u16string_view utf16;
    } cases[] = {
        {"\x80x", u"\uFFFDx"},                              // continuation alone
        {"\xC3", u"\uFFFD"},                                // cut off
        {"\xE2\x82x", u"\uFFFDx"},                          // cut off after two
        {"\xF0\x9F\x98", u"\uFFFD"},                        // cut off after three
        {"\xC0\x80", u"\uFFFD\uFFFD"},                      // over-long
        {"\xE0\x80\x80", u"\uFFFD\uFFFD\uFFFD"},            // over-long
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},            // surrogate
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // above U+10FFFF
        {"\xFF\xFE", u"\uFFFD\uFFFD"},
    };
    for (const auto& c : cases) EXPECT_EQ(ToUtf16(c.utf8), c.utf16);

    const char16_t high = 0xD83D, low = 0xDE00;
    EXPECT_EQ(ToUtf8(std::u16string{high}), "\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(std::u16string{low, high}), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(std::u16string{high, high, low}), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
}

TEST(ClientHeader, ObjectsLiveAsLongAsSomebodyHoldsThem) {
    const Apartment apartment;
    auto message = Create<IMailMessage>();
    ComPtr<IMailMessage> copy = message;
    ComPtr<IMailMessage> moved = std::move(message);
    EXPECT_EQ(message.get(), nullptr);
    moved = ComPtr<IMailMessage>();
    Check(copy->put_MessageSubject(Bstr("kept")), copy);
    Bstr subject;
    Check(copy->get_MessageSubject(subject.Put()), copy);
    Check(copy->get_MessageSubject(subject.Put()), copy);  // frees what it held
    EXPECT_EQ(subject.utf8(), "kept");
    EXPECT_TRUE(copy.As<IDispatch>());
    EXPECT_FALSE(copy.As<ISmtpMail>());
}

TEST(ClientHeader, FailuresCarryStatusAndText) {
    const Apartment apartment;
    Mailer mailer("localhost", 1);
    auto message = Create<IMailMessage>();
    try {
        mailer.Send(Message());
        FAIL() << "a message without a sender was accepted";
    } catch (const Error& error) {
        EXPECT_EQ(error.status(), E_INVALIDARG);
        EXPECT_STREQ(error.what(), "Sender address can't be empty");
    }
    try {
        // Sets no error information, so the one of an earlier call must not be shown.
        LONG code = 0;
        mailer.com()->Send(message, VARIANT_TRUE, nullptr, &code);
        Check(message->AddRecipient(nullptr), message);
        FAIL() << "a null recipient was accepted";
    } catch (const Error& error) {
        EXPECT_EQ(error.status(), E_INVALIDARG);
        EXPECT_STREQ(error.what(), "The call failed with status 0x80070057.");
    }
}

// What the object answers, as text.
template <typename Interface>
std::string Asked(const ComPtr<Interface>& object, HRESULT (Interface::*get)(BSTR*)) {
    Bstr text;
    Check((object.get()->*get)(text.Put()), object);
    return text.utf8();
}

TEST(ClientHeader, TextOfEachKindIsTaken) {
    const Apartment apartment;
    const std::string_view view8 = "\xC3\xBC\0"sv;
    const std::u16string_view view16 = u"\u00FC";
    const std::string subjects[] = {
        Asked(Message().Subject("\xC3\xBC").com(), &IMailMessage::get_MessageSubject),
        Asked(Message().Subject(view8).com(), &IMailMessage::get_MessageSubject),
        Asked(Message().Subject(std::string(view8)).com(), &IMailMessage::get_MessageSubject),
        Asked(Message().Subject(u"\u00FC").com(), &IMailMessage::get_MessageSubject),
        Asked(Message().Subject(view16).com(), &IMailMessage::get_MessageSubject),
        Asked(Message().Subject(std::u16string(view16)).com(), &IMailMessage::get_MessageSubject),
    };
    for (const std::string& subject : subjects) EXPECT_EQ(subject, "\xC3\xBC");
    for (const Mailbox& ann :
         {Mailbox(std::u16string(u"ann@example.org")), Mailbox("Ann", u"ann@example.org"sv)}) {
        EXPECT_EQ(Asked(ann.com(), &IMailAddress::get_Address), "ann@example.org");
    }
}

TEST(ClientHeader, WhatIsSetReachesTheObjects) {
    const Apartment apartment;
    Message message;
    message.Html("<p>").Alternative("p").Charset("unicode").AlternativeCharset("koi8-r");
    message.Id("one@example.org").BodyFile("a.html").Encoding(MailEncoding8Bit);
    message.Priority(MailPriorityLow).ReadReceipt();
    const struct {
        HRESULT (IMailMessage::*get)(BSTR*);
        const char* value;
    } texts[] = {
        {&IMailMessage::get_MessageBody, "<p>"},
        {&IMailMessage::get_AltMessageBody, "p"},
        {&IMailMessage::get_MessageBodyCharset, "unicode"},
        {&IMailMessage::get_AltMessageBodyCharset, "koi8-r"},
        {&IMailMessage::get_MessageId, "one@example.org"},
        {&IMailMessage::get_MessageBodyFile, "a.html"},
    };
    for (const auto& text : texts) EXPECT_EQ(Asked(message.com(), text.get), text.value);
    MailFormat format{};
    MailEncoding body{}, alternative{};
    MailPriority priority{};
    VARIANT_BOOL receipt{};
    Check(message.com()->get_MessageBodyFormat(&format));
    Check(message.com()->get_MessageBodyEncoding(&body));
    Check(message.com()->get_AltMessageBodyEncoding(&alternative));
    Check(message.com()->get_MessagePriority(&priority));
    Check(message.com()->get_RequestReadReceipt(&receipt));
    EXPECT_EQ(std::tuple(format, body, alternative, priority, receipt),
              std::tuple(MailFormatHtml, MailEncoding8Bit, MailEncoding8Bit, MailPriorityLow,
                         VARIANT_TRUE));
}

TEST(ClientHeader, QueuedMessagesAreKnownByTheirNumbers) {
    const Apartment apartment;
    Mailer mailer("127.0.0.1", 1);
    mailer.ConnectAttempts(1).ReplyTimeout(std::chrono::seconds(5)).MaxThreads(1);
    Message message;
    message.From("a@example.org").To("b@example.org");
    const LONG number = mailer.Queue(message);
    EXPECT_EQ(number, 1);
    mailer.CancelAll();
    while (mailer.QueueSize() > 0) TakeMessages(std::chrono::milliseconds(10));
    EXPECT_GE(mailer.Status(number), MailStatusFailed);
    EXPECT_NE(mailer.OutcomeOf(number).code, 0);
    EXPECT_THROW(mailer.Status(number + 1), Error);
}

TEST(ClientHeader, VariantsOwnTheirText) {
    Variant text{
        Bstr("Grüße"
             "e")};
    EXPECT_EQ(text.get().vt, VT_BSTR);
    EXPECT_EQ(text.utf8(),
              "Grüße"
              "e");
    EXPECT_EQ(text.Put()->vt, VT_EMPTY);
    EXPECT_EQ(text.utf8(), "");
}

}  // namespace
}  // namespace quorvane::client

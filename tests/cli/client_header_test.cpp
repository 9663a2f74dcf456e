// quorvane.hpp: texts, ownership and failures, as its users meet them.
#include "quorvane.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

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
    auto mail = Create<ISmtpMail>();
    auto message = Create<IMailMessage>();
    try {
        Send(mail, message);
        FAIL() << "a message without a sender was accepted";
    } catch (const Error& error) {
        EXPECT_EQ(error.status(), E_INVALIDARG);
        EXPECT_STREQ(error.what(), "Sender address can't be empty");
    }
    try {
        // Sets no error information, so the one of an earlier call must not be shown.
        LONG code = 0;
        mail->Send(message, VARIANT_TRUE, nullptr, &code);
        Check(message->AddRecipient(nullptr), message);
        FAIL() << "a null recipient was accepted";
    } catch (const Error& error) {
        EXPECT_EQ(error.status(), E_INVALIDARG);
        EXPECT_STREQ(error.what(), "The call failed with status 0x80070057.");
    }
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

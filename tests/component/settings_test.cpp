#include <gtest/gtest.h>

#include "component/smtp_mail.h"
#include "tests/support/com.h"

namespace quorvane {
namespace {

template <class Value>
Value Get(ISmtpMail* mail, HRESULT (STDMETHODCALLTYPE ISmtpMail::*get)(Value*)) {
    Value value{};
    EXPECT_EQ((mail->*get)(&value), S_OK);
    return value;
}

TEST(SmtpMail, Defaults) {
    const auto mail = New<CSmtpMail, ISmtpMail>();
    EXPECT_EQ(Get(mail.Get(), &ISmtpMail::get_SmtpPort), 25);
    EXPECT_EQ(Get(mail.Get(), &ISmtpMail::get_ConnectAttempts), 2);
    EXPECT_EQ(Get(mail.Get(), &ISmtpMail::get_ReplyTimeout), 30);
    EXPECT_EQ(Get(mail.Get(), &ISmtpMail::get_MaxThreads), 5);
    EXPECT_EQ(Get(mail.Get(), &ISmtpMail::get_SmtpSSL), VARIANT_FALSE);
    EXPECT_EQ(Get(mail.Get(), &ISmtpMail::get_SmtpSPA), VARIANT_FALSE);
    EXPECT_EQ(Get(mail.Get(), &ISmtpMail::GetLastErrorCode), 0);
    for (auto get :
         {&ISmtpMail::get_SmtpServer, &ISmtpMail::get_SmtpUsername, &ISmtpMail::get_SmtpPassword,
          &ISmtpMail::get_SenderHostname, &ISmtpMail::GetLastErrorDescription}) {
        EXPECT_EQ(GetString(mail.Get(), get), OLESTR(""));
    }
}

TEST(SmtpMail, StringSettingsAreIndependent) {
    const auto mail = New<CSmtpMail, ISmtpMail>();
    const struct {
        HRESULT (STDMETHODCALLTYPE ISmtpMail::*get)(BSTR*);
        HRESULT (STDMETHODCALLTYPE ISmtpMail::*put)(BSTR);
    } settings[] = {{&ISmtpMail::get_SmtpServer, &ISmtpMail::put_SmtpServer},
                    {&ISmtpMail::get_SmtpUsername, &ISmtpMail::put_SmtpUsername},
                    {&ISmtpMail::get_SmtpPassword, &ISmtpMail::put_SmtpPassword},
                    {&ISmtpMail::get_SenderHostname, &ISmtpMail::put_SenderHostname}};
    WideString text = OLESTR("a");
    for (const auto& s : settings) {
        ++text[0];
        ASSERT_EQ((mail.Get()->*s.put)(Bstr(text)), S_OK);
    }
    text = OLESTR("a");
    for (const auto& s : settings) {
        ++text[0];
        EXPECT_EQ(GetString(mail.Get(), s.get), text);
        EXPECT_EQ((mail.Get()->*s.put)(nullptr), S_OK);
        EXPECT_EQ(GetString(mail.Get(), s.get), OLESTR("")) << "null reads back as empty";
        EXPECT_EQ((mail.Get()->*s.get)(nullptr), E_INVALIDARG);
    }
}

TEST(SmtpMail, NumbersKeepTheirLimits) {
    const auto mail = New<CSmtpMail, ISmtpMail>();
    const struct {
        HRESULT (STDMETHODCALLTYPE ISmtpMail::*get)(LONG*);
        HRESULT (STDMETHODCALLTYPE ISmtpMail::*put)(LONG);
        LONG value, expected;
    } cases[] = {
        {&ISmtpMail::get_SmtpPort, &ISmtpMail::put_SmtpPort, 0, 0},
        {&ISmtpMail::get_SmtpPort, &ISmtpMail::put_SmtpPort, -1, -1},
        {&ISmtpMail::get_SmtpPort, &ISmtpMail::put_SmtpPort, 70000, 70000},
        {&ISmtpMail::get_ConnectAttempts, &ISmtpMail::put_ConnectAttempts, 0, 0},
        {&ISmtpMail::get_ConnectAttempts, &ISmtpMail::put_ConnectAttempts, -3, -3},
        {&ISmtpMail::get_ReplyTimeout, &ISmtpMail::put_ReplyTimeout, 1, 1},
        {&ISmtpMail::get_ReplyTimeout, &ISmtpMail::put_ReplyTimeout, 0, 30},
        {&ISmtpMail::get_ReplyTimeout, &ISmtpMail::put_ReplyTimeout, -5, 30},
        {&ISmtpMail::get_MaxThreads, &ISmtpMail::put_MaxThreads, 7, 7},
        {&ISmtpMail::get_MaxThreads, &ISmtpMail::put_MaxThreads, 0, 1},
        {&ISmtpMail::get_MaxThreads, &ISmtpMail::put_MaxThreads, -2, 1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ((mail.Get()->*c.put)(c.value), S_OK);
        EXPECT_EQ(Get(mail.Get(), c.get), c.expected) << c.value;
    }
    EXPECT_EQ(mail->put_SmtpSSL(1), S_OK);
    EXPECT_EQ(Get(mail.Get(), &ISmtpMail::get_SmtpSSL), 1) << "stored as given";
    EXPECT_EQ(Get(mail.Get(), &ISmtpMail::get_SmtpSPA), 0);
    EXPECT_EQ(mail->GetLastErrorCode(nullptr), E_INVALIDARG);
    EXPECT_EQ(mail->GetLastErrorDescription(nullptr), E_INVALIDARG);
}

}  // namespace
}  // namespace quorvane

// Every kind of parameter of the four interfaces, there and back between two apartments: late
// bound and, where proxies have them, through the interfaces themselves.
#include "tests/server/marshalling/remote.h"

#include <gtest/gtest.h>
#include <olectl.h>

#include <optional>

#include "Quorvane.h"
#include "tests/component/listener.h"
#include "tests/servers/loopback.h"
#include "tests/servers/mail_peer.h"

namespace quorvane::testing {
namespace {

class MarshallingTest : public ::testing::Test {
protected:
    struct Objects {
        explicit Objects(PumpingThread& home) : home(home) {}

        PumpingThread& home;
        Remote mail{home, CLSID_SmtpMail, IID_ISmtpMail};
        Remote message{home, CLSID_MailMessage, IID_IMailMessage};
        Remote address{home, CLSID_MailAddress, IID_IMailAddress};
        Remote attachment{home, CLSID_MailAttachment, IID_IMailAttachment};
    };

    Apartment apartment_;
    PumpingThread home_;
    std::optional<Objects> objects_{std::in_place, home_};
    Remote& mail_ = objects_->mail;
    Remote& message_ = objects_->message;
    Remote& address_ = objects_->address;
    Remote& attachment_ = objects_->attachment;
};

std::string WayText(Way way) {
    return way == Way::kDispatch ? "late bound" : "through the interface";
}

// Stands first, since Wine keeps references on objects that were arguments.
TEST_F(MarshallingTest, LibraryMayGoWithTheLastProxy) {
    for (const Way way : Ways()) EXPECT_EQ(address_.Put(way, OLESTR("Name"), OLESTR("x")), S_OK);
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
    objects_.reset();
    EXPECT_TRUE(PumpUntil([] { return DllCanUnloadNow() == S_OK; }));
}

TEST_F(MarshallingTest, PropertiesKeepEveryBit) {
    const struct {
        const Remote& object;
        const WCHAR* member;
        std::vector<Value> values;
    } rows[] = {
        {mail_, OLESTR("SmtpServer"), {OLESTR("Zoë \U0001F600 \x20AC"), OLESTR("")}},
        {mail_, OLESTR("SmtpPort"), {LONG{0x12345}, LONG{-1}}},
        {mail_, OLESTR("SmtpSSL"), {true, false}},
        {message_, OLESTR("MessageBody"), {WideString(100000, WCHAR(0x416)).c_str()}},
        {message_, OLESTR("MessageBodyFormat"), {LONG{0x12345678}, LONG{1}}},
        {message_, OLESTR("MessageBodyEncoding"), {LONG{0x10003}, LONG{-2}}},
        {message_, OLESTR("MessagePriority"), {LONG{0x7FFFFFFF}, LONG{5}}},
        {message_, OLESTR("RequestReadReceipt"), {true}},
        {address_, OLESTR("Name"), {OLESTR("Ann \"A\" Müller")}},
        {attachment_, OLESTR("Encoding"), {LONG{0x20001}, LONG{2}}},
        {attachment_, OLESTR("Inline"), {true}},
        {attachment_, OLESTR("ContentId"), {OLESTR("logo@x")}},
    };
    for (const Way way : Ways()) {
        SCOPED_TRACE(WayText(way));
        for (const auto& row : rows) {
            EXPECT_NE(static_cast<const void*>(row.object.proxy()), row.object.object());
            for (const Value& value : row.values) {
                EXPECT_EQ(row.object.Put(way, row.member, value), S_OK) << ToUtf8(row.member);
                EXPECT_EQ(row.object.Get(way, row.member).Text(), value.Text())
                    << ToUtf8(row.member);
            }
        }
    }
}

TEST_F(MarshallingTest, ObjectsGoInAndComeOut) {
    for (const Way way : Ways()) {
        SCOPED_TRACE(WayText(way));
        ASSERT_EQ(address_.Put(way, OLESTR("Address"), OLESTR("ok@example.org")), S_OK);
        ASSERT_EQ(message_.Put(way, OLESTR("Sender"), address_.proxy()), S_OK);
        const Value sender = message_.Get(way, OLESTR("Sender"));
        ASSERT_EQ(sender.value.vt, VT_DISPATCH);
        // The message gives out a copy, which stays in its apartment.
        EXPECT_NE(sender.value.pdispVal, address_.proxy());
        DISPPARAMS none{};
        Value text;
        DISPID id = 2;
        EXPECT_EQ(
            sender.value.pdispVal->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET,
                                          &none, &text.value, nullptr, nullptr),
            S_OK);
        EXPECT_EQ(text.Text(), "\"ok@example.org\"");
    }
}

TEST_F(MarshallingTest, OutcomesComeBackBesideTheResult) {
    const LoopbackListener closed(false);
    EXPECT_EQ(mail_.Put(Way::kDispatch, OLESTR("SmtpServer"), OLESTR("127.0.0.1")), S_OK);
    EXPECT_EQ(mail_.Put(Way::kDispatch, OLESTR("SmtpPort"), LONG{ntohs(closed.port())}), S_OK);
    EXPECT_EQ(mail_.Put(Way::kDispatch, OLESTR("ConnectAttempts"), LONG{1}), S_OK);
    const std::vector<Value> arguments{OLESTR("a@x"), OLESTR("b@x"), OLESTR("s"), OLESTR("b")};
    for (const Way way : Ways()) {
        SCOPED_TRACE(WayText(way));
        BstrHolder text;
        VARIANT byText{};
        byText.vt = VT_BYREF | VT_BSTR;
        byText.pbstrVal = text.Receive();
        Value code;
        EXPECT_TRUE(SUCCEEDED(
            mail_.Call(way, OLESTR("SimpleSend"), DISPATCH_METHOD, arguments, {byText}, code)));
        EXPECT_EQ(code.Text(), "-1");
        EXPECT_NE(ToUtf8(FromBstr(text.Get())).find("connection refused"), std::string::npos);

        Value scriptText;
        VARIANT byVariant{};
        byVariant.vt = VT_BYREF | VT_VARIANT;
        byVariant.pvarVal = &scriptText.value;
        Value scriptCode;
        EXPECT_TRUE(SUCCEEDED(mail_.Call(way, OLESTR("SimpleSendScriptable"), DISPATCH_METHOD,
                                         arguments, {byVariant}, scriptCode)));
        EXPECT_EQ(scriptCode.Text(), "-1");
        EXPECT_EQ(scriptText.Text(), '"' + ToUtf8(FromBstr(text.Get())) + '"');
        // A failure's status comes back, too. What goes out only is empty before.
        SysFreeString(*byText.pbstrVal);
        *byText.pbstrVal = nullptr;
        EXPECT_EQ(
            mail_.Call(way, OLESTR("SimpleSendHTML"), DISPATCH_METHOD, arguments, {byText}, code),
            DISP_E_EXCEPTION);
        SysFreeString(*byText.pbstrVal);
        *byText.pbstrVal = nullptr;
    }
}

TEST_F(MarshallingTest, QueueAndHandlerWorkFromAnotherApartment) {
    MailPeer peer;
    EXPECT_EQ(address_.Put(Way::kDispatch, OLESTR("Address"), OLESTR("ok@x")), S_OK);
    EXPECT_EQ(message_.Put(Way::kDispatch, OLESTR("Sender"), address_.proxy()), S_OK);
    // Static for the same reason.
    static Listener handler(Listener::Function);
    for (const Way way : Ways()) {
        SCOPED_TRACE(WayText(way));
        handler.events.clear();
        {
            const Remote mail(home_, CLSID_SmtpMail, IID_ISmtpMail);
            EXPECT_EQ(mail.Put(way, OLESTR("SmtpServer"), OLESTR("127.0.0.1")), S_OK);
            EXPECT_EQ(mail.Put(way, OLESTR("SmtpPort"), LONG{peer.port()}), S_OK);
            Value none;
            EXPECT_EQ(message_.Call(way, OLESTR("AddRecipient"), DISPATCH_METHOD,
                                    {address_.proxy()}, {}, none),
                      S_OK);
            EXPECT_EQ(
                mail.Put(way, OLESTR("OnStatusChangeHandler"), static_cast<IDispatch*>(&handler)),
                S_OK);
            Value number;
            EXPECT_EQ(mail.Call(way, OLESTR("SendAsync"), DISPATCH_METHOD, {message_.proxy(), true},
                                {}, number),
                      S_OK);
            // A function's own member is number 0.
            const Event sent{DISPID_VALUE, {number.value.lVal, MailStatusSent}};
            EXPECT_TRUE(PumpUntil(
                [&] { return !handler.events.empty() && handler.events.back() == sent; }));
            Value status;
            EXPECT_EQ(mail.Call(way, OLESTR("GetStatus"), DISPATCH_METHOD, {number}, {}, status),
                      S_OK);
            EXPECT_EQ(status.Text(), std::to_string(MailStatusSent));
        }
        if (!kInterfacesCross) {
            EXPECT_TRUE(PumpUntil([&] { return handler.references == 0; }));
        }
    }
}

}  // namespace
}  // namespace quorvane::testing

#include "model/mail_message.h"

#include <gtest/gtest.h>

#include "automation/boundary.h"
#include "model/mail_address.h"
#include "tests/support/com.h"

namespace quorvane {
namespace {

ComPtr<IMailAddress> Address(WideView address, WideView name = {}) {
    auto object = New<CMailAddress, IMailAddress>();
    EXPECT_EQ(object->put_Address(Bstr(address)), S_OK);
    EXPECT_EQ(object->put_Name(Bstr(name)), S_OK);
    return object;
}

TEST(MailMessage, Defaults) {
    const auto message = New<CMailMessage, IMailMessage>();
    for (auto get : {&IMailMessage::get_MessageSubject, &IMailMessage::get_MessageBody,
                     &IMailMessage::get_AltMessageBody, &IMailMessage::get_MessageBodyCharset,
                     &IMailMessage::get_AltMessageBodyCharset, &IMailMessage::get_MessageId,
                     &IMailMessage::get_MessageBodyFile}) {
        EXPECT_EQ(GetString(message.Get(), get), OLESTR(""));
    }
    MailPriority priority = MailPriorityLow;
    MailFormat format = MailFormatHtml;
    MailEncoding body = MailEncoding8Bit;
    MailEncoding alternative = MailEncoding8Bit;
    VARIANT_BOOL receipt = VARIANT_TRUE;
    EXPECT_EQ(message->get_MessagePriority(&priority), S_OK);
    EXPECT_EQ(message->get_MessageBodyFormat(&format), S_OK);
    EXPECT_EQ(message->get_MessageBodyEncoding(&body), S_OK);
    EXPECT_EQ(message->get_AltMessageBodyEncoding(&alternative), S_OK);
    EXPECT_EQ(message->get_RequestReadReceipt(&receipt), S_OK);
    EXPECT_EQ(priority, MailPriorityNormal);
    EXPECT_EQ(format, MailFormatText);
    EXPECT_EQ(body, MailEncodingDefault);
    EXPECT_EQ(alternative, MailEncodingDefault);
    EXPECT_EQ(receipt, VARIANT_FALSE);
    ComPtr<IMailAddress> sender;
    ASSERT_EQ(message->get_Sender(sender.Receive()), S_OK);
    EXPECT_EQ(GetString(sender.Get(), &IMailAddress::get_Name), OLESTR(""));
    EXPECT_EQ(GetString(sender.Get(), &IMailAddress::get_Address), OLESTR(""));
}

// Each string property keeps its own text: none of them shares a member with another.
TEST(MailMessage, StringPropertiesAreIndependent) {
    const auto message = New<CMailMessage, IMailMessage>();
    const struct {
        HRESULT (STDMETHODCALLTYPE IMailMessage::*get)(BSTR*);
        HRESULT (STDMETHODCALLTYPE IMailMessage::*put)(BSTR);
    } properties[] = {
        {&IMailMessage::get_MessageSubject, &IMailMessage::put_MessageSubject},
        {&IMailMessage::get_MessageBody, &IMailMessage::put_MessageBody},
        {&IMailMessage::get_AltMessageBody, &IMailMessage::put_AltMessageBody},
        {&IMailMessage::get_MessageBodyCharset, &IMailMessage::put_MessageBodyCharset},
        {&IMailMessage::get_AltMessageBodyCharset, &IMailMessage::put_AltMessageBodyCharset},
        {&IMailMessage::get_MessageId, &IMailMessage::put_MessageId},
        {&IMailMessage::get_MessageBodyFile, &IMailMessage::put_MessageBodyFile},
    };
    WideString text = OLESTR("a");
    for (const auto& p : properties) {
        ++text[0];
        ASSERT_EQ((message.Get()->*p.put)(Bstr(text + WCHAR(0) + OLESTR("after"))), S_OK);
    }
    text = OLESTR("a");
    for (const auto& p : properties) {
        ++text[0];
        EXPECT_EQ(GetString(message.Get(), p.get), text);
        EXPECT_EQ((message.Get()->*p.put)(nullptr), S_OK);
        EXPECT_EQ(GetString(message.Get(), p.get), OLESTR(""));
        EXPECT_EQ((message.Get()->*p.get)(nullptr), E_INVALIDARG);
    }
}

TEST(MailMessage, EnumerationsKeepAnyInteger) {
    const auto message = New<CMailMessage, IMailMessage>();
    MailPriority priority;
    StoreEnumeration(2, &priority);
    EXPECT_EQ(message->put_MessagePriority(priority), S_OK);
    EXPECT_EQ(message->get_MessagePriority(&priority), S_OK);
    EXPECT_EQ(EnumerationValue(priority), 2);
    MailFormat format;
    StoreEnumeration(-7, &format);
    EXPECT_EQ(message->put_MessageBodyFormat(format), S_OK);
    EXPECT_EQ(message->get_MessageBodyFormat(&format), S_OK);
    EXPECT_EQ(EnumerationValue(format), -7);
    VARIANT_BOOL receipt = 0;
    EXPECT_EQ(message->put_RequestReadReceipt(5), S_OK);
    EXPECT_EQ(message->get_RequestReadReceipt(&receipt), S_OK);
    EXPECT_EQ(receipt, 5);
}

TEST(MailMessage, AddressesAreCopies) {
    const auto message = New<CMailMessage, IMailMessage>();
    const auto sender = Address(OLESTR("Jo <jo@x>"));
    ASSERT_EQ(message->put_Sender(sender.Get()), S_OK);
    ASSERT_EQ(sender->put_Address(Bstr(OLESTR("other@x"))), S_OK);

    ComPtr<IMailAddress> first;
    ComPtr<IMailAddress> second;
    ASSERT_EQ(message->get_Sender(first.Receive()), S_OK);
    ASSERT_EQ(message->get_Sender(second.Receive()), S_OK);
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_EQ(GetString(first.Get(), &IMailAddress::get_Name), OLESTR("Jo"));
    EXPECT_EQ(GetString(first.Get(), &IMailAddress::get_Address), OLESTR("jo@x"));
    ASSERT_EQ(first->put_Address(Bstr(OLESTR("changed@x"))), S_OK);
    ASSERT_EQ(message->get_Sender(second.Receive()), S_OK);
    EXPECT_EQ(GetString(second.Get(), &IMailAddress::get_Address), OLESTR("jo@x"));
}

TEST(MailMessage, ScriptTwinsSetTheSameMembers) {
    const ComPtr<CMailMessage> message(new CMailMessage);
    ASSERT_EQ(message->SetSender(Address(OLESTR("s@x"), OLESTR("S")).Get()), S_OK);
    ASSERT_EQ(message->SetReplyTo(Address(OLESTR("R <r@x>")).Get()), S_OK);
    EXPECT_EQ(message->content().sender.name, OLESTR("S"));
    EXPECT_EQ(message->content().sender.address, OLESTR("s@x"));
    EXPECT_EQ(message->content().replyTo.name, OLESTR("R"));
    EXPECT_EQ(message->content().replyTo.address, OLESTR("r@x"));
    ComPtr<IMailAddress> replyTo;
    ASSERT_EQ(message->get_ReplyTo(replyTo.Receive()), S_OK);
    EXPECT_EQ(GetString(replyTo.Get(), &IMailAddress::get_Address), OLESTR("r@x"));
}

TEST(MailMessage, RecipientListsAreSeparateAndKeepOrder) {
    const ComPtr<CMailMessage> message(new CMailMessage);
    const auto same = Address(OLESTR("a@x"));
    ASSERT_EQ(message->AddRecipient(same.Get()), S_OK);
    ASSERT_EQ(message->AddRecipient(Address(OLESTR("")).Get()), S_OK);
    ASSERT_EQ(message->AddRecipient(same.Get()), S_OK);
    ASSERT_EQ(message->AddCcRecipient(Address(OLESTR("c@x")).Get()), S_OK);
    ASSERT_EQ(message->AddBccRecipient(Address(OLESTR("b@x")).Get()), S_OK);
    const MessageContent& content = message->content();
    ASSERT_EQ(content.to.size(), 3u);
    EXPECT_EQ(content.to[1].address, OLESTR(""));
    EXPECT_EQ(content.to[2].address, OLESTR("a@x"));
    EXPECT_EQ(message->ClearRecipients(), S_OK);
    EXPECT_EQ(content.to.size(), 0u);
    EXPECT_EQ(content.cc.size(), 1u);
    EXPECT_EQ(message->ClearCcRecipients(), S_OK);
    EXPECT_EQ(content.cc.size(), 0u);
    EXPECT_EQ(content.bcc.size(), 1u);
    EXPECT_EQ(message->ClearBccRecipients(), S_OK);
    EXPECT_EQ(content.bcc.size(), 0u);
}

TEST(MailMessage, NullObjectsAreRefusedAndChangeNothing) {
    const ComPtr<CMailMessage> message(new CMailMessage);
    ASSERT_EQ(message->put_Sender(Address(OLESTR("s@x")).Get()), S_OK);
    for (auto call :
         {&IMailMessage::put_Sender, &IMailMessage::put_ReplyTo, &IMailMessage::SetSender,
          &IMailMessage::SetReplyTo, &IMailMessage::AddRecipient, &IMailMessage::AddCcRecipient,
          &IMailMessage::AddBccRecipient}) {
        EXPECT_EQ((static_cast<IMailMessage*>(message.Get())->*call)(nullptr), E_INVALIDARG);
    }
    EXPECT_EQ(message->AddAttachment(nullptr), E_INVALIDARG);
    EXPECT_EQ(message->get_Sender(nullptr), E_INVALIDARG);
    EXPECT_EQ(message->get_ReplyTo(nullptr), E_INVALIDARG);
    EXPECT_EQ(message->content().sender.address, OLESTR("s@x"));
    EXPECT_TRUE(message->content().to.empty());
}

std::string Headers(const CMailMessage& message) {
    std::string all;
    const HeaderList& headers = message.content().headers;
    for (std::size_t i = 0; i < headers.size(); ++i) {
        all += std::string(headers[i].name) + "=" + std::string(headers[i].value) + ";";
    }
    return all;
}

TEST(AddHeader, TrimsReplacesAndMovesToTheEnd) {
    const ComPtr<CMailMessage> message(new CMailMessage);
    const auto add = [&](WideView name, WideView value) {
        return message->AddHeader(Bstr(name), Bstr(value));
    };
    EXPECT_EQ(add(OLESTR("  X-Tag "), OLESTR(" v ")), S_OK);
    EXPECT_EQ(Headers(*message.Get()), "X-Tag=v;");
    EXPECT_EQ(add(OLESTR("X-A"), OLESTR("1")), S_OK);
    EXPECT_EQ(add(OLESTR("X-B"), OLESTR("2")), S_OK);
    EXPECT_EQ(add(OLESTR("X-A"), OLESTR("3")), S_OK);
    EXPECT_EQ(Headers(*message.Get()), "X-Tag=v;X-B=2;X-A=3;");
    EXPECT_EQ(add(OLESTR("x-a"), OLESTR("")), S_OK) << "case matters, an empty value doesn't";
    EXPECT_EQ(Headers(*message.Get()), "X-Tag=v;X-B=2;X-A=3;x-a=;");
    EXPECT_EQ(add(OLESTR("X-\u00e9"), OLESTR("\u3000caf\u00e9 \u4e2d ")), S_OK);
    EXPECT_EQ(message->content().headers[4].name, "X-\xE9");
    EXPECT_EQ(message->content().headers[4].value, "?caf\xE9 ?");
    const std::string before = Headers(*message.Get());
    for (WideView empty :
         {WideView(OLESTR("   ")), WideView(OLESTR("")), WideView(OLESTR("\r\n"))}) {
        EXPECT_EQ(add(empty, OLESTR("v")), E_INVALIDARG);
    }
    EXPECT_EQ(message->AddHeader(nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(Headers(*message.Get()), before);
}

TEST(MailMessage, SupportsErrorInfoForItsInterfaceOnly) {
    const auto message = New<CMailMessage, IMailMessage>();
    ComPtr<ISupportErrorInfo> support;
    ASSERT_EQ(message->QueryInterface(IID_ISupportErrorInfo, support.ReceiveVoid()), S_OK);
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IMailMessage), S_OK);
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IDispatch), S_FALSE);
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IMailAddress), S_FALSE);
}

TEST(MailMessage, IdentityAndLifetime) {
    EXPECT_TRUE(ModuleCanUnload());
    {
        const auto message = New<CMailMessage, IMailMessage>();
        EXPECT_FALSE(ModuleCanUnload());
        ComPtr<IUnknown> one;
        ComPtr<IUnknown> two;
        ComPtr<ISupportErrorInfo> support;
        ASSERT_EQ(message->QueryInterface(IID_IUnknown, one.ReceiveVoid()), S_OK);
        ASSERT_EQ(message->QueryInterface(IID_ISupportErrorInfo, support.ReceiveVoid()), S_OK);
        ASSERT_EQ(support->QueryInterface(IID_IUnknown, two.ReceiveVoid()), S_OK);
        EXPECT_EQ(one.Get(), two.Get());
        void* none = &one;
        EXPECT_EQ(message->QueryInterface(IID_IMailAddress, &none), E_NOINTERFACE);
        EXPECT_EQ(none, nullptr);
        EXPECT_EQ(message->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    }
    EXPECT_TRUE(ModuleCanUnload());
}

}  // namespace
}  // namespace quorvane

// The synchronous send: the two channels of failure, the settings on the wire, the last error.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "component/smtp_mail.h"
#include "model/mail_address.h"
#include "model/mail_attachment.h"
#include "model/mail_message.h"
#include "tests/servers/scripted_peer.h"
#include "tests/support/com.h"

namespace quorvane {
namespace {

using testing::Delivery;
using testing::ParseScript;
using testing::ScriptedPeer;

ComPtr<IMailAddress> Address(WideView address) {
    auto object = New<CMailAddress, IMailAddress>();
    EXPECT_EQ(object->put_Address(Bstr(address)), S_OK);
    return object;
}

// A message whose every byte on the wire is known.
ComPtr<IMailMessage> SampleMessage() {
    auto message = New<CMailMessage, IMailMessage>();
    message->put_Sender(Address(OLESTR("s@x")).Get());
    message->AddRecipient(Address(OLESTR("a@x")).Get());
    message->AddBccRecipient(Address(OLESTR("b@x")).Get());
    message->put_MessageSubject(Bstr(OLESTR("Hi")));
    message->put_MessageBody(Bstr(OLESTR("Hello\r\n.\r\nBye")));
    message->put_MessageId(Bstr(OLESTR("id@x")));
    message->AddHeader(Bstr(OLESTR("Date")), Bstr(OLESTR("today")));
    return message;
}

constexpr std::string_view kSampleText =
    "From: <s@x>\r\n"
    "To: <a@x>\r\n"
    "Subject: Hi\r\n"
    "Message-ID: <id@x>\r\n"
    "Importance: Normal\r\n"
    "X-MSMail-Priority: Normal\r\n"
    "X-Priority: 3 (Normal)\r\n"
    "X-Mailer: Quorvane ActiveX 4.1 (Lindbrek Quorvane)\r\n"
    "X-MimeOLE: Produced By Lindbrek Mime V4.1\r\n"
    "MIME-Version: 1.0\r\n"
    "Date: today\r\n"
    "Content-Type: text/plain;\r\n"
    "\tcharset=\"iso-8859-1\"\r\n"
    "Content-Transfer-Encoding: 7bit\r\n"
    "\r\n"
    "Hello\r\n"
    "..\r\n"
    "Bye\r\n"
    ".\r\n";

class Send : public ::testing::Test {
protected:
    ComPtr<ISmtpMail> mail = New<CSmtpMail, ISmtpMail>();
    BstrHolder text;
    LONG code = 77;

    void UsePeer(const ScriptedPeer& peer) {
        mail->put_SmtpServer(Bstr(OLESTR("127.0.0.1")));
        mail->put_SmtpPort(ntohs(peer.port()));
        mail->put_SenderHostname(Bstr(OLESTR("client.test")));
        mail->put_ReplyTimeout(5);
        mail->put_ConnectAttempts(1);
    }
    HRESULT SendSample() {
        return mail->Send(SampleMessage().Get(), VARIANT_TRUE, text.Receive(), &code);
    }
    void ExpectLastError(LONG expectedCode, WideView expectedText) {
        LONG lastCode = 99;
        EXPECT_EQ(mail->GetLastErrorCode(&lastCode), S_OK);
        EXPECT_EQ(lastCode, expectedCode);
        EXPECT_EQ(Show(GetString(mail.Get(), &ISmtpMail::GetLastErrorDescription)),
                  Show(expectedText));
    }
};

TEST_F(Send, DeliversTheMessageToTheByte) {
    ScriptedPeer peer(
        {ParseScript({"S: 220 mx", "C: EHLO client.test", "S: 250 mx", "C: MAIL FROM: <s@x>",
                      "S: 250 ok", "C: RCPT TO: <a@x>", "S: 250 ok", "C: RCPT TO: <b@x>",
                      "S: 250 ok", "C: DATA", "S: 354 go", "C: (message)", "S: 250 kept", "C: QUIT",
                      "S: 221 bye"})},
        Delivery::Whole);
    peer.ExpectMessage(std::string(kSampleText));
    UsePeer(peer);
    EXPECT_EQ(SendSample(), S_OK);
    peer.Finish();
    EXPECT_THAT(peer.deviations(), ::testing::IsEmpty());
    EXPECT_EQ(code, 0);
    EXPECT_EQ(text.Get(), nullptr) << "no text on success";
    ExpectLastError(0, {});
}

TEST_F(Send, RefusalGivesTheServersCodeAndWordsAndStaysTheLastError) {
    ScriptedPeer peer({ParseScript({"S: 220 mx", "C: EHLO client.test", "S: 250 mx",
                                    "C: MAIL FROM: <s@x>", "S: 250 ok", "C: RCPT TO: <a@x>",
                                    "S: 550 no such user", "C: QUIT", "S: 221 bye"})},
                      Delivery::Whole);
    UsePeer(peer);
    EXPECT_EQ(SendSample(), S_FALSE);
    peer.Finish();
    EXPECT_THAT(peer.deviations(), ::testing::IsEmpty());
    EXPECT_EQ(code, 550);
    EXPECT_EQ(FromBstr(text.Get()), OLESTR("550 no such user"));
    ExpectLastError(550, OLESTR("550 no such user"));
    EXPECT_EQ(TakeErrorText(), "-") << "a refusal is an outcome, not wrong use";
}

TEST_F(Send, AuthenticatesWithTheAccountOfTheSettings) {
    ScriptedPeer peer(
        {ParseScript({"S: 220 mx", "C: EHLO client.test", "S: 250-mx", "S: 250 AUTH LOGIN",
                      "C: AUTH LOGIN", "S: 334 VXNlcm5hbWU6", "C: am8=", "S: 334 UGFzc3dvcmQ6",
                      "C: c2VjcmV0", "S: 535 no", "C: QUIT", "S: 221 bye"})},
        Delivery::Whole);
    UsePeer(peer);
    mail->put_SmtpUsername(Bstr(OLESTR("jo")));
    mail->put_SmtpPassword(Bstr(OLESTR("secret")));
    EXPECT_EQ(SendSample(), S_FALSE);
    peer.Finish();
    EXPECT_THAT(peer.deviations(), ::testing::IsEmpty());
    EXPECT_EQ(code, 535);
    ExpectLastError(535, OLESTR("Authentication failed, invalid username or password"));
}

TEST_F(Send, WrongUseIsReportedBeforeAnythingIsSent) {
    // A failed send, whose outcome the checks below have to clear.
    mail->put_SmtpServer(Bstr(OLESTR("bad host name")));
    ASSERT_EQ(SendSample(), S_FALSE);
    mail->put_SmtpServer(nullptr);
    const auto fresh = New<CMailMessage, IMailMessage>();
    const auto noRecipient = New<CMailMessage, IMailMessage>();
    noRecipient->put_Sender(Address(OLESTR("s@x")).Get());
    const auto missingFile = SampleMessage();
    const auto attachment = New<CMailAttachment, IMailAttachment>();
    attachment->put_File(Bstr(OLESTR("C:\\no-such-folder\\none.txt")));
    missingFile->AddAttachment(attachment.Get());
    const struct {
        IMailMessage* message;
        HRESULT status;
        const char* text;
    } cases[] = {
        {fresh.Get(), E_INVALIDARG, "Sender address can't be empty"},
        {noRecipient.Get(), E_INVALIDARG, "Message must have at least one recipient"},
        {missingFile.Get(), E_INVALIDARG,
         "Couldn't open attachment file C:\\no-such-folder\\none.txt"},
        {SampleMessage().Detach(), E_INVALIDARG,
         "SmtpServer property can't be empty if useSmtpServer parameter is true"},
        {nullptr, E_INVALIDARG, "-"},
    };
    for (const auto& c : cases) {
        code = 77;
        BSTR stale = reinterpret_cast<BSTR>(&code);
        EXPECT_EQ(mail->Send(c.message, 1, &stale, &code), c.status) << "any non-zero is true";
        EXPECT_EQ(TakeErrorText(), c.text);
        EXPECT_EQ(code, 0);
        EXPECT_EQ(stale, nullptr);
        ExpectLastError(0, {});
    }
    cases[3].message->Release();
    EXPECT_EQ(mail->Send(nullptr, VARIANT_TRUE, nullptr, nullptr), E_INVALIDARG);
}

TEST_F(Send, RefusesMessagesOfOtherImplementationsAndKeepsTheLastError) {
    mail->put_SmtpServer(Bstr(OLESTR("bad host name")));
    EXPECT_EQ(SendSample(), S_FALSE);
    EXPECT_EQ(code, -1);
    EXPECT_EQ(FromBstr(text.Get()), OLESTR("Unable to resolve hostname bad host name."));

    // What somebody else's message has in common with this one: it answers QueryInterface.
    const auto address = Address(OLESTR("s@x"));
    auto* const foreign = reinterpret_cast<IMailMessage*>(address.Get());
    EXPECT_EQ(mail->Send(foreign, VARIANT_TRUE, text.Receive(), &code), E_FAIL);
    EXPECT_EQ(TakeErrorText(), "Quorvane internal error 973!");
    EXPECT_EQ(code, 0);
    EXPECT_EQ(text.Get(), nullptr);
    ExpectLastError(-1, OLESTR("Unable to resolve hostname bad host name."));
}

TEST_F(Send, ScriptableTwinHandsTheTextOverInAVariant) {
    EXPECT_EQ(mail->SendScriptable(SampleMessage().Get(), VARIANT_TRUE, nullptr, &code),
              E_INVALIDARG);
    EXPECT_EQ(TakeErrorText(), "-");

    VARIANT outcome;
    VariantInit(&outcome);
    outcome.vt = VT_BSTR;
    outcome.bstrVal = SysAllocString(OLESTR("old text, to be freed"));
    mail->put_SmtpServer(Bstr(OLESTR("bad host name")));
    EXPECT_EQ(mail->SendScriptable(SampleMessage().Get(), VARIANT_TRUE, &outcome, &code), S_FALSE);
    EXPECT_EQ(outcome.vt, VT_BSTR);
    EXPECT_EQ(FromBstr(outcome.bstrVal), OLESTR("Unable to resolve hostname bad host name."));

    mail->put_SmtpServer(nullptr);
    EXPECT_EQ(mail->SendScriptable(SampleMessage().Get(), VARIANT_TRUE, &outcome, &code),
              E_INVALIDARG);
    EXPECT_EQ(outcome.vt, VT_BSTR);
    EXPECT_EQ(outcome.bstrVal, nullptr);
}

TEST_F(Send, TimeOutOfTheSettingsBoundsTheWait) {
    ScriptedPeer peer({ParseScript({"S: 220 mx", "C: EHLO client.test"})}, Delivery::Whole);
    UsePeer(peer);
    mail->put_ReplyTimeout(1);
    EXPECT_EQ(SendSample(), S_FALSE);
    EXPECT_EQ(FromBstr(text.Get()), OLESTR("Mail server 127.0.0.1 did not reply within specified "
                                           "timeout to the following command: EHLO client.test"));
}

// Recipients without a domain are left out; one whose domain is empty is a failure.
TEST_F(Send, DirectDeliveryNeedsDomains) {
    const auto message = New<CMailMessage, IMailMessage>();
    message->put_Sender(Address(OLESTR("s")).Get());
    message->AddRecipient(Address(OLESTR("postmaster")).Get());
    EXPECT_EQ(mail->Send(message.Get(), VARIANT_FALSE, text.Receive(), &code), S_OK);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(text.Get(), nullptr);

    message->AddCcRecipient(Address(OLESTR("a@")).Get());
    EXPECT_EQ(mail->Send(message.Get(), VARIANT_FALSE, text.Receive(), &code), S_FALSE);
    EXPECT_EQ(code, -1);
    EXPECT_EQ(FromBstr(text.Get()), OLESTR("Invalid address: domain can't be empty"));
    ExpectLastError(-1, OLESTR("Invalid address: domain can't be empty"));
}

// Throws where the component least expects it.
class ThrowingMessage {
public:
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) { throw 1; }
    virtual ULONG STDMETHODCALLTYPE AddRef() { return 2; }
    virtual ULONG STDMETHODCALLTYPE Release() { return 1; }
};

TEST_F(Send, NoExceptionEscapes) {
    ThrowingMessage message;
    EXPECT_EQ(
        mail->Send(reinterpret_cast<IMailMessage*>(&message), VARIANT_TRUE, text.Receive(), &code),
        E_FAIL);
    EXPECT_EQ(TakeErrorText(), "Unexpected exception!");
    EXPECT_EQ(code, 0);
}

}  // namespace
}  // namespace quorvane

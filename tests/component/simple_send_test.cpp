// The simple sends: their lists on the wire, their two channels of failure, their script twins.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "component/smtp_mail.h"
#include "tests/servers/scripted_peer.h"
#include "tests/support/com.h"
#include "tests/support/scratch_folder.h"

namespace quorvane {
namespace {

class SimpleSends : public ::testing::Test {
protected:
    const ScratchFolder folder;
    const ComPtr<ISmtpMail> mail = New<CSmtpMail, ISmtpMail>();
    BstrHolder text;
    LONG code = 77;

    Bstr File(const char* name, std::string_view content) const {
        return Bstr(ToWide(folder.Write(name, content)));
    }
    // A server that takes the envelope for two recipients and refuses the message.
    static testing::Script RefusingServer() {
        return testing::ParseScript({"S: 220 mx", "C: EHLO client.test", "S: 250 mx",
                                     "C: MAIL FROM: <s@x>", "S: 250 ok", "C: RCPT TO: <a@x>",
                                     "S: 250 ok", "C: RCPT TO: <b@x>", "S: 250 ok", "C: DATA",
                                     "S: 554 no", "C: QUIT", "S: 221 bye"});
    }
};

const Bstr kFrom(OLESTR("Sales <s@x>"));
const Bstr kTo(OLESTR(" Ann <a@x>;; b@x ;"));
const Bstr kSubject(OLESTR("Hi"));
const Bstr kBody(OLESTR("Hello"));

TEST_F(SimpleSends, DeliverThroughTheServerAndGiveItsOutcome) {
    testing::ScriptedPeer peer(std::vector(5, RefusingServer()), testing::Delivery::Whole);
    mail->put_SmtpServer(Bstr(OLESTR("127.0.0.1")));
    mail->put_SmtpPort(ntohs(peer.port()));
    mail->put_SenderHostname(Bstr(OLESTR("client.test")));
    const Bstr page = File("page.html", "<img src=\"http://x/a.png\">");
    const Bstr attachments = File("a.txt", "x");
    EXPECT_EQ(mail->SimpleSend(kFrom, kTo, kSubject, kBody, text.Receive(), &code), S_FALSE);
    EXPECT_EQ(code, 554);
    EXPECT_EQ(FromBstr(text.Get()), OLESTR("554 no"));
    EXPECT_EQ(
        mail->SimpleSendAttachment(kFrom, kTo, kSubject, kBody, attachments, text.Receive(), &code),
        S_FALSE);
    EXPECT_EQ(mail->SimpleSendHTML(kFrom, kTo, kSubject, page, text.Receive(), &code), S_FALSE);
    VARIANT outcome;
    VariantInit(&outcome);
    code = 77;
    EXPECT_EQ(mail->SimpleSendHTMLScriptable(kFrom, kTo, kSubject, page, &outcome, &code), S_FALSE);
    EXPECT_EQ(code, 554);
    EXPECT_EQ(FromBstr(outcome.bstrVal), OLESTR("554 no"));
    VariantClear(&outcome);
    // What the outcome's variable holds may be one of the texts.
    outcome.vt = VT_BSTR;
    outcome.bstrVal = SysAllocString(OLESTR(" Ann <a@x>;; b@x ;"));
    EXPECT_EQ(mail->SimpleSendScriptable(kFrom, outcome.bstrVal, kSubject, kBody, &outcome, &code),
              S_FALSE);
    EXPECT_EQ(FromBstr(outcome.bstrVal), OLESTR("554 no"));
    VariantClear(&outcome);
    peer.Finish();
    EXPECT_THAT(peer.deviations(), ::testing::IsEmpty());
    EXPECT_EQ(peer.connections(), 5);
    EXPECT_EQ(mail->GetLastErrorCode(&code), S_OK);
    EXPECT_EQ(code, 554);
}

// Every one of the methods, and its twin, reports wrong use in the same way.
TEST_F(SimpleSends, WrongUseIsReportedBeforeAnythingIsSent) {
    const Bstr empty({});
    const Bstr noEntries(OLESTR(" ; "));
    const Bstr missing(OLESTR("C:\\no-such-folder\\none.txt"));
    const Bstr page = File("page.html", "<img src=\"C:\\no-such-folder\\none.png\">");
    const Bstr broken = File("broken.html", "<img src=a.png>");
    const struct {
        BSTR from, to, attachments, page;
        HRESULT status;
        std::string text;
    } cases[] = {
        {nullptr, kTo, nullptr, nullptr, E_INVALIDARG, "Sender address can't be empty"},
        {empty, kTo, missing, nullptr, E_INVALIDARG, "Sender address can't be empty"},
        {kFrom, noEntries, nullptr, nullptr, E_INVALIDARG,
         "Message must have at least one recipient"},
        {kFrom, kTo, missing, nullptr, E_INVALIDARG,
         "Couldn't open attachment file C:\\no-such-folder\\none.txt"},
        {kFrom, kTo, nullptr, nullptr, E_INVALIDARG,
         "SmtpServer property can't be empty if useSmtpServer parameter is true"},
        {kFrom, kTo, nullptr, page, E_INVALIDARG,
         "Couldn't open attachment file C:\\no-such-folder\\none.png"},
        {nullptr, nullptr, nullptr, missing, E_FAIL,
         "Cannot open HTML file C:\\no-such-folder\\none.txt"},
        {kFrom, kTo, nullptr, broken, E_FAIL,
         "Cannot import malformed HTML file " + Show(FromBstr(broken))},
    };
    for (const auto& c : cases) {
        code = 77;
        BSTR stale = reinterpret_cast<BSTR>(&code);
        VARIANT twin;
        VariantInit(&twin);
        const auto send = [&] {
            if (c.page) return mail->SimpleSendHTML(c.from, c.to, kSubject, c.page, &stale, &code);
            if (!c.attachments)
                return mail->SimpleSend(c.from, c.to, kSubject, kBody, &stale, &code);
            return mail->SimpleSendAttachment(c.from, c.to, kSubject, kBody, c.attachments, &stale,
                                              &code);
        };
        const auto sendScriptable = [&] {
            if (c.page) {
                return mail->SimpleSendHTMLScriptable(c.from, c.to, kSubject, c.page, &twin, &code);
            }
            if (!c.attachments) {
                return mail->SimpleSendScriptable(c.from, c.to, kSubject, kBody, &twin, &code);
            }
            return mail->SimpleSendAttachmentScriptable(c.from, c.to, kSubject, kBody,
                                                        c.attachments, &twin, &code);
        };
        EXPECT_EQ(send(), c.status) << c.text;
        EXPECT_EQ(TakeErrorText(), c.text);
        EXPECT_EQ(code, 0);
        EXPECT_EQ(stale, nullptr);
        EXPECT_EQ(sendScriptable(), c.status) << c.text;
        EXPECT_EQ(TakeErrorText(), c.text);
        EXPECT_EQ(twin.vt, VT_BSTR);
        EXPECT_EQ(twin.bstrVal, nullptr);
    }
    EXPECT_EQ(mail->SimpleSendScriptable(kFrom, kTo, kSubject, kBody, nullptr, &code),
              E_INVALIDARG);
    EXPECT_EQ(TakeErrorText(), "-");
}

}  // namespace
}  // namespace quorvane

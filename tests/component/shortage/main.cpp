// The queue when there are no threads or no memory to be had. Exit status 0 when it says so in
// words, and goes on once there is enough again.
#include <oleauto.h>

#include <chrono>
#include <cstdio>
#include <set>
#include <string>
#include <thread>

#include "component/smtp_mail.h"
#include "tests/component/shortage/failing.h"
#include "tests/servers/linux/peer_process.h"
#include "tests/support/objects.h"

namespace quorvane {
namespace {

bool Check(bool good, const std::string& what) {
    if (!good) std::printf("FAILED: %s\n", what.c_str());
    return good;
}

std::string TakeErrorText() {
    ComPtr<IErrorInfo> info;
    BstrHolder text;
    if (GetErrorInfo(0, info.Receive()) != S_OK) return "-";
    info->GetDescription(text.Receive());
    return ToUtf8(FromBstr(text.Get()));
}

LONG StatusAtTheEnd(ISmtpMail& mail, LONG number) {
    MailStatus status = MailStatusQueued;
    for (int waited = 0; waited < 20000 && status < MailStatusSent; ++waited) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        mail.GetStatus(number, &status);
    }
    return EnumerationValue(status);
}

// Code and text of a message that has come to its end.
std::string Outcome(ISmtpMail& mail, LONG number) {
    LONG code = 77;
    BstrHolder text;
    mail.GetErrorCode(number, &code);
    mail.GetErrorDescription(number, text.Receive());
    return std::to_string(code) + " " + ToUtf8(FromBstr(text.Get()));
}

// As long as it lives no thread can be made.
class NoMoreThreads {
public:
    NoMoreThreads() { FailThreads(true); }
    ~NoMoreThreads() { FailThreads(false); }
    NoMoreThreads(const NoMoreThreads&) = delete;
    NoMoreThreads& operator=(const NoMoreThreads&) = delete;
};

bool RunsOutOfThreads(int port) {
    bool good = true;
    ComPtr<ISmtpMail> mail;
    const auto message = MessageOf(OLESTR("ok@example.org"), 20000);
    {
        const NoMoreThreads shortage;
        good &= Check(Make<CSmtpMail>(mail) == E_FAIL && !mail, "no object without its threads");
    }
    if (!Check(Make<CSmtpMail>(mail) == S_OK, "an object when there are threads")) return false;
    mail->put_SmtpServer(Text(OLESTR("127.0.0.1")));
    mail->put_SmtpPort(port);
    LONG number = 77;
    {
        const NoMoreThreads shortage;
        good &= Check(mail->SendAsync(message.Get(), VARIANT_TRUE, &number) == E_FAIL,
                      "SendAsync says that there is no thread");
        good &= Check(mail->put_MaxThreads(50) == S_OK, "MaxThreads doesn't mind");
    }
    good &= Check(TakeErrorText() == "Can't create send thread!", "the words for it");
    good &= Check(number == 77, "the number isn't told");
    good &= Check(StatusAtTheEnd(*mail.Get(), 1) == MailStatusSent, "the message goes out");
    return good;
}

// Has one allocation fail after another while a message is queued and sent.
bool RunsOutOfMemory(int port) {
    // Every one of those that queue a message, and many of those that send it.
    constexpr long kQueueing = 30, kSending = 600, kStep = 7;
    bool good = true;
    ComPtr<ISmtpMail> mail;
    Make<CSmtpMail>(mail);
    mail->put_MaxThreads(1);
    mail->put_SmtpServer(Text(OLESTR("127.0.0.1")));
    mail->put_SmtpPort(port);
    const auto message = MessageOf(OLESTR("ok@example.org"), 20000);
    int queued = 0, sent = 0;
    std::set<std::string> refusals, failures;
    for (long failing = 0; failing < kSending; failing += failing < kQueueing ? 1 : kStep) {
        LONG number = 0;
        FailAllocation(failing);
        const HRESULT hr = mail->SendAsync(message.Get(), VARIANT_TRUE, &number);
        const LONG status = hr == S_OK ? StatusAtTheEnd(*mail.Get(), number) : MailStatusFailed;
        FailAllocation(-1);
        const std::string which = "allocation " + std::to_string(failing);
        good &= Check(hr == S_OK || hr == E_FAIL, which + ": another answer");
        good &= Check(status == MailStatusSent || status == MailStatusFailed, which + ": no end");
        if (hr == E_FAIL) refusals.insert(TakeErrorText());
        if (hr == S_OK && status == MailStatusFailed) failures.insert(Outcome(*mail.Get(), number));
        queued += hr == S_OK;
        sent += status == MailStatusSent;
    }
    const std::string words = "Unexpected exception!";
    good &= Check(refusals == std::set{words}, "queueing fails in these words alone");
    good &= Check(failures == std::set{"-1 " + words}, "sending fails in these words alone");
    LONG number = 0;
    mail->SendAsync(message.Get(), VARIANT_TRUE, &number);
    good &= Check(StatusAtTheEnd(*mail.Get(), number) == MailStatusSent, "all is well again");
    std::printf("%d messages queued, %d of them sent\n", queued, sent);
    return good;
}

int Run() {
    const testing::PeerProcess peer;
    const bool good = RunsOutOfThreads(peer.port());
    return RunsOutOfMemory(peer.port()) && good ? 0 : 1;
}

}  // namespace
}  // namespace quorvane

int main() {
    return quorvane::Run();
}

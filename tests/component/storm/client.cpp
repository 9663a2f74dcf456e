#include "tests/component/storm/client.h"

#include <fmt/format.h>

#include <array>
#include <string_view>

#include "tests/support/objects.h"

namespace quorvane::storm {
namespace {

// The quick ones more often than those that take a worker for themselves.
constexpr std::array<const char*, 12> kTreatments{
    "ok", "ok", "ok", "ok", "ok", "ok", "slow", "slow", "refuse", "silent", "stall", "reset"};

// Messages in the queue, with which a client gives its workers time.
constexpr LONG kMuchToDo = 30;

// About how many objects a client lets go of before the last one.
constexpr int kObjectsLetGo = 2;
constexpr int kActsPerMessage = 3;

bool HangsFor(std::string_view sender) {
    return sender.starts_with("silent") || sender.starts_with("stall");
}

// Takes messages until the condition comes true; false after five minutes.
template <class Condition>
bool WaitFor(const Condition& condition) {
    for (int patience = 0; patience < 15; ++patience) {
        if (PumpUntil(condition)) return true;
    }
    return false;
}

}  // namespace

// Everything that goes with one SmtpMail object.
struct Client::Object {
    Listener witness;  // hears everything
    std::array<Listener, 3> others;
    std::array<DWORD, 3> cookies{};
    ComPtr<ISmtpMail> mail = MakeOrThrow<CSmtpMail, ISmtpMail>();
    ComPtr<IConnectionPoint> point;
    std::map<LONG, std::string> senders;  // by number
};

Client::Client(unsigned seed, int number, int peerPort)
    : random_(seed), number_(number), peerPort_(peerPort) {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
}

Client::~Client() {
    object_.reset();
    CoUninitialize();
}

void Client::Run(int messages) {
    NewObject();
    while (sent_ < messages) {
        Act();
        if (Random(kActsPerMessage * messages) >= kObjectsLetGo) continue;
        LetGo();
        NewObject();
    }
    Settle();
    JudgeObject();
    LetGo();
}

void Client::OutliveCalls(const std::function<bool()>& ended) {
    if (!WaitFor(ended)) Fault("the library", "is still in use");
}

void Client::NewObject() {
    object_ = std::make_unique<Object>();
    ISmtpMail& mail = *object_->mail.Get();
    mail.put_SmtpServer(Text("127.0.0.1"));
    mail.put_SmtpPort(peerPort_);
    mail.put_SenderHostname(Text("client.test"));
    mail.put_ReplyTimeout(600);
    ComPtr<IConnectionPointContainer> container;
    mail.QueryInterface(IID_IConnectionPointContainer, container.ReceiveVoid());
    Check("FindConnectionPoint",
          container->FindConnectionPoint(DIID__ISmtpMailEvents, object_->point.Receive()));
    DWORD cookie = 0;
    Check("Advise", object_->point->Advise(&object_->witness, &cookie));
}

// Of the messages that are not finished it can't be known how they end. Those that would hang for
// ever are cancelled, since the object lives on for them.
void Client::LetGo() {
    for (const auto& [number, sender] : object_->senders) ReadFate(number, fates_[sender]);
    CancelHanging();
    object_->point.Reset();
    object_->mail.Reset();
    // A last event may be on its way, for which the listeners have to be there.
    const bool released = WaitFor([this] {
        ULONG references = object_->witness.references;
        for (const Listener& other : object_->others) references += other.references;
        return references == 0;
    });
    if (!released) {
        Fault("the listeners", "are still held");
        object_.release();
        return;
    }
    object_.reset();
}

void Client::Act() {
    const int choice = Random(100);
    if (choice < 40) {
        Send();
    } else if (choice < 50) {
        Cancel();
    } else if (choice < 70) {
        Read();
    } else if (choice < 80) {
        ChangeSettings();
    } else if (choice < 90) {
        ChangeListeners();
    } else {
        Listen(Random(20));
    }
}

void Client::Listen(int milliseconds) {
    MSG message;
    MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(milliseconds), QS_ALLINPUT);
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}

void Client::Send() {
    const char* const treatment =
        kTreatments[static_cast<std::size_t>(Random(static_cast<int>(kTreatments.size())))];
    const std::string sender = fmt::format("{}-{}-{}@x", treatment, number_, ++sent_);
    const std::size_t size = static_cast<std::size_t>(Random(8) == 0 ? Random(100000) : 20);
    LONG number = 0;
    Check("SendAsync", object_->mail->SendAsync(MessageOf(WidenBytes(sender), size).Get(),
                                                VARIANT_TRUE, &number));
    if (number != static_cast<LONG>(object_->senders.size()) + 1) Fault(sender, "a wrong number");
    object_->senders[number] = sender;
    fates_[sender] = {};
}

void Client::Cancel() {
    const LONG sent = static_cast<LONG>(object_->senders.size());
    if (sent > 0) Check("Cancel", object_->mail->Cancel(1 + Random(sent)));
    if (Random(100) == 0) Check("CancelAll", object_->mail->CancelAll());
}

void Client::CancelHanging() {
    for (const auto& [number, sender] : object_->senders) {
        if (HangsFor(sender)) Check("Cancel", object_->mail->Cancel(number));
    }
}

void Client::Read() {
    LONG size = 0;
    Check("GetQueueSize", object_->mail->GetQueueSize(&size));
    const LONG sent = static_cast<LONG>(object_->senders.size());
    if (size < 0 || size > sent) Fault("the queue", fmt::format("has a size of {}", size));
    if (size > kMuchToDo) {
        CancelHanging();
        Listen(50);
    }
    if (sent == 0) return;
    const LONG number = 1 + Random(sent);
    MailStatus status;
    LONG code = 0;
    BstrHolder text;
    Check("GetStatus", object_->mail->GetStatus(number, &status));
    Check("GetErrorCode", object_->mail->GetErrorCode(number, &code));
    Check("GetErrorDescription", object_->mail->GetErrorDescription(number, text.Receive()));
}

void Client::ChangeSettings() {
    object_->mail->put_MaxThreads(1 + Random(8));
    object_->mail->put_SenderHostname(Text(Random(2) == 0 ? "client.test" : "other.test"));
    object_->mail->put_SmtpUsername(Text(""));
}

void Client::ChangeListeners() {
    const auto index = static_cast<std::size_t>(Random(static_cast<int>(object_->others.size())));
    VARIANT handler;
    VariantInit(&handler);
    handler.vt = VT_DISPATCH;
    handler.pdispVal = &object_->others[index];
    if (Random(2) == 0) Check("handler", object_->mail->put_OnStatusChangeHandler(handler));
    if (Random(2) == 0) Check("handler", object_->mail->put_OnProgressHandler(handler));
    DWORD& cookie = object_->cookies[index];
    if (cookie == 0) {
        Check("Advise", object_->point->Advise(&object_->others[index], &cookie));
    } else {
        Check("Unadvise", object_->point->Unadvise(std::exchange(cookie, 0)));
    }
}

// Waits until the queue is empty and the witness has heard of every message's end.
void Client::Settle() {
    CancelHanging();
    const auto ended = [this] {
        std::size_t ends = 0;
        for (const Event& event : object_->witness.events) {
            if (event.member == 1 && event.values[1] >= MailStatusSent) ++ends;
        }
        return ends == object_->senders.size();
    };
    if (!WaitFor(ended)) Fault("the witness", "has not heard of the end of every message");
}

void Client::JudgeObject() {
    for (const auto& [number, sender] : object_->senders) {
        Fate& fate = fates_[sender];
        ReadFate(number, fate);
        if (!fate.known) Fault(sender, "no final status");
        if (fate.status == MailStatusFailed && !sender.starts_with("re")) {
            Fault(sender, fmt::format("failed with {}", fate.code));
        }
        JudgeEvents(sender, number, fate);
    }
    LONG size = 77;
    object_->mail->GetQueueSize(&size);
    if (size != 0) Fault("the queue", "isn't empty at the end");
}

void Client::ReadFate(LONG number, Fate& fate) {
    MailStatus status = MailStatusQueued;
    Check("GetStatus", object_->mail->GetStatus(number, &status));
    Check("GetErrorCode", object_->mail->GetErrorCode(number, &fate.code));
    fate.status = EnumerationValue(status);
    fate.known = fate.status >= MailStatusSent;
}

// Sending, progress that grows, the end; or only that it was cancelled.
void Client::JudgeEvents(const std::string& sender, LONG number, Fate& fate) {
    fate.wasSent = false;
    LONG status = MailStatusQueued;
    LONG progress = 0;
    for (const Event& event : object_->witness.events) {
        if (event.values[0] != number) continue;
        const LONG value = event.values[1];
        if (event.member == 2) {
            if (status != MailStatusSending || value <= progress) Fault(sender, "wrong progress");
            progress = value;
            continue;
        }
        const bool isNext = status == MailStatusQueued
                                ? value == MailStatusSending || value == MailStatusCanceled
                                : status == MailStatusSending && value > MailStatusSending;
        if (!isNext) Fault(sender, fmt::format("status {} behind {}", value, status));
        if (value == MailStatusSending) fate.wasSent = true;
        status = value;
    }
    if (status != fate.status) Fault(sender, "the last event tells of another status");
}

void Client::Fault(const std::string& sender, const std::string& what) {
    faults_.push_back(sender + ": " + what);
}

void Client::Check(const char* call, HRESULT hr) {
    if (hr != S_OK) Fault(call, fmt::format("answers {:08x}", static_cast<ULONG>(hr)));
}

}  // namespace quorvane::storm

#include "tests/smtp/dialogue_run.h"

#include <algorithm>
#include <chrono>

#include "mime/message_composer.h"

namespace quorvane::testing {
namespace {

const std::string kMessageEnd = "\r\n.\r\n";

std::vector<CAddressEntry> Addresses(const std::vector<std::string>& addresses) {
    std::vector<CAddressEntry> entries;
    entries.reserve(addresses.size());
    for (const std::string& address : addresses) {
        entries.push_back({WideString(), WidenBytes(address)});
    }
    return entries;
}

// Of a copy: composing changes the record.
std::string Composed(COutgoingMessage message) {
    std::string text;
    ComposeMessage(message, text);
    return text;
}

COutgoingMessage MakeMessage(const DialogueCase& test) {
    COutgoingMessage message;
    message.sender.address = WidenBytes(test.from);
    message.to = Addresses(test.to);
    message.cc = Addresses(test.cc);
    message.bcc = Addresses(test.bcc);
    if (test.to.empty() && test.cc.empty() && test.bcc.empty() && !test.noRecipients) {
        message.to = Addresses({"bob@example.test"});
    }
    message.messageId = OLESTR("<1@example.test>");
    CBodyPart body;
    body.contentType = OLESTR("text/plain");
    body.charset = OLESTR("iso-8859-1");
    body.encoding = 2;  // 8 bits: as it is, but for the dots
    body.text = WidenBytes(test.body);
    message.bodyParts.push_back(body);
    if (test.composedSize != 0) {
        const std::string line = std::string(70, 'x') + "\r\n";
        std::string filled = test.body;
        for (std::size_t i = Composed(message).size(); i < test.composedSize; ++i) {
            filled += line[i % line.size()];
        }
        message.bodyParts.front().text = WidenBytes(filled);
    }
    return message;
}

std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    quoted += Printable(text);
    return quoted += "'";
}

}  // namespace

DialogueRun::DialogueRun(const DialogueCase& test, Delivery delivery)
    : test_(test),
      peer_(test.connections, delivery),
      session_(std::make_unique<WatchedSession>()),
      message_(MakeMessage(test)) {
    session_->m_user = WidenBytes(test.user);
    session_->m_password = WidenBytes(test.password);
    session_->m_heloHost = WidenBytes(test.helo);
    session_->m_replyTimeout = test.timeout;
    session_->m_connectAttempts = test.attempts;
    session_->m_spa = test.spa;
    session_->m_port = peer_.port();
    session_->authVerdict = test.authVerdict;
    session_->stopAt = test.stopAt;
}

std::vector<std::string> DialogueRun::Play() {
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < test_.calls.size(); ++i) {
        Make(test_.calls[i], "call " + std::to_string(i + 1) + ": ");
    }
    const auto elapsed = std::chrono::steady_clock::now() - start;
    CheckDuration(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count());
    CheckProgress();
    session_.reset();
    CheckPeer();
    return failures_;
}

void DialogueRun::Make(const Call& call, const std::string& name) {
    session_->reports.clear();
    const int code = Perform(call);
    const std::string text = ToUtf8(session_->GetErrorText());
    if (code != call.code) {
        Fail(name + "gave " + std::to_string(code) + ", error text " + Quoted(text));
    } else if (!call.texts.empty() &&
               std::find(call.texts.begin(), call.texts.end(), text) == call.texts.end()) {
        Fail(name + "error text " + Quoted(text) + " instead of " + Quoted(call.texts.front()));
    }
    CheckReports(code, name);
}

int DialogueRun::Perform(const Call& call) {
    switch (call.kind) {
        case Call::Kind::Connect:
            return session_->Connect(WidenBytes(test_.server), TlsMode(test_.tls));
        case Call::Kind::Send:
            ExpectMessage();
            return session_->SendMail(message_);
        case Call::Kind::SendTo:
            ExpectMessage();
            return session_->SendMailTo(message_, Addresses(call.recipients));
        case Call::Kind::Close:
            session_->Close();
            return 0;
        case Call::Kind::WaitForServer:
            return peer_.WaitUntilListening() ? 0 : -1;
        case Call::Kind::WaitForEnd:
            return peer_.WaitForEnd() ? 0 : -1;
    }
    return 0;
}

void DialogueRun::ExpectMessage() {
    const std::string wire = Composed(message_) + kMessageEnd;
    wireSize_ = wire.size();
    if (test_.composedSize != 0 && wireSize_ != test_.composedSize + kMessageEnd.size()) {
        Fail("the message couldn't be made as long as it should be");
    }
    for (const std::string& part : test_.wire) {
        if (wire.find(part) == std::string::npos) {
            Fail("the message doesn't hold " + Quoted(part));
        }
    }
    peer_.ExpectMessage(wire);
}

// Every failure is reported once, with the words that the caller gets; but a message that can't be
// sent at all is turned down without any.
void DialogueRun::CheckReports(int code, const std::string& name) {
    const bool silent = code == 0 || test_.noRecipients || test_.from.empty();
    const auto& reports = session_->reports;
    if (reports.size() != (silent ? 0 : 1)) {
        Fail(name + std::to_string(reports.size()) + " reports of an error");
    } else if (!silent &&
               (reports[0].code != code || reports[0].text != session_->GetErrorText())) {
        Fail(name + "reported " + std::to_string(reports[0].code) + " " +
             Quoted(ToUtf8(reports[0].text)));
    }
}

void DialogueRun::CheckProgress() {
    std::string reported;
    std::string expected;
    for (const WatchedSession::Progress& progress : session_->progress) {
        reported += std::to_string(progress.sent) + " ";
        if (progress.total != wireSize_) {
            Fail("progress of " + std::to_string(progress.total) + " bytes in all instead of " +
                 std::to_string(wireSize_));
        }
    }
    for (const unsigned sent : test_.progress) {
        expected += std::to_string(sent) + " ";
    }
    if (reported != expected && !test_.anyProgress) {
        Fail("progress was " + Quoted(reported) + " instead of " + Quoted(expected));
    }
}

void DialogueRun::CheckDuration(long long milliseconds) {
    if (milliseconds < test_.leastDuration) {
        Fail("the calls took " + std::to_string(milliseconds) + " ms");
    }
}

void DialogueRun::CheckPeer() {
    peer_.Finish();
    failures_.insert(failures_.end(), peer_.deviations().begin(), peer_.deviations().end());
    const int expected = test_.accepted.value_or(static_cast<int>(test_.connections.size()));
    if (peer_.connections() != expected) {
        Fail(std::to_string(peer_.connections()) + " connections were made instead of " +
             std::to_string(expected));
    }
}

}  // namespace quorvane::testing

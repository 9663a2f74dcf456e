// Plays every case of tests/smtp/cases against a session, in each way of delivery that it asks for.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <ostream>

#include "mime/message_composer.h"
#include "smtp/session.h"
#include "tests/servers/scripted_peer.h"
#include "tests/smtp/dialogue_case.h"

namespace quorvane::testing {
namespace {

struct Progress {
    unsigned sent;
    unsigned total;
};

class WatchedSession : public CSmtp {
public:
    int OnAuthFailed(int, const WideString&) override { return authVerdict; }
    int OnError(int code, const WideString& text) override {
        EXPECT_EQ(text, GetErrorText());
        reported.push_back(code);
        return 0;
    }
    int OnProgress(ULONG sent, ULONG total) override {
        progress.push_back({static_cast<unsigned>(sent), static_cast<unsigned>(total)});
        return sent != stopAt;
    }

    int authVerdict = 0;
    unsigned stopAt = 0;
    std::vector<int> reported;
    std::vector<Progress> progress;
};

std::vector<CAddressEntry> Addresses(const std::vector<std::string>& addresses) {
    std::vector<CAddressEntry> entries;
    for (const std::string& address : addresses) {
        entries.push_back({WideString(), WidenBytes(address)});
    }
    return entries;
}

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
        std::string filler = test.body;
        const std::size_t missing = test.composedSize - Composed(message).size();
        for (std::size_t i = 0; i < missing; ++i) {
            filler += line[i % line.size()];
        }
        message.bodyParts.front().text = WidenBytes(filler);
        EXPECT_EQ(Composed(message).size(), test.composedSize);
    }
    return message;
}

struct Run {
    DialogueCase test;
    Delivery delivery;
};

std::ostream& operator<<(std::ostream& out, const Run& run) {
    return out << "the case at " << run.test.place;
}

class Dialogue : public ::testing::TestWithParam<Run> {
protected:
    void SetUpSession() {
        session_->m_user = WidenBytes(test_.user);
        session_->m_password = WidenBytes(test_.password);
        session_->m_heloHost = WidenBytes(test_.helo);
        session_->m_replyTimeout = test_.timeout;
        session_->m_connectAttempts = test_.attempts;
        session_->m_spa = test_.spa;
        session_->m_port = peer_.port();
        session_->authVerdict = test_.authVerdict;
        session_->stopAt = test_.stopAt;
    }

    int Make(const Call& call) {
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
                peer_.WaitUntilListening();
                return 0;
        }
        return 0;
    }

    void ExpectMessage() {
        const std::string wire = Composed(message_) + "\r\n.\r\n";
        for (const std::string& part : test_.wire) {
            EXPECT_NE(wire.find(part), std::string::npos) << Printable(part);
        }
        peer_.ExpectMessage(wire);
    }

    void CheckOutcome(const Call& call, int code) {
        EXPECT_EQ(code, call.code) << ToUtf8(session_->GetErrorText());
        const std::string text = ToUtf8(session_->GetErrorText());
        if (!call.texts.empty() &&
            std::find(call.texts.begin(), call.texts.end(), text) == call.texts.end()) {
            ADD_FAILURE() << "error text '" << Printable(text) << "' instead of '"
                          << Printable(call.texts.front()) << "'";
        }
    }

    void CheckProgress() {
        std::vector<unsigned> reports;
        for (const Progress& progress : session_->progress) {
            reports.push_back(progress.sent);
            EXPECT_EQ(progress.total, message_size_);
        }
        EXPECT_EQ(reports, test_.progress.value_or(reports));
    }

    const DialogueCase& test_ = GetParam().test;
    ScriptedPeer peer_{test_.connections, GetParam().delivery};
    std::unique_ptr<WatchedSession> session_ = std::make_unique<WatchedSession>();
    COutgoingMessage message_ = MakeMessage(test_);
    std::size_t message_size_ = Composed(message_).size() + 5;
};

TEST_P(Dialogue, GoesAsWritten) {
    SetUpSession();
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < test_.calls.size(); ++i) {
        SCOPED_TRACE("call " + std::to_string(i + 1));
        session_->reported.clear();
        const int code = Make(test_.calls[i]);
        CheckOutcome(test_.calls[i], code);
        // Every failure with words is reported once.
        const bool silent = code == 0 || test_.noRecipients || test_.from.empty();
        EXPECT_EQ(session_->reported, silent ? std::vector<int>{} : std::vector<int>{code});
    }
    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start);
    CheckProgress();
    session_.reset();
    peer_.Finish();

    for (const std::string& deviation : peer_.deviations()) {
        ADD_FAILURE() << deviation;
    }
    EXPECT_EQ(peer_.connections(),
              test_.accepted.value_or(static_cast<int>(test_.connections.size())));
    if (test_.duration) {
        EXPECT_GE(elapsed.count(), test_.duration->first);
        EXPECT_LE(elapsed.count(), test_.duration->second);
    }
}

std::vector<Run> AllCases() {
    std::vector<Run> all;
    try {
        for (const DialogueCase& test : LoadDialogueCases(QUORVANE_TEST_DATA "/smtp/cases")) {
            for (const Delivery delivery : test.deliveries) {
                all.push_back({test, delivery});
            }
        }
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "%s\n", problem.what());
        std::exit(1);
    }
    return all;
}

std::string CaseName(const ::testing::TestParamInfo<Dialogue::ParamType>& info) {
    std::string name = info.param.test.name;
    std::replace(name.begin(), name.end(), '-', '_');
    constexpr const char* deliveries[] = {"whole", "by_line", "by_byte"};
    return name + "_" + deliveries[static_cast<int>(info.param.delivery)];
}

INSTANTIATE_TEST_SUITE_P(Smtp, Dialogue, ::testing::ValuesIn(AllCases()), CaseName);

}  // namespace
}  // namespace quorvane::testing

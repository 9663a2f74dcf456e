// One case played once: a session, its message and the scripted server it talks to.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "smtp/session.h"
#include "tests/servers/scripted_peer.h"
#include "tests/smtp/dialogue_case.h"

namespace quorvane::testing {

// A session that keeps what it is told.
class WatchedSession : public CSmtp {
public:
    struct Progress {
        unsigned sent;
        unsigned total;
    };
    struct Report {
        int code;
        WideString text;
    };

    int OnAuthFailed(int, const WideString&) override { return authVerdict; }
    int OnError(int code, const WideString& text) override {
        reports.push_back({code, text});
        return 0;
    }
    int OnProgress(ULONG sent, ULONG total) override {
        progress.push_back({static_cast<unsigned>(sent), static_cast<unsigned>(total)});
        return sent != stopAt;
    }

    int authVerdict = 0;
    unsigned stopAt = 0;
    std::vector<Report> reports;
    std::vector<Progress> progress;
};

class DialogueRun {
public:
    DialogueRun(const DialogueCase& test, Delivery delivery);

    // Makes the calls and returns what went differently from the case, one sentence each.
    std::vector<std::string> Play();

private:
    void Make(const Call& call, const std::string& name);
    int Perform(const Call& call);
    void ExpectMessage();
    void CheckReports(int code, const std::string& name);
    void CheckProgress();
    void CheckDuration(long long milliseconds);
    void CheckPeer();
    void Fail(const std::string& what) { failures_.push_back(what); }

    const DialogueCase& test_;
    ScriptedPeer peer_;
    std::unique_ptr<WatchedSession> session_;
    COutgoingMessage message_;
    std::size_t wireSize_ = 0;
    std::vector<std::string> failures_;
};

}  // namespace quorvane::testing

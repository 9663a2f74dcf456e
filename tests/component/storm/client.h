// One client of the storm: a thread with an SmtpMail object of its own.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "component/smtp_mail.h"
#include "tests/component/listener.h"
#include "tests/servers/mail_peer.h"

namespace quorvane::storm {

// What must hold of a message once the storm is over.
struct Fate {
    bool known = false;  // whether it had ended when the object was let go
    LONG status = MailStatusQueued;
    LONG code = 0;
    bool wasSent = true;  // at some time; what the events say, when there has been time for all
};

// Sends messages, and between them cancels, reads, changes settings and listeners, and lets go of
// its object, all at random. It lives on one thread.
class Client {
public:
    Client(unsigned seed, int number, int peerPort);
    ~Client();
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    // Queues that many messages in all, then waits until the last one has ended.
    void Run(int messages);
    // Takes calls until the condition comes true: a worker may still be about to give back a
    // listener that it got just before that was let go, and under Wine a call to an apartment that
    // ends before it is answered is lost, with its caller waiting for ever.
    void OutliveCalls(const std::function<bool()>& ended);

    const std::map<std::string, Fate>& fates() const { return fates_; }  // by sender
    // What went wrong, one sentence each.
    const std::vector<std::string>& faults() const { return faults_; }

private:
    struct Object;

    int Random(int below) { return std::uniform_int_distribution<>(0, below - 1)(random_); }
    void NewObject();
    void LetGo();
    void Act();
    void Listen(int milliseconds);
    void Send();
    void Cancel();
    void CancelHanging();
    void Read();
    void ChangeSettings();
    void ChangeListeners();
    void Settle();
    void JudgeObject();
    void ReadFate(LONG number, Fate& fate);
    void JudgeEvents(const std::string& sender, LONG number, Fate& fate);
    void Fault(const std::string& sender, const std::string& what);
    void Check(const char* call, HRESULT hr);

    std::mt19937 random_;
    const int number_;
    const int peerPort_;
    int sent_ = 0;
    std::unique_ptr<Object> object_;
    std::map<std::string, Fate> fates_;
    std::vector<std::string> faults_;
};

}  // namespace quorvane::storm

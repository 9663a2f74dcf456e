// Sends a message again and again while one allocation after the other fails, then one system call
// after the other, imports an HTML file in the same way, and checks that each outcome is the true
// one, that the object goes on to work, and that nothing is left behind. Exit status 0 when all of
// that holds.
#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <new>
#include <string>
#include <vector>

#include "model/html_import.h"
#include "tests/faults/failing.h"
#include "tests/faults/faulty_peer.h"
#include "tests/faults/mail_client.h"

namespace quorvane::faults {
namespace {

// More requests than any dialogue makes.
constexpr long kEnd = 100'000;
constexpr std::size_t kHeapNoise = 16'384;  // bytes

struct Counts {
    int runs = 0;
    int failed = 0;
    int inTheWindow = 0;
    int faults = 0;
};

class Sweep {
public:
    Sweep(const Dialogue& dialogue, Resource resource, int error)
        : dialogue_(dialogue), resource_(resource), error_(error) {}

    // One run for each request; false for the first that makes none more.
    Counts Run(MailClient& client) {
        long at = 0;
        while (at < kEnd && RunOne(client, at)) ++at;
        if (at == kEnd) Fault(at, "there is no end to the requests", {}, {});
        return counts_;
    }

private:
    bool RunOne(MailClient& client, long at) {
        FaultyPeer peer(dialogue_, {});
        Outcome outcome;
        bool happened;
        {
            const Failing failing(resource_, at, error_);
            outcome = client.Send(peer.port(), dialogue_);
            happened = failing.happened();
            what_ = failing.what();
            receivedBefore_ = failing.receivedBefore();
        }
        Judge(at, happened, outcome, peer.Finish());
        return happened;
    }

    void Judge(long at, bool happened, const Outcome& outcome, const FaultyPeer::Result& seen) {
        ++counts_.runs;
        const bool sent = outcome.status == S_OK;
        if (!sent) ++counts_.failed;
        if (!happened && !sent) Fault(at, "a sound send fails", outcome, seen);
        // Those of a socket that doesn't block are never interrupted, the others go on.
        if (error_ == EINTR && !sent && (what_ == "poll" || what_ == "send" || what_ == "recv")) {
            Fault(at, "a signal ends the send", outcome, seen);
        }
        switch (outcome.status) {
            case S_OK:
                if (outcome.code != 0) Fault(at, "another code", outcome, seen);
                break;
            case S_FALSE:
                if (outcome.code == 0) Fault(at, "another code", outcome, seen);
                // Without memory there may be none for the words.
                if (outcome.text.empty() && resource_ != Resource::Memory) {
                    Fault(at, "no words", outcome, seen);
                }
                break;
            case E_OUTOFMEMORY:
            case E_FAIL:
                if (resource_ != Resource::Memory) Fault(at, "another status", outcome, seen);
                break;
            default:
                Fault(at, "another status", outcome, seen);
        }
        if (seen.accepted > 1) Fault(at, "arrived more than once", outcome, seen);
        if (sent && (seen.accepted != 1 || !IsWhole(seen.message))) {
            Fault(at, "counted as sent, but has not arrived", outcome, seen);
        }
        if (!sent && seen.accepted > 0) {
            ++counts_.inTheWindow;
            // Memory is no reason: from the message's last byte on, none is needed.
            if (resource_ == Resource::Memory || receivedBefore_ >= seen.answerEnd) {
                Fault(at, "counted as failed, but has arrived", outcome, seen);
            }
        }
    }

    void Fault(long at, const char* what, const Outcome& outcome, const FaultyPeer::Result& seen) {
        ++counts_.faults;
        fmt::print("{} {} ({}): {}: status {:#x}, code {}, text '{}', accepted {} times\n",
                   resource_ == Resource::Memory ? "allocation" : "call", at, what_, what,
                   static_cast<unsigned>(outcome.status), outcome.code, outcome.text,
                   seen.accepted);
    }

    const Dialogue dialogue_;
    const Resource resource_;
    const int error_;
    Counts counts_;
    std::string what_;
    std::size_t receivedBefore_ = 0;
};

bool RunDialogue(const Dialogue& dialogue, const char* name) {
    struct Kind {
        Resource resource;
        int error;
        const char* name;
    };
    // What the kernel has no room for, what it can't do, and what it is only kept from.
    const std::array kinds{
        Kind{Resource::Memory, 0, "memory"}, Kind{Resource::SystemCall, ENOBUFS, "ENOBUFS"},
        Kind{Resource::SystemCall, EIO, "EIO"}, Kind{Resource::SystemCall, EINTR, "EINTR"}};
    bool good = true;
    MailClient client;
    for (const Kind& kind : kinds) {
        Sweep(dialogue, kind.resource, kind.error).Run(client);  // what is kept for good
        const std::size_t before = HeapInUse();
        const Counts counts = Sweep(dialogue, kind.resource, kind.error).Run(client);
        const std::size_t after = HeapInUse();
        fmt::print("{}, {}: {} runs, {} failed, {} of them taken on by the server\n", name,
                   kind.name, counts.runs, counts.failed, counts.inTheWindow);
        if (after > before + kHeapNoise) {
            fmt::print("{} bytes are left behind\n", after - before);
            good = false;
        }
        good &= counts.faults == 0 && counts.failed > 0;
    }
    return good;
}

// An HTML file is imported with all its pictures, or not at all.
bool ImportHtml() {
    const WideString html = OLESTR("<img src=\"a.png\"><img src=\"b.png\"><img src=\"c.png\">");
    const WideString imported =
        OLESTR("<img src=\"cid:i0000\"><img src=\"cid:i0001\"><img src=\"cid:i0002\">");
    long at = 0;
    int failed = 0;
    for (bool happened = true; happened; ++at) {
        std::vector<CAttachmentPart> parts;
        WideString text;
        {
            const Failing failing(Resource::Memory, at);
            try {
                text = ImportHtmlText(html, OLESTR("C:\\page.html"), parts);
            } catch (const std::bad_alloc&) {
                ++failed;
            }
            happened = failing.happened();
        }
        if (text.empty() ? happened : text == imported && parts.size() == 3) continue;
        fmt::print("allocation {}: an HTML file without a picture\n", at);
        return false;
    }
    fmt::print("HTML import, memory: {} runs, {} failed\n", at, failed);
    return failed > 0;
}

bool Run() {
    bool good = RunDialogue({Encryption::None, true}, "in clear");
    good &= RunDialogue({Encryption::StartTls, true}, "STARTTLS");
    good &= ImportHtml();
    return good;
}

}  // namespace
}  // namespace quorvane::faults

int main() {
    return quorvane::faults::Run() ? 0 : 1;
}

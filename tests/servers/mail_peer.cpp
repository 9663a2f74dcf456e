#include "tests/servers/mail_peer.h"

#include <algorithm>
#include <list>
#include <optional>
#include <utility>

namespace quorvane::testing {
namespace {

constexpr int kGlance = 2;  // milliseconds between looks at what falls due
constexpr std::chrono::milliseconds kSlowness{20};
constexpr std::chrono::seconds kPatience{20};
constexpr std::string_view kMessageEnd = "\r\n.\r\n";

bool TakeAddress(std::string_view line, std::string_view command, std::string& address) {
    if (!line.starts_with(command)) return false;
    const std::size_t begin = line.find('<');
    const std::size_t end = line.find('>', begin);
    address = line.substr(begin + 1, end - begin - 1);
    return true;
}

}  // namespace

struct MailPeer::Client {
    explicit Client(LoopbackSocket connection) : socket(std::move(connection)) {}

    bool Treated(std::string_view treatment) const { return sender.starts_with(treatment); }

    LoopbackSocket socket;
    std::string input;
    std::string helo;
    std::string sender;  // empty outside of transactions
    bool inMessage = false;
    bool deaf = false;                     // nothing more is read
    bool held = false;                     // accepted once the peer is open
    std::optional<Clock::time_point> due;  // accepted then
};

MailPeer::MailPeer() : thread_([this] { Run(); }) {}

MailPeer::~MailPeer() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    thread_.join();
}

int MailPeer::port() const {
    return ntohs(listener_.port());
}

void MailPeer::Open() {
    const std::lock_guard lock(mutex_);
    open_ = true;
}

bool MailPeer::WaitForStuck(int count) {
    return WaitFor([&] { return stuck_ >= count; });
}

bool MailPeer::WaitForAccepted(int count) {
    return WaitFor([&] { return static_cast<int>(accepted_.size()) >= count; });
}

void MailPeer::CountOnly() {
    const std::lock_guard lock(mutex_);
    countsOnly_ = true;
}

long long MailPeer::acceptedCount() const {
    const std::lock_guard lock(mutex_);
    return acceptedCount_;
}

std::vector<MailPeer::Message> MailPeer::accepted() const {
    const std::lock_guard lock(mutex_);
    return accepted_;
}

std::map<std::string, int> MailPeer::acceptedBySender() const {
    std::map<std::string, int> counts;
    for (const Message& message : accepted()) ++counts[message.sender];
    return counts;
}

int MailPeer::mostAtATime() const {
    const std::lock_guard lock(mutex_);
    return mostRunning_;
}

bool MailPeer::WaitFor(const std::function<bool()>& condition) const {
    const auto deadline = Clock::now() + kPatience;
    for (;;) {
        {
            const std::lock_guard lock(mutex_);
            if (condition()) return true;
        }
        if (Clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

void MailPeer::Run() {
    std::list<Client> clients;
    for (;;) {
        std::vector<WSAPOLLFD> entries(1);
        entries[0].fd = listener_.socket();
        for (const Client& client : clients) {
            if (client.deaf) continue;
            entries.emplace_back().fd = client.socket.get();
        }
        for (WSAPOLLFD& entry : entries) entry.events = POLLIN;
        WSAPoll(entries.data(), static_cast<ULONG>(entries.size()), kGlance);
        const std::lock_guard lock(mutex_);
        if (ending_) return;
        auto entry = entries.begin();
        const bool newcomer = entry->revents != 0;
        for (Client& client : clients) {
            if (!client.deaf && (++entry)->revents != 0) Serve(client);
            if (open_) client.deaf = false;
            const bool isDue = client.due && Clock::now() >= *client.due;
            if (client.socket.IsOpen() && (isDue || (client.held && open_))) Accept(client);
        }
        clients.remove_if([](const Client& client) { return !client.socket.IsOpen(); });
        if (newcomer) {
            clients.emplace_back(listener_.Accept());
            clients.back().socket.Send("220 peer\r\n");
        }
    }
}

void MailPeer::Serve(Client& client) {
    if (client.Treated("reset")) {
        client.socket.Close();  // with a line unread
    } else if (!client.socket.Receive(client.input)) {
        client.socket.Close();
    }
    if (!client.socket.IsOpen()) {
        EndTransaction(client);
        return;
    }
    while (!client.inMessage && !client.deaf) {
        const std::size_t end = client.input.find("\r\n");
        if (end == std::string::npos) break;
        const std::string line = client.input.substr(0, end);
        client.input.erase(0, end + 2);
        TakeLine(client, line);
    }
    if (client.inMessage) TakeMessage(client);
}

void MailPeer::TakeLine(Client& client, std::string_view line) {
    std::string_view reply = "250 ok\r\n";
    std::string address;
    if (line.starts_with("EHLO ")) {
        client.helo = line.substr(5);
    } else if (TakeAddress(line, "MAIL FROM:", address)) {
        client.sender = address;
        mostRunning_ = std::max(mostRunning_, ++running_);
    } else if (TakeAddress(line, "RCPT TO:", address)) {
        if (client.Treated("refuse")) reply = "550 nobody of that name\r\n";
        if (client.Treated("silent")) {
            ++stuck_;
            return;
        }
    } else if (line == "DATA") {
        reply = "354 go\r\n";
        client.inMessage = true;
        client.deaf = client.Treated("stall");
        if (client.deaf) ++stuck_;
    } else if (line == "QUIT") {
        EndTransaction(client);
        reply = "221 bye\r\n";
    }
    client.socket.Send(reply);
}

void MailPeer::TakeMessage(Client& client) {
    const std::size_t end = client.input.find(kMessageEnd);
    if (end == std::string::npos) {
        // What can't be part of the end is not needed any more.
        if (client.input.size() > kMessageEnd.size()) {
            client.input.erase(0, client.input.size() - kMessageEnd.size());
        }
        return;
    }
    client.input.erase(0, end + kMessageEnd.size());
    client.inMessage = false;
    if (client.Treated("slow")) {
        client.due = Clock::now() + kSlowness;
    } else if (client.Treated("hold") && !open_) {
        client.held = true;
        ++stuck_;
    } else {
        Accept(client);
    }
}

void MailPeer::Accept(Client& client) {
    client.held = false;
    client.due.reset();
    ++acceptedCount_;
    if (!countsOnly_) accepted_.push_back({client.sender, client.helo});
    EndTransaction(client);
    client.socket.Send("250 kept\r\n");
}

void MailPeer::EndTransaction(Client& client) {
    if (!client.sender.empty()) --running_;
    client.sender.clear();
}

}  // namespace quorvane::testing

// A mail server for measuring clients: it takes everything, on loopback, in one thread, and costs
// less than any client. It ends with its standard input.
//
//     bench_catcher ports [folder]
//
// It listens on so many ports, which it prints, and answers each line of its input with the number
// of messages taken so far. With a folder it keeps the n-th message, as it came over the wire, in
// the file n.eml there; without, it lets the kernel drop the bytes unread.
#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane::bench {
namespace {

constexpr std::string_view kEndOfMessage = "\r\n.\r\n";

// A descriptor and what to do when it can be read.
class Source {
public:
    explicit Source(int descriptor) : descriptor_(descriptor) {}
    virtual ~Source() { close(descriptor_); }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    int descriptor() const { return descriptor_; }
    // False when the source has ended.
    virtual bool Read() = 0;

private:
    const int descriptor_;
};

class Loop {
public:
    Loop() : epoll_(epoll_create1(EPOLL_CLOEXEC)) {}
    ~Loop() { close(epoll_); }

    // A source that ends is deleted.
    void Add(std::unique_ptr<Source> source) {
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.ptr = source.get();
        if (epoll_ctl(epoll_, EPOLL_CTL_ADD, source->descriptor(), &event) != 0) {
            throw std::runtime_error("epoll_ctl failed");
        }
        source.release();
    }

    void Run() {
        std::array<epoll_event, 128> events;
        while (!ending_) {
            const int count = epoll_wait(epoll_, events.data(), events.size(), -1);
            for (int i = 0; i < count; ++i) {
                auto* const source =
                    static_cast<Source*>(events[static_cast<std::size_t>(i)].data.ptr);
                if (!source->Read()) delete source;
            }
        }
    }

    void End() { ending_ = true; }

private:
    const int epoll_;
    bool ending_ = false;
};

// What came in.
class Messages {
public:
    explicit Messages(std::string folder) : folder_(std::move(folder)) {}

    bool AreKept() const { return !folder_.empty(); }
    long Count() const { return count_; }
    void Take(const std::string& text) {
        ++count_;
        if (!AreKept()) return;
        std::ofstream file(folder_ + "/" + std::to_string(count_) + ".eml", std::ios::binary);
        file << text;
        if (!file) throw std::runtime_error("can't write to " + folder_);
    }

private:
    const std::string folder_;
    long count_ = 0;
};

// One client. As long as it is the only one it gets all the attention, since waiting for one of
// many takes 5 of 80 us; others wait to be accepted.
class Session : public Source {
public:
    Session(int descriptor, Messages& messages) : Source(descriptor), messages_(messages) {
        ++sessions_;
        Say("220 catcher ready\r\n");
    }
    ~Session() override { --sessions_; }

    bool Read() override {
        bool goesOn = ReadPiece(MSG_DONTWAIT);
        while (goesOn && sessions_ == 1) goesOn = ReadPiece(0);
        return goesOn;
    }

private:
    bool ReadPiece(int flags) {
        if (isLong_) DropAllButTheEnd();
        static std::array<char, 65536> piece;
        const ssize_t size = recv(descriptor(), piece.data(), piece.size(), flags);
        if (size <= 0) return size < 0 && (errno == EAGAIN || errno == EINTR);
        const std::string_view bytes(piece.data(), static_cast<std::size_t>(size));
        return inMessage_ ? TakeText(bytes) : TakeCommands(bytes);
    }

    // MSG_TRUNC has TCP throw bytes away without copying them.
    void DropAllButTheEnd() {
        constexpr int kWorthTheCalls = 16384;
        int waiting = 0;
        ioctl(descriptor(), FIONREAD, &waiting);
        if (waiting < kWorthTheCalls) return;
        recv(descriptor(), nullptr, static_cast<std::size_t>(waiting) - kEndOfMessage.size(),
             MSG_TRUNC);
        end_.clear();
    }

    bool TakeText(std::string_view bytes) {
        constexpr std::size_t kLong = 32768;
        isLong_ = (isLong_ || bytes.size() >= kLong) && !messages_.AreKept();
        if (messages_.AreKept()) text_ += bytes;
        end_ += bytes.substr(bytes.size() - std::min(bytes.size(), kEndOfMessage.size()));
        if (end_.size() > kEndOfMessage.size()) end_.erase(0, end_.size() - kEndOfMessage.size());
        // Clients wait for the reply, so nothing follows the end.
        if (end_ != kEndOfMessage) return true;
        if (messages_.AreKept()) text_.resize(text_.size() - 3);
        messages_.Take(text_);
        text_.clear();
        inMessage_ = isLong_ = false;
        return Say("250 taken\r\n");
    }

    bool TakeCommands(std::string_view bytes) {
        constexpr std::size_t kLongestLine = 4096;
        line_ += bytes;
        for (std::size_t end; (end = line_.find("\r\n")) != std::string::npos;) {
            const char verb = line_[0];
            line_.erase(0, end + 2);
            if (!Answer(verb)) return false;
        }
        return line_.size() < kLongestLine;
    }

    bool Answer(char verb) {
        switch (verb & ~0x20) {
            case 'E':
                return Say("250-catcher\r\n250 8BITMIME\r\n");
            case 'H':
            case 'M':
            case 'R':
                return Say("250 ok\r\n");
            case 'D':
                inMessage_ = true;
                end_ = "\r\n";
                return Say("354 go on\r\n");
            case 'Q':
                Say("221 bye\r\n");
                return false;
            default:
                return Say("500 what?\r\n");
        }
    }

    bool Say(std::string_view text) {
        return send(descriptor(), text.data(), text.size(), MSG_NOSIGNAL) ==
               static_cast<ssize_t>(text.size());
    }

    static inline int sessions_ = 0;

    Messages& messages_;
    std::string line_;
    std::string text_;
    std::string end_;  // of the text so far
    bool inMessage_ = false;
    bool isLong_ = false;
};

class Listener : public Source {
public:
    Listener(Loop& loop, Messages& messages)
        : Source(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)),
          loop_(loop),
          messages_(messages) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        auto* const generic = reinterpret_cast<sockaddr*>(&address);
        if (bind(descriptor(), generic, size) != 0 || listen(descriptor(), SOMAXCONN) != 0 ||
            getsockname(descriptor(), generic, &size) != 0) {
            throw std::runtime_error("can't listen");
        }
        port_ = ntohs(address.sin_port);
    }

    int port() const { return port_; }

    bool Read() override {
        const int client = accept4(descriptor(), nullptr, nullptr, SOCK_CLOEXEC);
        if (client >= 0) loop_.Add(std::make_unique<Session>(client, messages_));
        return true;
    }

private:
    Loop& loop_;
    Messages& messages_;
    int port_ = 0;
};

class Questions : public Source {
public:
    Questions(Loop& loop, const Messages& messages)
        : Source(STDIN_FILENO), loop_(loop), messages_(messages) {}

    bool Read() override {
        std::array<char, 256> text;
        if (read(descriptor(), text.data(), text.size()) <= 0) {
            loop_.End();
            return false;
        }
        std::printf("%ld\n", messages_.Count());
        std::fflush(stdout);
        return true;
    }

private:
    Loop& loop_;
    const Messages& messages_;
};

void Run(int ports, const std::string& folder) {
    Messages messages(folder);
    Loop loop;
    for (int i = 0; i < ports; ++i) {
        auto listener = std::make_unique<Listener>(loop, messages);
        std::printf("%d ", listener->port());
        loop.Add(std::move(listener));
    }
    std::printf("\n");
    std::fflush(stdout);
    loop.Add(std::make_unique<Questions>(loop, messages));
    loop.Run();
}

}  // namespace
}  // namespace quorvane::bench

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: bench_catcher ports [folder]\n");
        return 2;
    }
    try {
        quorvane::bench::Run(std::atoi(arguments[1]), count > 2 ? arguments[2] : "");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}

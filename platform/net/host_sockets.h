// Linux's stream sockets and resolver, apart from its headers, whose names and constants those of
// winsock2.h would collide with.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace quorvane::host {

// An IPv4 address and a port, both in network byte order.
struct Endpoint {
    uint32_t address = 0;
    uint16_t port = 0;
};

struct PollEntry {
    int descriptor = -1;  // negative entries are passed over
    bool wantsRead = false;
    bool wantsWrite = false;
    bool readable = false;
    bool writable = false;
    bool failed = false;
    bool hungUp = false;
    bool invalid = false;
};

// Room for that many elements, which takes no memory when they are few: a wait for one's own
// sockets can't fail then.
template <class Element>
class FewOrMany {
public:
    explicit FewOrMany(std::size_t count) : count_(count) {
        if (count > few_.size()) many_.resize(count);
    }
    std::span<Element> get() { return {many_.empty() ? few_.data() : many_.data(), count_}; }

private:
    const std::size_t count_;
    std::array<Element, 4> few_{};
    std::vector<Element> many_;
};

// All return what the system call does, or minus errno. A signal never ends a call.
int OpenStream();
int Bind(int descriptor, const Endpoint& endpoint);
int Listen(int descriptor, int backlog);
int Accept(int descriptor, Endpoint& peer);
int LocalEndpoint(int descriptor, Endpoint& endpoint);
int Connect(int descriptor, const Endpoint& endpoint);
long Send(int descriptor, const char* data, std::size_t size);
long Receive(int descriptor, char* buffer, std::size_t size, bool peek);
// Has connect and receive give up after so many milliseconds, less than a second, with EINPROGRESS
// and EAGAIN.
int LimitCalls(int descriptor, int limit);
// These do one call, which a signal may end: EINPROGRESS, since the connect goes on, and EAGAIN.
int ConnectOnce(int descriptor, const Endpoint& endpoint);
long ReceiveOnce(int descriptor, char* buffer, std::size_t size);
// These don't wait, whatever the socket does.
long ReceiveAtOnce(int descriptor, char* buffer, std::size_t size, bool peek);
long SendAtOnce(int descriptor, const char* data, std::size_t size);
int ShutDown(int descriptor, bool receiving, bool sending);
int Close(int descriptor);
int SetNoDelay(int descriptor, bool noDelay);
// Takes the socket's pending errno value.
int TakeError(int descriptor, int& error);
// `timeout` in milliseconds; negative waits for ever.
int Poll(std::span<PollEntry> entries, int timeout);

enum class Resolution { Found, NoSuchName, NoAddress, TryAgain, OutOfMemory, Failed };

// IPv4 addresses of a host name, of a dotted address, or of any interface for a null name.
Resolution Resolve(const char* name, const char* service, bool numericOnly, bool passive,
                   std::vector<Endpoint>& found);

// Port of a service in network byte order, 0 when the service table has none.
uint16_t ServicePort(const char* name, const char* protocol);

bool ParseAddress(const char* text, uint32_t& address);

}  // namespace quorvane::host

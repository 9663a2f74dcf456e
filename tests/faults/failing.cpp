#include "tests/faults/failing.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>

namespace quorvane::faults {
namespace {

// A thread's own; plain data, since malloc itself looks at it.
struct State {
    long left[2] = {-1, -1};  // by Resource; negative for none
    int error = 0;
    bool happened = false;
    const char* what = "";
    std::size_t received = 0;
    std::size_t receivedBefore = 0;
};
thread_local State t_state;

bool Fails(Resource resource, const char* what) {
    long& left = t_state.left[static_cast<int>(resource)];
    if (left < 0 || left-- > 0) return false;
    t_state.happened = true;
    t_state.what = what;
    t_state.receivedBefore = t_state.received;
    errno = resource == Resource::Memory ? ENOMEM : t_state.error;
    return true;
}

template <class Function>
Function* Real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// The C library's own function of that name, unless it is to fail.
template <class Function, class... Arguments>
auto Call(const char* name, Arguments... arguments)
    -> decltype(Real<Function>(name)(arguments...)) {
    if (Fails(Resource::SystemCall, name)) return -1;
    return Real<Function>(name)(arguments...);
}

ssize_t Received(ssize_t count) {
    if (count > 0) t_state.received += static_cast<std::size_t>(count);
    return count;
}

}  // namespace

Failing::Failing(Resource resource, long at, int error) {
    t_state = {};
    t_state.error = error;
    t_state.left[static_cast<int>(resource)] = at;
}

Failing::~Failing() {
    t_state = {};
}

bool Failing::happened() const {
    return t_state.happened;
}

const char* Failing::what() const {
    return t_state.what;
}

std::size_t Failing::receivedBefore() const {
    return t_state.receivedBefore;
}

std::size_t HeapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

}  // namespace quorvane::faults

using quorvane::faults::Call;
using quorvane::faults::Fails;
using quorvane::faults::Resource;

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);

void* malloc(std::size_t size) {
    return Fails(Resource::Memory, "malloc") ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    return Fails(Resource::Memory, "calloc") ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) {
    return Fails(Resource::Memory, "realloc") ? nullptr : __libc_realloc(block, size);
}

int socket(int domain, int type, int protocol) {
    return Call<decltype(socket)>("socket", domain, type, protocol);
}

int connect(int descriptor, const sockaddr* address, socklen_t size) {
    return Call<decltype(connect)>("connect", descriptor, address, size);
}

ssize_t send(int descriptor, const void* bytes, std::size_t size, int flags) {
    return Call<decltype(send)>("send", descriptor, bytes, size, flags);
}

ssize_t sendmsg(int descriptor, const msghdr* message, int flags) {
    return Call<decltype(sendmsg)>("sendmsg", descriptor, message, flags);
}

ssize_t recv(int descriptor, void* bytes, std::size_t size, int flags) {
    const ssize_t count = Call<decltype(recv)>("recv", descriptor, bytes, size, flags);
    return flags & MSG_PEEK ? count : quorvane::faults::Received(count);
}

int poll(pollfd* entries, nfds_t count, int milliseconds) {
    return Call<decltype(poll)>("poll", entries, count, milliseconds);
}

int setsockopt(int descriptor, int level, int name, const void* value, socklen_t size) {
    return Call<decltype(setsockopt)>("setsockopt", descriptor, level, name, value, size);
}

int getsockopt(int descriptor, int level, int name, void* value, socklen_t* size) {
    return Call<decltype(getsockopt)>("getsockopt", descriptor, level, name, value, size);
}

int shutdown(int descriptor, int how) {
    return Call<decltype(shutdown)>("shutdown", descriptor, how);
}

int fcntl(int descriptor, int command, ...) {
    va_list list;
    va_start(list, command);
    const long argument = va_arg(list, long);
    va_end(list);
    if (Fails(Resource::SystemCall, "fcntl")) return -1;
    return quorvane::faults::Real<int(int, int, ...)>("fcntl")(descriptor, command, argument);
}

int open(const char* path, int flags, ...) {
    va_list list;
    va_start(list, flags);
    const int mode = va_arg(list, int);
    va_end(list);
    if (Fails(Resource::SystemCall, "open")) return -1;
    return quorvane::faults::Real<int(const char*, int, ...)>("open")(path, flags, mode);
}

int fstat(int descriptor, struct stat* status) {
    return Call<decltype(fstat)>("fstat", descriptor, status);
}

ssize_t read(int descriptor, void* bytes, std::size_t size) {
    return Call<decltype(read)>("read", descriptor, bytes, size);
}

int getaddrinfo(const char* node, const char* service, const addrinfo* hints, addrinfo** result) {
    if (Fails(Resource::SystemCall, "getaddrinfo")) return EAI_MEMORY;
    return quorvane::faults::Real<decltype(getaddrinfo)>("getaddrinfo")(node, service, hints,
                                                                        result);
}

}  // extern "C"

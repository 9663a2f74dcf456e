#include <winsock2.h>
#include <ws2tcpip.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "host_sockets.h"

namespace quorvane::winsock {
namespace {

// One entry of a list, with the address that it points to.
struct Entry {
    addrinfo info;
    sockaddr_in address;
};

int ErrorOf(host::Resolution resolution) {
    switch (resolution) {
        case host::Resolution::Found:
            return 0;
        case host::Resolution::NoSuchName:
            return WSAHOST_NOT_FOUND;
        case host::Resolution::NoAddress:
            return WSANO_DATA;
        case host::Resolution::TryAgain:
            return WSATRY_AGAIN;
        case host::Resolution::OutOfMemory:
            return WSA_NOT_ENOUGH_MEMORY;
        case host::Resolution::Failed:
            break;
    }
    return WSANO_RECOVERY;
}

struct ListDeleter {
    void operator()(addrinfo* list) const { freeaddrinfo(list); }
};

addrinfo* MakeEntry(const host::Endpoint& endpoint) {
    auto* const entry = new Entry{};
    entry->address.sin_family = AF_INET;
    entry->address.sin_port = endpoint.port;
    entry->address.sin_addr.s_addr = endpoint.address;
    entry->info.ai_family = AF_INET;
    entry->info.ai_socktype = SOCK_STREAM;
    entry->info.ai_protocol = IPPROTO_TCP;
    entry->info.ai_addrlen = sizeof entry->address;
    entry->info.ai_addr = reinterpret_cast<sockaddr*>(&entry->address);
    return &entry->info;
}

int Resolve(const char* node, const char* service, int flags, PADDRINFOA* result) {
    std::vector<host::Endpoint> endpoints;
    const host::Resolution resolution = host::Resolve(node, service, (flags & AI_NUMERICHOST) != 0,
                                                      (flags & AI_PASSIVE) != 0, endpoints);
    if (resolution != host::Resolution::Found) return ErrorOf(resolution);
    std::unique_ptr<addrinfo, ListDeleter> list;
    std::for_each(endpoints.rbegin(), endpoints.rend(), [&](const host::Endpoint& endpoint) {
        addrinfo* const entry = MakeEntry(endpoint);
        entry->ai_next = list.release();
        list.reset(entry);
    });
    *result = list.release();
    return 0;
}

}  // namespace

int getaddrinfo(const char* node, const char* service, const ADDRINFOA* hints, PADDRINFOA* result) {
    *result = nullptr;
    int error;
    try {
        const bool otherFamily = hints && hints->ai_family != AF_INET;
        error = otherFamily ? WSAEAFNOSUPPORT
                            : Resolve(node, service, hints ? hints->ai_flags : 0, result);
    } catch (const std::bad_alloc&) {
        error = WSA_NOT_ENOUGH_MEMORY;
    }
    if (error != 0) WSASetLastError(error);
    return error;
}

void freeaddrinfo(PADDRINFOA list) {
    while (list) {
        addrinfo* const next = list->ai_next;
        // The entry starts with its information.
        delete reinterpret_cast<Entry*>(list);
        list = next;
    }
}

int inet_pton(int family, const char* text, void* address) {
    if (family != AF_INET) {
        WSASetLastError(WSAEAFNOSUPPORT);
        return -1;
    }
    uint32_t parsed;
    if (!host::ParseAddress(text, parsed)) return 0;
    __builtin_memcpy(address, &parsed, sizeof parsed);
    return 1;
}

servent* getservbyname(const char* name, const char* protocol) {
    thread_local struct {
        std::string name;
        std::string protocol;
        servent entry;
    } t_answer;
    t_answer.name = name;
    // Windows finds services whatever the case of their names.
    std::transform(t_answer.name.begin(), t_answer.name.end(), t_answer.name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    t_answer.protocol = protocol ? protocol : "tcp";
    const uint16_t port = host::ServicePort(t_answer.name.c_str(), t_answer.protocol.c_str());
    if (port == 0) {
        WSASetLastError(WSANO_DATA);
        return nullptr;
    }
    static char* noAliases[] = {nullptr};
    t_answer.entry = {t_answer.name.data(), noAliases, t_answer.protocol.data(),
                      static_cast<short>(port)};
    return &t_answer.entry;
}

}  // namespace quorvane::winsock

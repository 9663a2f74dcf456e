// Windows Sockets: names and addresses.
#pragma once

#include "winsock2.h"

namespace quorvane::winsock {

struct addrinfo {
    int ai_flags;
    int ai_family;
    int ai_socktype;
    int ai_protocol;
    size_t ai_addrlen;
    char* ai_canonname;
    sockaddr* ai_addr;
    addrinfo* ai_next;
};
typedef addrinfo ADDRINFOA;
typedef ADDRINFOA* PADDRINFOA;

// Resolves a name or a dotted address to IPv4 stream addresses, in the resolver's order. 0, or a
// WSA... number that is the last socket error too. The list is freed with freeaddrinfo.
// Differs from Windows: AI_NUMERICHOST and AI_PASSIVE are the only flags and AF_INET is the only
// family.
int getaddrinfo(const char* node, const char* service, const ADDRINFOA* hints, PADDRINFOA* result);
void freeaddrinfo(PADDRINFOA list);

// 1 for a dotted IPv4 address of four parts, which is stored at `address`; else 0.
int inet_pton(int family, const char* text, void* address);

}  // namespace quorvane::winsock

using quorvane::winsock::addrinfo;
using quorvane::winsock::ADDRINFOA;
using quorvane::winsock::freeaddrinfo;
using quorvane::winsock::getaddrinfo;
using quorvane::winsock::inet_pton;
using quorvane::winsock::PADDRINFOA;

#define AI_PASSIVE 0x1
#define AI_NUMERICHOST 0x4

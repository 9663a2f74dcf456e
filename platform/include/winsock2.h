// Windows Sockets: IPv4 stream sockets and readiness.
//
// The names live in a namespace of their own and are brought into the global one, so that a call
// reaches this library's functions and never the C library's functions of the same names. A
// source file includes either this header or the system's socket headers.
#pragma once

#include <sys/types.h>  // before its name u_long becomes a macro below

#include "windows.h"

namespace quorvane::winsock {

typedef UINT_PTR SOCKET;
typedef unsigned int u_long;  // 32 bits, as on Windows

struct in_addr {
    ULONG s_addr;  // network byte order
};

struct sockaddr {
    USHORT sa_family;
    CHAR sa_data[14];
};

struct sockaddr_in {
    SHORT sin_family;
    USHORT sin_port;  // network byte order
    in_addr sin_addr;
    CHAR sin_zero[8];
};

typedef sockaddr SOCKADDR;
typedef sockaddr_in SOCKADDR_IN;

struct servent {
    char* s_name;
    char** s_aliases;
    char* s_proto;
    short s_port;  // network byte order
};

struct WSADATA {
    WORD wVersion;
    WORD wHighVersion;
    USHORT iMaxSockets;
    USHORT iMaxUdpDg;
    char* lpVendorInfo;
    char szDescription[257];
    char szSystemStatus[129];
};
typedef WSADATA* LPWSADATA;

struct WSAPOLLFD {
    SOCKET fd;
    SHORT events;
    SHORT revents;
};
typedef WSAPOLLFD* LPWSAPOLLFD;

// The calling thread's last socket error, a WSA... number; successful calls leave it alone.
int WSAGetLastError();
void WSASetLastError(int error);

int WSAStartup(WORD version, LPWSADATA data);

// SOCKET_ERROR or INVALID_SOCKET with the last socket error set on failure.
// Differs from Windows: a signal that interrupts a call doesn't end it; a new socket is not
// inherited by programs that the process starts; sending to a peer that has reset the connection
// gives WSAECONNRESET every time, and so does sending after shutdown with SD_SEND.
SOCKET socket(int family, int type, int protocol);
int bind(SOCKET s, const sockaddr* address, int size);
int listen(SOCKET s, int backlog);
SOCKET accept(SOCKET s, sockaddr* address, int* size);
int getsockname(SOCKET s, sockaddr* address, int* size);
int connect(SOCKET s, const sockaddr* address, int size);
// Sends everything on a blocking socket. Never raises SIGPIPE.
int send(SOCKET s, const char* data, int size, int flags);
int recv(SOCKET s, char* buffer, int size, int flags);
int shutdown(SOCKET s, int how);
int closesocket(SOCKET s);
// TCP_NODELAY can be set; SO_ERROR can be asked for, which takes the error from the socket.
int setsockopt(SOCKET s, int level, int option, const char* value, int size);
int getsockopt(SOCKET s, int level, int option, char* value, int* size);

// Number of sockets with something to report, 0 after `timeout` milliseconds (negative: never).
int WSAPoll(LPWSAPOLLFD sockets, ULONG count, INT timeout);

// The service table's entry, valid until the calling thread asks again; null when there is none.
servent* getservbyname(const char* name, const char* protocol);

constexpr USHORT htons(USHORT value) {
    return __builtin_bswap16(value);
}
constexpr USHORT ntohs(USHORT value) {
    return __builtin_bswap16(value);
}
constexpr u_long htonl(u_long value) {
    return __builtin_bswap32(value);
}
constexpr u_long ntohl(u_long value) {
    return __builtin_bswap32(value);
}

}  // namespace quorvane::winsock

using quorvane::winsock::accept;
using quorvane::winsock::bind;
using quorvane::winsock::closesocket;
using quorvane::winsock::connect;
using quorvane::winsock::getservbyname;
using quorvane::winsock::getsockname;
using quorvane::winsock::getsockopt;
using quorvane::winsock::htonl;
using quorvane::winsock::htons;
using quorvane::winsock::in_addr;
using quorvane::winsock::listen;
using quorvane::winsock::LPWSADATA;
using quorvane::winsock::LPWSAPOLLFD;
using quorvane::winsock::ntohl;
using quorvane::winsock::ntohs;
using quorvane::winsock::recv;
using quorvane::winsock::send;
using quorvane::winsock::servent;
using quorvane::winsock::setsockopt;
using quorvane::winsock::shutdown;
using quorvane::winsock::sockaddr;
using quorvane::winsock::SOCKADDR;
using quorvane::winsock::sockaddr_in;
using quorvane::winsock::SOCKADDR_IN;
using quorvane::winsock::socket;
using quorvane::winsock::SOCKET;
using quorvane::winsock::WSADATA;
using quorvane::winsock::WSAGetLastError;
using quorvane::winsock::WSAPoll;
using quorvane::winsock::WSAPOLLFD;
using quorvane::winsock::WSASetLastError;
using quorvane::winsock::WSAStartup;
// A macro, since <sys/types.h> has a global type of that name, with 64 bits.
#define u_long quorvane::winsock::u_long

#define INVALID_SOCKET ((SOCKET) ~(SOCKET)0)
#define SOCKET_ERROR (-1)

#define AF_INET 2
#define SOCK_STREAM 1
#define IPPROTO_TCP 6
#define INADDR_LOOPBACK 0x7F000001
#define SOMAXCONN 0x7FFFFFFF

#define SD_RECEIVE 0
#define SD_SEND 1
#define SD_BOTH 2
#define MSG_PEEK 0x2

#define SOL_SOCKET 0xFFFF
#define SO_ERROR 0x1007
#define TCP_NODELAY 0x0001

#define POLLRDNORM 0x0100
#define POLLRDBAND 0x0200
#define POLLIN (POLLRDNORM | POLLRDBAND)
#define POLLWRNORM 0x0010
#define POLLOUT POLLWRNORM
#define POLLERR 0x0001
#define POLLHUP 0x0002
#define POLLNVAL 0x0004

#define WSA_NOT_ENOUGH_MEMORY 8
#define WSAEINTR 10004
#define WSAEACCES 10013
#define WSAEFAULT 10014
#define WSAEINVAL 10022
#define WSAEMFILE 10024
#define WSAEWOULDBLOCK 10035
#define WSAEALREADY 10037
#define WSAENOTSOCK 10038
#define WSAEPROTOTYPE 10041
#define WSAENOPROTOOPT 10042
#define WSAEPROTONOSUPPORT 10043
#define WSAEOPNOTSUPP 10045
#define WSAEAFNOSUPPORT 10047
#define WSAEADDRINUSE 10048
#define WSAEADDRNOTAVAIL 10049
#define WSAENETDOWN 10050
#define WSAENETUNREACH 10051
#define WSAENETRESET 10052
#define WSAECONNABORTED 10053
#define WSAECONNRESET 10054
#define WSAENOBUFS 10055
#define WSAEISCONN 10056
#define WSAENOTCONN 10057
#define WSAETIMEDOUT 10060
#define WSAECONNREFUSED 10061
#define WSAEHOSTDOWN 10064
#define WSAEHOSTUNREACH 10065
#define WSAHOST_NOT_FOUND 11001
#define WSATRY_AGAIN 11002
#define WSANO_RECOVERY 11003
#define WSANO_DATA 11004

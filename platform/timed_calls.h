// Calls on one connection that wait for a short while by themselves, where the system lets them. A
// wait and what it waits for are one call then, which saves a twentieth of the time that a small
// message takes on Linux. Windows leaves a connection undefined once a receive has timed out, so
// the calls don't wait there, and the receive follows a poll.
//
// They return what the socket functions do that they are named after, and leave the error to
// WSAGetLastError: WSAEWOULDBLOCK when the time has passed. On Linux a signal may end the time
// early. Times are in milliseconds.
#pragma once

#include <winsock2.h>

namespace quorvane {

// The longest that one of these calls waits.
inline constexpr int kTimedCallLimit = 400;

// Makes a new socket one for the calls below: 0 or SOCKET_ERROR.
int PrepareTimedCalls(SOCKET s);

// Waits as long as the limit, if at all. A connect that hasn't its result in time goes on, and the
// socket becomes writable with it.
int ConnectInTime(SOCKET s, const sockaddr_in& peer);

// `time` is at most kTimedCallLimit.
int ReceiveInTime(SOCKET s, char* buffer, int size, int time);

// These don't wait. `flags`: 0 or MSG_PEEK.
int ReceiveAtOnce(SOCKET s, char* buffer, int size, int flags);
int SendAtOnce(SOCKET s, const char* data, int size);

}  // namespace quorvane

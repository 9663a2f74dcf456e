// Calls on one connection that wait for a short while by themselves, where the system lets them. A
// wait and what it waits for are one call then, which saves 2 of the 36 us that a small message
// takes on Linux. Windows leaves a connection undefined behind a receive that has timed out, so
// there each is a poll and a call that doesn't wait.
//
// All return what the socket functions of the same names do, and leave the error to
// WSAGetLastError; WSAEWOULDBLOCK when the time has passed, or a signal came. Times are in
// milliseconds.
#pragma once

#include <winsock2.h>

namespace quorvane {

// The longest that one of these calls waits.
inline constexpr int kTimedCallLimit = 400;

// Makes a new socket one for the calls below.
int PrepareTimedCalls(SOCKET s);

// A connect that hasn't its result in time goes on; the socket becomes writable with it.
int ConnectInTime(SOCKET s, const sockaddr_in& peer);

// `time` is at most kTimedCallLimit.
int ReceiveInTime(SOCKET s, char* buffer, int size, int time);

// These don't wait. `flags`: 0 or MSG_PEEK.
int ReceiveAtOnce(SOCKET s, char* buffer, int size, int flags);
int SendAtOnce(SOCKET s, const char* data, int size);

}  // namespace quorvane

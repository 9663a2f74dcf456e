// Socket errors of Windows.
#pragma once

namespace quorvane::winsock {

// The WSA... number for a value of errno.
int SocketError(int hostError);

}  // namespace quorvane::winsock

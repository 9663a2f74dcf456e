// Connections that end with a reset.
#pragma once

namespace quorvane::faults {

// Has the system reset the connection when the socket is closed.
void ResetWhenClosed(int socket);

}  // namespace quorvane::faults

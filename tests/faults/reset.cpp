#include "tests/faults/reset.h"

#include <sys/socket.h>

namespace quorvane::faults {

void ResetWhenClosed(int socket) {
    const linger atOnce{1, 0};
    setsockopt(socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

}  // namespace quorvane::faults

#include "tests/servers/tls_server.h"

namespace quorvane::testing {

std::unique_ptr<TlsServer> MakeTlsServer(TlsVersion) {
    return nullptr;
}

}  // namespace quorvane::testing

// A message of 25 MiB over TLS on the loopback interface: as a session sends it, and as OpenSSL's
// own record layer does with the same cipher to the same receiver. Real time is that of the whole
// exchange, processor time that of the sender alone.
#include <benchmark/benchmark.h>
#include <openssl/ssl.h>

#include <functional>
#include <thread>

#include "bench/workloads.h"
#include "smtp/line_channel.h"
#include "tests/servers/loopback.h"
#include "tests/servers/tls_server.h"

namespace quorvane::bench {
namespace {

using testing::LoopbackListener;
using testing::LoopbackSocket;

constexpr std::size_t kSize = 25 << 20;
constexpr Milliseconds kLimit{30000};

// Takes messages of that size and answers each, until the client closes.
void Receive(const LoopbackListener& listener) {
    const LoopbackSocket socket = listener.Accept();
    const auto server = testing::MakeTlsServer();
    std::size_t received = 0;
    for (std::string bytes; socket.Receive(bytes); bytes.clear()) {
        if (!server->established()) {
            socket.Send(server->Handshake(bytes));
            continue;
        }
        received += server->Decrypt(bytes).size();
        if (received >= kSize) {
            socket.Send(server->Encrypt("250 OK\r\n"));
            received = 0;
        }
    }
}

// A connection to a receiver in a thread of its own.
class Link {
public:
    Link() : receiver_([this] { Receive(listener_); }) {
        in_addr address{};
        connected_ = ResolveServer(OLESTR("127.0.0.1"), address) &&
                     connection.Open() == SocketStatus::Done &&
                     connection.Connect(address, listener_.port()) == SocketStatus::Done;
    }
    ~Link() { connection.Close(); }
    bool connected() const { return connected_; }

    SocketConnection connection;

private:
    LoopbackListener listener_;
    bool connected_ = false;
    std::jthread receiver_;
};

void Measure(benchmark::State& state, const std::function<bool()>& send) {
    for (auto _ : state) {
        if (!send()) {
            return state.SkipWithError("the message was not sent");
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kSize));
}

void Session(benchmark::State& state) {
    const std::string message = RandomBytes(kSize);
    const WideString server = OLESTR("mx.example.test");
    WideString text;
    Link link;
    SecureChannel secure(link.connection, server, text);
    LineChannel channel(link.connection, secure, server, text, [](ULONG, ULONG) { return 1; });
    if (!link.connected() || secure.Handshake(kLimit) != 0) {
        return state.SkipWithError("no connection");
    }
    Measure(state, [&] { return channel.SendCommand(message, 30) == 250; });
}
BENCHMARK(Session)->UseRealTime()->Unit(benchmark::kMillisecond);

// OpenSSL over a socket that blocks, in records of the largest size.
class OpenSslClient {
public:
    explicit OpenSslClient(USHORT port) {
        sockaddr_in peer{};
        peer.sin_family = AF_INET;
        peer.sin_port = port;
        peer.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socket_ = LoopbackSocket(socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
        SSL_set_fd(ssl_, static_cast<int>(socket_.get()));
        connected_ = connect(socket_.get(), reinterpret_cast<sockaddr*>(&peer), sizeof peer) == 0 &&
                     SSL_connect(ssl_) == 1;
    }
    ~OpenSslClient() {
        SSL_free(ssl_);
        SSL_CTX_free(settings_);
    }
    bool connected() const { return connected_; }

    bool Send(const std::string& message) {
        char reply[64];
        return SSL_write(ssl_, message.data(), static_cast<int>(message.size())) > 0 &&
               SSL_read(ssl_, reply, sizeof reply) > 0;
    }

private:
    SSL_CTX* settings_ = SSL_CTX_new(TLS_client_method());
    SSL* ssl_ = SSL_new(settings_);
    LoopbackSocket socket_;
    bool connected_ = false;
};

void OpenSsl(benchmark::State& state) {
    const std::string message = RandomBytes(kSize);
    const LoopbackListener listener;
    std::jthread receiver([&] { Receive(listener); });
    OpenSslClient client(listener.port());
    if (!client.connected()) {
        return state.SkipWithError("no connection");
    }
    Measure(state, [&] { return client.Send(message); });
}
BENCHMARK(OpenSsl)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quorvane::bench

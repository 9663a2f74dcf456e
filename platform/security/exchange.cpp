#include "exchange.h"

#include <algorithm>
#include <new>

namespace quorvane::security {
namespace {

Exchange& ExchangeOf(BIO* bio) {
    return **static_cast<Exchange**>(BIO_get_data(bio));
}

int Read(BIO* bio, char* buffer, int size) {
    BIO_clear_retry_flags(bio);
    auto& input = ExchangeOf(bio).input;
    if (input.empty()) {
        BIO_set_retry_read(bio);
        return -1;
    }
    const std::size_t count = std::min(input.size(), static_cast<std::size_t>(size));
    std::copy_n(input.begin(), count, buffer);
    input = input.subspan(count);
    return static_cast<int>(count);
}

int Write(BIO* bio, const char* bytes, int size) {
    BIO_clear_retry_flags(bio);
    Exchange& exchange = ExchangeOf(bio);
    const auto count = static_cast<std::size_t>(size);
    if (exchange.room.empty()) {
        try {
            exchange.token.append(bytes, count);
        } catch (const std::bad_alloc&) {
            return -1;
        }
        return size;
    }
    if (count > exchange.room.size() - exchange.written) return -1;
    std::copy_n(bytes, count, exchange.room.data() + exchange.written);
    exchange.written += count;
    return size;
}

long Control(BIO*, int command, long, void*) {
    return command == BIO_CTRL_FLUSH ? 1 : 0;
}

// Kept for the life of the process, like OpenSSL's own.
BIO_METHOD* Method() {
    static BIO_METHOD* const method = [] {
        BIO_METHOD* const made =
            BIO_meth_new(BIO_get_new_index() | BIO_TYPE_SOURCE_SINK, "caller's memory");
        if (made) {
            BIO_meth_set_read(made, Read);
            BIO_meth_set_write(made, Write);
            BIO_meth_set_ctrl(made, Control);
        }
        return made;
    }();
    return method;
}

}  // namespace

BIO* NewExchangeBio(Exchange** current) {
    BIO_METHOD* const method = Method();
    BIO* const bio = method ? BIO_new(method) : nullptr;
    if (bio) {
        BIO_set_data(bio, current);
        BIO_set_init(bio, 1);
    }
    return bio;
}

}  // namespace quorvane::security

#include "smtp/tls_record.h"

namespace quorvane {
namespace {

constexpr std::size_t kHeaderSize = 5;
constexpr unsigned kChangeCipherSpec = 20, kAlert = 21, kHandshake = 22, kApplicationData = 23;
constexpr unsigned kMajorVersion = 3;

unsigned ByteAt(std::span<const char> bytes, std::size_t index) {
    return static_cast<unsigned char>(bytes[index]);
}

// Of a header that is there.
std::size_t RecordSize(std::span<const char> bytes) {
    return kHeaderSize + ByteAt(bytes, 3) * 256 + ByteAt(bytes, 4);
}

}  // namespace

bool MayBeginTlsRecord(std::span<const char> bytes) {
    if (bytes.empty()) {
        return true;
    }
    const unsigned type = ByteAt(bytes, 0);
    return type >= kChangeCipherSpec && type <= kApplicationData &&
           (bytes.size() < 2 || ByteAt(bytes, 1) == kMajorVersion) &&
           (bytes.size() < kHeaderSize || RecordSize(bytes) <= kMaxTlsRecordSize);
}

bool MayBeginTlsHandshake(std::span<const char> bytes) {
    return MayBeginTlsRecord(bytes) &&
           (bytes.empty() || ByteAt(bytes, 0) == kHandshake || ByteAt(bytes, 0) == kAlert);
}

bool HoldsTlsRecord(std::span<const char> bytes) {
    return bytes.size() >= kHeaderSize && bytes.size() >= RecordSize(bytes);
}

}  // namespace quorvane

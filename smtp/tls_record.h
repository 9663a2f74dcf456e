// The frame of TLS records (RFC 5246 section 6.2.1), as far as the session itself has to see it:
// packages differ in what they make of bytes that are none, and some wait for more of them.
#pragma once

#include <cstddef>
#include <span>

namespace quorvane {

// Bytes of the longest record, header included.
inline constexpr std::size_t kMaxTlsRecordSize = 5 + 16384 + 2048;

// False when the bytes, however few, can't be the beginning of a record.
bool MayBeginTlsRecord(std::span<const char> bytes);

// The same for the first bytes that a server sends: its part of the handshake, or an alert.
bool MayBeginTlsHandshake(std::span<const char> bytes);

// True when the bytes begin with a whole record.
bool HoldsTlsRecord(std::span<const char> bytes);

}  // namespace quorvane

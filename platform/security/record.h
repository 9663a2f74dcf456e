// The frame of TLS records (RFC 5246 section 6.2), as far as one must see it to hand whole records
// to OpenSSL.
#pragma once

#include <cstddef>
#include <span>

namespace quorvane::security {

inline constexpr std::size_t kRecordHeaderSize = 5;
inline constexpr std::size_t kMaxRecordData = 16384;
inline constexpr std::size_t kMaxRecordContent = kMaxRecordData + 2048;

struct RecordView {
    bool valid = true;      // as far as it can be seen, this is the beginning of a record
    std::size_t size = 0;   // of the whole record; of its header while that isn't whole
    bool complete = false;  // all of it is there
};
RecordView ViewRecord(std::span<const char> bytes);

}  // namespace quorvane::security

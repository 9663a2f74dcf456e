#include "record.h"

namespace quorvane::security {
namespace {

constexpr unsigned kFirstType = 20;  // change_cipher_spec
constexpr unsigned kLastType = 23;   // application_data
constexpr unsigned kMajorVersion = 3;

}  // namespace

RecordView ViewRecord(std::span<const char> bytes) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    RecordView view{true, kRecordHeaderSize, false};
    if (bytes.empty()) return view;
    view.valid = at(0) >= kFirstType && at(0) <= kLastType;
    if (bytes.size() > 1) view.valid = view.valid && at(1) == kMajorVersion;
    if (bytes.size() < kRecordHeaderSize) return view;
    const std::size_t content = at(3) * 256u + at(4);
    view.valid = view.valid && content <= kMaxRecordContent;
    view.size += content;
    view.complete = bytes.size() >= view.size;
    return view;
}

}  // namespace quorvane::security

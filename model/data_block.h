// Attachment bytes that came from memory.
#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <span>

namespace quorvane {

// An immutable block of bytes, shared by every attachment part that was copied from the same
// source. The bytes are followed by one zero byte that the size doesn't count.
class DataBlock {
public:
    DataBlock() = default;

    // A block with a copy of the bytes; no block when there are none. Throws std::bad_alloc.
    static DataBlock Copy(std::span<const BYTE> bytes);

    const BYTE* data() const { return bytes_.get(); }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    std::span<const BYTE> bytes() const { return {bytes_.get(), size_}; }

private:
    std::shared_ptr<const BYTE[]> bytes_;
    std::size_t size_ = 0;
};

}  // namespace quorvane

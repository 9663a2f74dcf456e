#include "model/data_block.h"

#include <cstring>

namespace quorvane {

DataBlock DataBlock::Copy(std::span<const BYTE> bytes) {
    DataBlock block;
    if (bytes.empty()) return block;
    auto storage = std::make_shared_for_overwrite<BYTE[]>(bytes.size() + 1);
    std::memcpy(storage.get(), bytes.data(), bytes.size());
    storage.get()[bytes.size()] = 0;
    block.bytes_ = std::move(storage);
    block.size_ = bytes.size();
    return block;
}

}  // namespace quorvane

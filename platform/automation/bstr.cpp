#include <oleauto.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// The length stands in the four bytes before the text, itself behind four unused ones, so that the
// text keeps the alignment of the block.
constexpr std::size_t kTextOffset = 8;
// Larger texts can't be told from an error in 32-bit size arithmetic of callers; the room for
// prefix and terminator is taken off as on Windows.
constexpr std::size_t kLongestText = UINT32_MAX - sizeof(uint32_t) - sizeof(OLECHAR);

char* Block(BSTR text) {
    return reinterpret_cast<char*>(text) - kTextOffset;
}

// A text of `size` bytes that are still to be filled in; null when there is no memory or it is
// too long.
BSTR Allocate(std::size_t size) {
    if (size > kLongestText) return nullptr;
    // A text of an odd number of bytes has a whole NUL unit behind it as well.
    char* bytes = static_cast<char*>(std::malloc(kTextOffset + size + 2 * sizeof(OLECHAR)));
    if (!bytes) return nullptr;
    const auto prefix = static_cast<uint32_t>(size);
    std::memcpy(bytes + kTextOffset - sizeof prefix, &prefix, sizeof prefix);
    std::memset(bytes + kTextOffset + size, 0, 2 * sizeof(OLECHAR));
    return reinterpret_cast<BSTR>(bytes + kTextOffset);
}

std::size_t Length(const OLECHAR* text) {
    return std::char_traits<OLECHAR>::length(text);
}

}  // namespace

BSTR SysAllocStringByteLen(LPCSTR bytes, UINT size) {
    const BSTR result = Allocate(size);
    if (result && bytes) std::memcpy(result, bytes, size);
    return result;
}

BSTR SysAllocStringLen(const OLECHAR* text, UINT units) {
    const std::size_t size = std::size_t{units} * sizeof(OLECHAR);
    const BSTR result = Allocate(size);
    if (result && text) std::memcpy(result, text, size);
    return result;
}

BSTR SysAllocString(const OLECHAR* text) {
    if (!text) return nullptr;
    const std::size_t units = Length(text);
    return units > UINT32_MAX ? nullptr : SysAllocStringLen(text, static_cast<UINT>(units));
}

void SysFreeString(BSTR text) {
    if (text) std::free(Block(text));
}

UINT SysStringByteLen(BSTR text) {
    if (!text) return 0;
    uint32_t prefix;
    std::memcpy(&prefix, Block(text) + kTextOffset - sizeof prefix, sizeof prefix);
    return prefix;
}

UINT SysStringLen(BSTR text) {
    return SysStringByteLen(text) / sizeof(OLECHAR);
}

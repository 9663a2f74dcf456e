#include "mime/base64.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <new>

#include "mime/append_written.h"
#include "mime/base64_kernel.h"

namespace quorvane {
namespace {

constexpr BYTE kInvalid = 0xFE;
constexpr BYTE kPadding = 0xFF;

// Characters with the high bit set decode like the ones without it.
constexpr std::array<BYTE, 256> MakeDecodeTable() {
    std::array<BYTE, 256> table{};
    table.fill(kInvalid);
    for (std::size_t i = 0; i < kBase64Alphabet.size(); ++i) {
        const auto c = static_cast<BYTE>(kBase64Alphabet[i]);
        table[c] = table[c | 0x80] = static_cast<BYTE>(i);
    }
    table['='] = table['=' | 0x80] = kPadding;
    return table;
}

constexpr std::array<BYTE, 256> kDecodeTable = MakeDecodeTable();

BYTE PaddingAsZero(BYTE sextet) {
    return sextet == kPadding ? BYTE{0} : sextet;
}

DWORD TextLength(const char* text) {
    const std::size_t length = std::strlen(text);
    if (length > std::numeric_limits<DWORD>::max()) throw std::bad_alloc();
    return static_cast<DWORD>(length);
}

// Makes the buffer larger than n when it is smaller, in steps of 4096 bytes, and clears it.
void Reserve(std::unique_ptr<BYTE[]>& buffer, DWORD& capacity, DWORD& length, DWORD n) {
    constexpr DWORD kStep = 4096;
    length = 0;
    if (!buffer || capacity < n) {
        if (n > std::numeric_limits<DWORD>::max() - kStep) throw std::bad_alloc();
        buffer.reset();
        capacity = 0;
        const DWORD size = (n / kStep + 1) * kStep;
        buffer.reset(new BYTE[size]);
        capacity = size;
    }
    std::memset(buffer.get(), 0, capacity);
}

}  // namespace

CBase64::~CBase64() = default;

void CBase64::Encode(const char* text) {
    if (text) Encode(reinterpret_cast<const BYTE*>(text), TextLength(text));
}

void CBase64::Encode(const BYTE* bytes, DWORD size) {
    if (size > std::numeric_limits<DWORD>::max() / 2) throw std::bad_alloc();
    LoadDecoded(bytes, size);
    ReserveEncoded(size * 2);
    for (DWORD i = 0; i < m_decodedLength; i += 3) {
        GroupBuffer group{};
        group.count = static_cast<BYTE>(std::min<DWORD>(3, m_decodedLength - i));
        std::memcpy(group.data, m_decoded.get() + i, group.count);
        EncodeGroup(group, m_encoded.get() + m_encodedLength);
        m_encodedLength += 4;
    }
}

void CBase64::Decode(const char* text) {
    if (text) Decode(reinterpret_cast<const BYTE*>(text), TextLength(text));
}

void CBase64::Decode(const BYTE* bytes, DWORD size) {
    LoadEncoded(bytes, size);
    ReserveDecoded(size);
    for (DWORD i = 0; i < m_encodedLength; i += 4) {
        const DWORD rest = std::min<DWORD>(4, m_encodedLength - i);
        GroupBuffer sextets{};
        sextets.count = static_cast<BYTE>(rest);
        for (DWORD k = 0; k < rest; ++k) {
            const BYTE sextet = kDecodeTable[m_encoded[i + k]];
            // Padding where no padding can be takes part in the arithmetic of a full group.
            sextets.data[k] = rest == 4 && k < 2 ? sextet : PaddingAsZero(sextet);
        }
        BYTE decoded[3];
        DecodeGroup(sextets, decoded);
        const DWORD count = std::min<DWORD>(3, rest);
        std::memcpy(m_decoded.get() + m_decodedLength, decoded, count);
        m_decodedLength += count;
    }
}

void CBase64::ReserveEncoded(DWORD n) {
    Reserve(m_encoded, m_encodedCapacity, m_encodedLength, n);
}

void CBase64::ReserveDecoded(DWORD n) {
    Reserve(m_decoded, m_decodedCapacity, m_decodedLength, n);
}

void CBase64::LoadEncoded(const BYTE* bytes, DWORD size) {
    ReserveEncoded(size);
    for (DWORD i = 0; i < size; ++i) {
        if (!IsSkippedChar(bytes[i])) m_encoded[m_encodedLength++] = bytes[i];
    }
}

void CBase64::LoadDecoded(const BYTE* bytes, DWORD size) {
    ReserveDecoded(size);
    if (size > 0) std::memcpy(m_decoded.get(), bytes, size);
    m_decodedLength = size;
}

void CBase64::EncodeGroup(const GroupBuffer& group, BYTE* characters) const {
    GroupBuffer sextets{};
    SplitGroup(sextets, group);
    for (int i = 0; i < 4; ++i) {
        characters[i] = static_cast<BYTE>(kBase64Alphabet[sextets.data[i]]);
    }
    if (group.count < 2) characters[2] = '=';
    if (group.count < 3) characters[3] = '=';
}

void CBase64::DecodeGroup(const GroupBuffer& sextets, BYTE* bytes) const {
    GroupBuffer joined{};
    JoinGroup(joined, sextets);
    std::memcpy(bytes, joined.data, 3);
}

void CBase64::SplitGroup(GroupBuffer& sextets, const GroupBuffer& bytes) const {
    const BYTE* b = bytes.data;
    sextets.data[0] = static_cast<BYTE>(b[0] >> 2);
    sextets.data[1] = static_cast<BYTE>((b[0] << 4 | b[1] >> 4) & 0x3F);
    sextets.data[2] = static_cast<BYTE>((b[1] << 2 | b[2] >> 6) & 0x3F);
    sextets.data[3] = static_cast<BYTE>(b[2] & 0x3F);
    sextets.count = 4;
}

void CBase64::JoinGroup(GroupBuffer& bytes, const GroupBuffer& sextets) const {
    const BYTE* s = sextets.data;
    bytes.data[0] = static_cast<BYTE>(s[0] << 2 | (s[1] >> 4 & 0x03));
    bytes.data[1] = static_cast<BYTE>(s[1] << 4 | (s[2] >> 2 & 0x0F));
    bytes.data[2] = static_cast<BYTE>(s[2] << 6 | (s[3] & 0x3F));
    bytes.count = 3;
}

bool CBase64::IsSkippedChar(BYTE c) const {
    return (c >= 7 && c <= 13) || c == 32;
}

void AppendBase64(std::span<const BYTE> bytes, std::string& out) {
    AppendWritten(out, Base64Size(bytes.size()),
                  [bytes](char* to) { EncodeBase64(bytes.data(), bytes.size(), to); });
}

void AppendBase64Lines(std::span<const BYTE> bytes, std::string& out) {
    AppendWritten(out, Base64LinesSize(bytes.size()),
                  [bytes](char* to) { FastestBase64LineEncoder()(bytes.data(), bytes.size(), to); });
}

}  // namespace quorvane

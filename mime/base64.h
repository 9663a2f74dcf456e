// Base64 (RFC 2045 section 6.8): the codec object, and the functions that encode straight into a
// message.
#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace quorvane {

// Up to four bytes on their way through the codec.
struct GroupBuffer {
    BYTE data[4];
    BYTE count;  // valid bytes, 1 to 4
};

// Encodes and decodes texts that are small enough to be held twice. The results stand in buffers
// of the object, followed by a zero byte, until its next operation. A buffer that can't be
// allocated throws std::bad_alloc and leaves the object empty. Used by one thread at a time.
class CBase64 {
public:
    CBase64() = default;
    virtual ~CBase64();
    CBase64(const CBase64&) = delete;
    CBase64& operator=(const CBase64&) = delete;

    // A null text is ignored.
    virtual void Encode(const char* text);
    // The result is one line, whatever its length.
    virtual void Encode(const BYTE* bytes, DWORD size);

    virtual void Decode(const char* text);
    // Line breaks and blanks are skipped. Never fails: a character outside the alphabet gives
    // undefined bytes, and padding decodes to zero bytes that the decoded length counts.
    virtual void Decode(const BYTE* bytes, DWORD size);

    virtual const BYTE* GetDecoded() const { return m_decoded.get(); }
    virtual const BYTE* GetEncoded() const { return m_encoded.get(); }

    // Room for more than n bytes, all zero, with the length set to 0. Buffers never shrink.
    virtual void ReserveEncoded(DWORD n);
    virtual void ReserveDecoded(DWORD n);
    virtual void LoadEncoded(const BYTE* bytes, DWORD size);
    virtual void LoadDecoded(const BYTE* bytes, DWORD size);

    virtual void EncodeGroup(const GroupBuffer& group, BYTE* characters) const;
    virtual void DecodeGroup(const GroupBuffer& sextets, BYTE* bytes) const;
    virtual void SplitGroup(GroupBuffer& sextets, const GroupBuffer& bytes) const;
    virtual void JoinGroup(GroupBuffer& bytes, const GroupBuffer& sextets) const;
    virtual bool IsSkippedChar(BYTE c) const;

    DWORD EncodedLength() const { return m_encodedLength; }
    DWORD DecodedLength() const { return m_decodedLength; }

protected:
    std::unique_ptr<BYTE[]> m_decoded;
    std::unique_ptr<BYTE[]> m_encoded;
    DWORD m_decodedCapacity = 0;
    DWORD m_encodedCapacity = 0;
    DWORD m_decodedLength = 0;
    DWORD m_encodedLength = 0;
};

// Characters of one line of Base64, padding included, for that many bytes.
constexpr std::size_t Base64Size(std::size_t bytes) {
    return (bytes + 2) / 3 * 4;
}

// Text as the bytes that it is made of.
inline std::span<const BYTE> BytesOf(std::string_view text) {
    return {reinterpret_cast<const BYTE*>(text.data()), text.size()};
}

// Appends the bytes as one line.
void AppendBase64(std::span<const BYTE> bytes, std::string& out);

// A full line of a message carries 57 bytes in 76 characters.
constexpr std::size_t kBase64LineBytes = 57;
constexpr std::size_t kBase64LineSize = Base64Size(kBase64LineBytes) + 2;

// Size of what AppendBase64Lines appends.
constexpr std::size_t Base64LinesSize(std::size_t bytes) {
    const std::size_t lines = (bytes + kBase64LineBytes - 1) / kBase64LineBytes;
    return Base64Size(bytes) + 2 * lines;
}

// Appends the bytes in lines of 76 characters, CRLF behind every line, the last one too. Pieces
// whose size is a multiple of 57 may be appended one after the other.
void AppendBase64Lines(std::span<const BYTE> bytes, std::string& out);

}  // namespace quorvane

// A server's reply (RFC 5321 section 4.2) as a value.
//
// Nothing here knows a socket: the functions take bytes as they came, whatever the peer put into
// them and wherever the stream was cut.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "automation/wide_string.h"

namespace quorvane {

// Most bytes that all lines of one reply may have. RFC 5321 section 4.5.3.1.5 asks for 512 a line;
// a peer that says more is not talking SMTP, and its session fails.
inline constexpr std::size_t kReplyCapacity = 2048;

// True when the last line that the bytes end is the last line of a reply, which is one without a
// hyphen behind the code. Bytes behind that line's end don't matter.
bool IsCompleteReply(std::string_view received);

// The code of the first line, 1 to 999; -1 when the bytes don't begin with one.
int ReplyCode(std::string_view received);

// Replaces the text with all lines as they came, which are in the ANSI code page, without trailing
// white space. NULs show as '?'.
void AssignReplyText(std::string_view received, WideString& text);

// True when there is something behind the last line of the reply that the text begins with.
bool HoldsMoreThanReply(WideView text);

// Collects the bytes of one reply.
class ReplyBuffer {
public:
    // The room that is left; Add counts the bytes that were put there.
    std::span<char> room() { return std::span(m_bytes).subspan(m_size); }
    void Add(std::size_t count) { m_size += count; }

    std::string_view bytes() const { return {m_bytes.data(), m_size}; }
    bool full() const { return m_size == m_bytes.size(); }

private:
    std::array<char, kReplyCapacity> m_bytes;
    std::size_t m_size = 0;
};

}  // namespace quorvane

// Content transfer encodings (RFC 2045 section 6) as messages use them.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvane {

// The values of MailEncoding.
enum TransferEncoding : LONG {
    EncodingDefault = 0,  // chosen by the content
    Encoding7Bit = 1,
    Encoding8Bit = 2,
    EncodingQuotedPrintable = 3,
    EncodingBase64 = 4,
};

// What EncodingDefault means for the bytes: Base64 when fewer than 90 in 100 are printable,
// quoted-printable when there are lines of more than 76 bytes, 8bit when some bytes are not
// printable, else 7bit.
TransferEncoding ChooseTransferEncoding(std::string_view bytes);

// The name as the Content-Transfer-Encoding field has it; empty for anything but 1 to 4.
std::string_view TransferEncodingName(LONG encoding);

// Appends the bytes in the encoding 1 to 4, dot-stuffed; nothing for another code. All but Base64
// end at the first zero byte; 7bit turns each byte from 0x7F on into '?'.
void EncodeBody(std::string_view bytes, LONG encoding, std::string& out);

// Size of what EncodeBody appends, for ordinary content.
std::size_t EncodedSizeEstimate(std::string_view bytes, LONG encoding);

}  // namespace quorvane

#include "mime/header_text.h"

#include <algorithm>

#include "mime/base64.h"
#include "mime/text_conversion.h"

namespace quorvane {
namespace {

constexpr WCHAR kLastPlain = 0x7E;  // DEL and everything behind it is encoded

bool IsLetterOrDigit(WCHAR c) {
    return (c >= WCHAR('0') && c <= WCHAR('9')) || (c >= WCHAR('A') && c <= WCHAR('Z')) ||
           (c >= WCHAR('a') && c <= WCHAR('z'));
}

WideView HeaderCharset(const COutgoingMessage& message) {
    WideView charset = kUnicodeCharset;
    for (const CBodyPart& part : message.bodyParts) {
        const bool isDefault = EqualIgnoreCase(part.charset, OLESTR("iso-8859-1"));
        if (!part.charset.empty() && !isDefault) charset = part.charset;
    }
    return charset;
}

std::string EncodedWord(WideView text, WideView charset) {
    std::string bytes;
    AppendConverted(text, charset, bytes);
    std::string word = "=?" + CharsetLabel(charset) + "?B?";
    word.reserve(word.size() + Base64Size(bytes.size()) + 2);
    AppendBase64(BytesOf(bytes), word);
    return word += "?=";
}

std::string QuotedString(WideView text) {
    std::string quoted;
    quoted.reserve(text.size() + 2);
    quoted += '"';
    for (const WCHAR c : text) {
        if (c == WCHAR('\\') || c == WCHAR('"')) quoted += '\\';
        quoted += IsSpace(c) ? ' ' : static_cast<char>(c);
    }
    return quoted += '"';
}

}  // namespace

std::string EncodeHeaderText(const COutgoingMessage& message, WideView text, bool isPhrase) {
    if (std::any_of(text.begin(), text.end(), [](WCHAR c) { return c > kLastPlain; })) {
        return EncodedWord(text, HeaderCharset(message));
    }
    if (isPhrase && !std::all_of(text.begin(), text.end(), IsLetterOrDigit)) {
        return QuotedString(text);
    }
    return LowBytes(text);
}

}  // namespace quorvane

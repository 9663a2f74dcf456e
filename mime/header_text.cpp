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

void AppendEncodedWord(WideView text, WideView charset, std::string& out) {
    std::string bytes;
    AppendConverted(text, charset, bytes);
    out += "=?";
    out += CharsetLabel(charset);
    out += "?B?";
    AppendBase64(BytesOf(bytes), out);
    out += "?=";
}

void AppendQuotedString(WideView text, std::string& out) {
    out += '"';
    for (const WCHAR c : text) {
        if (c == WCHAR('\\') || c == WCHAR('"')) out += '\\';
        out += IsSpace(c) ? ' ' : static_cast<char>(c);
    }
    out += '"';
}

}  // namespace

void AppendHeaderText(const COutgoingMessage& message, WideView text, bool isPhrase,
                      std::string& out) {
    if (std::any_of(text.begin(), text.end(), [](WCHAR c) { return c > kLastPlain; })) {
        AppendEncodedWord(text, HeaderCharset(message), out);
    } else if (isPhrase && !std::all_of(text.begin(), text.end(), IsLetterOrDigit)) {
        AppendQuotedString(text, out);
    } else {
        AppendLowBytes(text, out);
    }
}

}  // namespace quorvane

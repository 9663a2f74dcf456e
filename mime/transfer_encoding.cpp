#include "mime/transfer_encoding.h"

#include "mime/base64.h"
#include "mime/eight_bytes.h"
#include "mime/quoted_printable.h"
#include "mime/wrap_lines.h"

namespace quorvane {
namespace {

constexpr std::size_t kLineLimit = 76;

constexpr bool IsPrintable(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 32 && byte < 127) || byte == '\t' || byte == '\n' || byte == '\r';
}

constexpr EightBytes Unprintable(EightBytes bytes) {
    const EightBytes controls = ~AtLeast(bytes, ' ') & kHighBits;
    const EightBytes layout = EqualTo(bytes, '\t') | EqualTo(bytes, '\n') | EqualTo(bytes, '\r');
    return (controls & ~layout) | AtLeast(bytes, 0x7F);
}

std::size_t CountPrintable(std::string_view bytes) {
    std::size_t others = 0;
    std::size_t done = 0;
    for (; done + 8 <= bytes.size(); done += 8) {
        others += CountPassed(Unprintable(LoadEight(bytes.data() + done)));
    }
    for (const char c : bytes.substr(done)) others += !IsPrintable(c);
    return bytes.size() - others;
}

// Lines are measured from CR to CR without the first byte, which is the LF of the line end before;
// the first line has none, so it may be one byte longer. Text behind the last CR isn't measured.
bool HasLongLine(std::string_view bytes) {
    std::size_t end = bytes.find('\r');
    if (end == std::string_view::npos) return bytes.size() > kLineLimit;
    for (std::size_t start = 0; end != std::string_view::npos; end = bytes.find('\r', start)) {
        if (end - start > kLineLimit + 1) return true;
        start = end + 1;
    }
    return false;
}

std::string_view UpToZero(std::string_view bytes) {
    return bytes.substr(0, bytes.find('\0'));
}

void AppendBase64Body(std::string_view bytes, std::string& out) {
    if (bytes.empty()) return;
    AppendBase64Lines(BytesOf(bytes), out);
    out.resize(out.size() - 2);  // what follows a part brings its own line end
}

}  // namespace

TransferEncoding ChooseTransferEncoding(std::string_view bytes) {
    if (bytes.empty()) return Encoding7Bit;
    const std::size_t printable = CountPrintable(bytes);
    if (printable * 100 / bytes.size() < 90) return EncodingBase64;
    if (HasLongLine(bytes)) return EncodingQuotedPrintable;
    return printable < bytes.size() ? Encoding8Bit : Encoding7Bit;
}

std::string_view TransferEncodingName(LONG encoding) {
    switch (encoding) {
        case Encoding7Bit:
            return "7bit";
        case Encoding8Bit:
            return "8bit";
        case EncodingQuotedPrintable:
            return "quoted-printable";
        case EncodingBase64:
            return "base64";
        default:
            return {};
    }
}

void EncodeBody(std::string_view bytes, LONG encoding, std::string& out) {
    switch (encoding) {
        case Encoding7Bit:
            return WrapLines(UpToZero(bytes), TextBytes::SevenBit, out);
        case Encoding8Bit:
            return WrapLines(UpToZero(bytes), TextBytes::EightBit, out);
        case EncodingQuotedPrintable:
            return EncodeQuotedPrintable(UpToZero(bytes), out);
        case EncodingBase64:
            return AppendBase64Body(bytes, out);
        default:
            return;
    }
}

std::size_t EncodedSizeEstimate(std::string_view bytes, LONG encoding) {
    switch (encoding) {
        case EncodingQuotedPrintable:
            return QuotedPrintableSizeEstimate(bytes);
        case EncodingBase64:
            return Base64LinesSize(bytes.size());
        default:
            return WrapLinesSizeEstimate(bytes.size());
    }
}

}  // namespace quorvane

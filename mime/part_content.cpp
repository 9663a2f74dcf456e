#include "mime/part_content.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>
#include <span>

#include "mime/base64.h"
#include "mime/quoted_printable.h"
#include "mime/text_conversion.h"
#include "mime/wrap_lines.h"

namespace quorvane {
namespace {

LONG ChosenEncoding(LONG encoding, std::string_view bytes) {
    return encoding == EncodingDefault ? ChooseTransferEncoding(bytes) : encoding;
}

// These encodings treat each line for itself.
bool IsLineEncoding(LONG encoding) {
    return encoding == Encoding7Bit || encoding == Encoding8Bit ||
           encoding == EncodingQuotedPrintable;
}

// Units that take three bytes in UTF-8, in at most 65,535 of them.
std::uint16_t CountThreeBytes(WideView block) {
    std::uint16_t count = 0;
    for (const WCHAR c : block) count += c >= 0x800;
    return count;
}

// Size of the text when it is converted and encoded. In UTF-8, units from 0x80 on take two bytes
// and those from 0x800 on three; in quoted-printable each of these bytes is an escape of three, and
// so are some characters of ASCII.
std::size_t TextSizeEstimate(WideView text, bool isUtf8, bool isQuotedPrintable) {
    std::size_t bytes = text.size();
    std::size_t escapes = 0;
    while (!text.empty()) {
        // Counters as wide as the units, for a block that they can count, let the compiler use
        // vectors.
        const WideView block = text.substr(0, 1 << 14);
        std::uint16_t ascii = 0, escaped = 0, anyBits = 0;
        for (const WCHAR c : block) {
            anyBits |= c;
            ascii += c < 0x80;
            escaped += c < 0x20;
            escaped += c == WCHAR('=');
        }
        const std::size_t beyondAscii = block.size() - ascii;
        const std::size_t threeBytes = anyBits < 0x800 ? 0 : CountThreeBytes(block);
        const std::size_t more = isUtf8 ? beyondAscii + threeBytes : 0;
        bytes += more;
        escapes += escaped + beyondAscii + more;
        text.remove_prefix(block.size());
    }
    return isQuotedPrintable ? QuotedPrintableSizeEstimate(bytes, escapes)
                             : WrapLinesSizeEstimate(bytes);
}

std::string_view View(const DataBlock& data) {
    return {reinterpret_cast<const char*>(data.data()), data.size()};
}

// A part with data has no use for its file.
FileReader OpenFile(const CAttachmentPart& part, FilePatience& patience) {
    return part.data.empty() ? FileReader(part.file, FILE_SHARE_READ, patience) : FileReader();
}

// False when it can't be opened or read, or there is no memory for its bytes.
bool ReadBodyFile(const WideString& path, FilePatience& patience, std::string& bytes) {
    FileReader file(path, 0, patience);
    try {
        return file.ReadAll(bytes);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

}  // namespace

BodyContent::BodyContent(const CBodyPart& part, FilePatience& patience) : part_(part) {
    if (!part.file.empty()) {
        if (!ReadBodyFile(part.file, patience, bytes_)) return;
    } else if (IsLineEncoding(part.encoding)) {
        converts_ = true;
    } else {
        bytes_.reserve(part.text.size());
        AppendConverted(part.text, part.charset, bytes_);
    }
    encoding_ = ChosenEncoding(part.encoding, bytes_);
}

std::size_t BodyContent::SizeEstimate() const {
    if (!converts_) return EncodedSizeEstimate(bytes_, encoding_);
    const bool isUtf8 = IsUnicodeCharset(part_.charset);
    return TextSizeEstimate(part_.text, isUtf8, encoding_ == EncodingQuotedPrintable);
}

void BodyContent::AppendTo(std::string& out) const {
    if (converts_) {
        AppendText(out);
    } else {
        EncodeBody(bytes_, encoding_, out);
    }
}

void BodyContent::AppendText(std::string& out) const {
    constexpr std::size_t kPiece = 4096;  // UTF-16 units, and the rest of a line
    WideView text = part_.text;
    std::string bytes;
    // The content ends at the first zero byte.
    while (!text.empty() && bytes.find('\0') == std::string::npos) {
        bytes.clear();
        AppendConverted(TakeLines(text, kPiece), part_.charset, bytes);
        EncodeBody(bytes, encoding_, out);
    }
}

AttachmentContent::AttachmentContent(const CAttachmentPart& part, FilePatience& patience)
    : file_(OpenFile(part, patience)), bytes_(View(part.data)), encoding_(part.encoding) {
    const bool streamed = bytes_.empty() && encoding_ == EncodingBase64;
    if (streamed) {
        present_ = file_.IsOpen() && file_.Size() > 0;
        return;
    }
    if (bytes_.empty() && file_.ReadAll(fileBytes_)) bytes_ = fileBytes_;
    present_ = !bytes_.empty();
    encoding_ = ChosenEncoding(encoding_, bytes_);
}

bool AttachmentContent::AppendTo(std::string& out) {
    if (bytes_.empty()) return AppendFile(out);
    EncodeBody(bytes_, encoding_, out);
    return true;
}

bool AttachmentContent::AppendFile(std::string& out) {
    std::array<char, 1024 * kBase64LineBytes> piece;
    const std::size_t start = out.size();
    // What is written to the file meanwhile doesn't count.
    for (std::size_t left = file_.Size(); left > 0;) {
        const auto room = std::span(piece).first(std::min(left, piece.size()));
        std::size_t count = 0;
        if (!file_.Read(room, count)) return false;
        AppendBase64Lines(BytesOf({room.data(), count}), out);
        left = count < room.size() ? 0 : left - count;
    }
    if (out.size() == start) return false;
    out.resize(out.size() - 2);  // what follows a part brings its own line end
    return true;
}

std::size_t AttachmentSizeEstimate(const CAttachmentPart& part, FilePatience& patience) {
    // Quoted-printable is rare for attachments and Base64 takes more than unencoded text.
    if (part.encoding == EncodingQuotedPrintable && !part.data.empty()) {
        return EncodedSizeEstimate(View(part.data), part.encoding);
    }
    const std::size_t size = part.data.empty() ? OpenFile(part, patience).Size() : part.data.size();
    return Base64LinesSize(size);
}

}  // namespace quorvane

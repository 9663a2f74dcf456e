#include "mime/part_content.h"

#include <array>

#include "mime/base64.h"
#include "mime/header_text.h"

namespace quorvane {
namespace {

LONG ChosenEncoding(LONG encoding, std::string_view bytes) {
    return encoding == EncodingDefault ? ChooseTransferEncoding(bytes) : encoding;
}

std::string_view View(const DataBlock& data) {
    return {reinterpret_cast<const char*>(data.data()), data.size()};
}

// A part with data has no use for its file.
FileReader OpenFile(const CAttachmentPart& part) {
    return part.data.empty() ? FileReader(part.file, FILE_SHARE_READ) : FileReader();
}

}  // namespace

BodyContent LoadBody(const CBodyPart& part) {
    BodyContent content;
    if (part.file.empty()) {
        content.bytes = ConvertText(part.text, part.charset);
    } else if (!FileReader(part.file, 0).ReadAll(content.bytes)) {
        content.bytes.clear();
        return content;
    }
    content.encoding = ChosenEncoding(part.encoding, content.bytes);
    return content;
}

AttachmentContent::AttachmentContent(const CAttachmentPart& part)
    : file_(OpenFile(part)), bytes_(View(part.data)), encoding_(part.encoding) {
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
    std::size_t count = 0;
    do {
        if (!file_.Read(piece, count)) return false;
        AppendBase64Lines(BytesOf({piece.data(), count}), out);
    } while (count == piece.size());
    if (out.size() == start) return false;
    out.resize(out.size() - 2);  // what follows a part brings its own line end
    return true;
}

std::size_t AttachmentSizeEstimate(const CAttachmentPart& part) {
    // Quoted-printable is rare for attachments and Base64 takes more than unencoded text.
    if (part.encoding == EncodingQuotedPrintable && !part.data.empty()) {
        return EncodedSizeEstimate(View(part.data), part.encoding);
    }
    const std::size_t size = part.data.empty() ? OpenFile(part).Size() : part.data.size();
    return Base64LinesSize(size);
}

}  // namespace quorvane

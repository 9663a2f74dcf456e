#include "mime/message_composer.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "mime/boundary.h"
#include "mime/content_type_lookup.h"
#include "mime/header_composer.h"
#include "mime/header_text.h"
#include "mime/header_writer.h"
#include "mime/part_content.h"
#include "mime/text_conversion.h"
#include "mime/transfer_encoding.h"

namespace quorvane {
namespace {

// Fields of a message's header block that the composer adds, at most.
constexpr std::size_t kStandardFields = 14;

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kPreamble = "This is a multipart message in MIME format";
constexpr std::string_view kContentType = "Content-Type";
constexpr std::string_view kMimeVersion = "MIME-Version";
constexpr std::size_t kTerminatorSize = 5;  // of the data of a message, which the sender appends

bool IsTextType(WideView contentType) {
    return StartsWithIgnoreCase(contentType, OLESTR("text/"));
}

std::string_view KindName(MultipartKind kind) {
    switch (kind) {
        case MultipartKind::Alternative:
            return "alternative";
        case MultipartKind::Related:
            return "related";
        default:
            return "mixed";
    }
}

// What stands behind the last '\' of the path.
WideView LastPathComponent(WideView path) {
    return path.substr(path.rfind(WCHAR('\\')) + 1);
}

// One composition. The nesting, from the outside: the outer multipart, a related one with what the
// main body shows when there are other attachments beside, and an alternative one with two bodies
// when there is any attachment. A boundary that isn't needed is empty.
class Composer {
public:
    Composer(COutgoingMessage& message, std::string& out) : message_(message), out_(out) {}

    void Compose() {
        out_.clear();
        OrderAttachments();
        MakeBoundaries();
        ComposeTopHeaders();
        bodies_.reserve(message_.bodyParts.size());
        for (const CBodyPart& part : message_.bodyParts) bodies_.emplace_back(part, patience_);
        out_.reserve(SizeEstimate() + kTerminatorSize);
        WriteTopHeaders();
        WriteMultipartStarts();
        for (std::size_t i = 0; i < bodies_.size(); ++i) {
            WriteBodyPart(message_.bodyParts[i], bodies_[i]);
        }
        if (!alternative_.empty()) WriteBoundary(alternative_, "--");
        WriteAttachments();
        if (!outer_.empty()) WriteBoundary(outer_, "--");
        out_.reserve(out_.size() + kTerminatorSize);
    }

private:
    void OrderAttachments() {
        attachments_.reserve(message_.attachments.size());
        for (const bool isInline : {true, false}) {
            for (const CAttachmentPart& part : message_.attachments) {
                if (part.isInline == isInline) attachments_.push_back(&part);
            }
            if (isInline) inlineCount_ = attachments_.size();
        }
    }

    void MakeBoundaries() {
        const std::size_t bodies = message_.bodyParts.size();
        if (bodies + attachments_.size() <= 1) return;
        outer_ = MakeBoundary(0);
        if (!attachments_.empty() && bodies > 1) alternative_ = MakeBoundary(1);
        if (inlineCount_ > 0 && inlineCount_ < attachments_.size()) related_ = MakeBoundary(2);
    }

    void ComposeTopHeaders() {
        // No field may be missing for want of memory.
        message_.headers.Reserve(kStandardFields);
        RemoveField(kContentType);
        if (!outer_.empty()) {
            if (message_.multipartKind == MultipartKind::Undecided) {
                message_.multipartKind = DecideKind();
            }
            message_.headers.Append(kContentType,
                                    MultipartType(KindName(message_.multipartKind), outer_));
        }
        RemoveField(kMimeVersion);
        message_.headers.Append(kMimeVersion, "1.0");
        ComposeHeaders(message_);
    }

    MultipartKind DecideKind() const {
        if (attachments_.empty()) return MultipartKind::Alternative;
        if (inlineCount_ == attachments_.size()) return MultipartKind::Related;
        return MultipartKind::Mixed;
    }

    void RemoveField(std::string_view name) {
        const std::size_t index = message_.headers.FindIgnoreCase(name);
        if (index != HeaderList::npos) message_.headers.Remove(index);
    }

    static std::string MultipartType(std::string_view kind, const std::string& boundary) {
        std::string type = "multipart/";
        type += kind;
        type += ";\r\n\tboundary=\"";
        type += boundary;
        return type += '"';
    }

    std::size_t SizeEstimate() {
        constexpr std::size_t kFixedTexts = 512;  // of a part: field names, boundaries, line ends
        std::size_t size = kFixedTexts;
        for (std::size_t i = 0; i < message_.headers.size(); ++i) {
            const HeaderField field = message_.headers[i];
            size += field.name.size() + field.value.size() + 4;
        }
        for (const BodyContent& body : bodies_) {
            size += kFixedTexts + body.SizeEstimate();
        }
        for (const CAttachmentPart* part : attachments_) {
            size += kFixedTexts + 8 * part->name.size() + AttachmentSizeEstimate(*part, patience_);
        }
        return size;
    }

    void WriteTopHeaders() {
        for (std::size_t i = message_.headers.size(); i-- > 0;) {
            const HeaderField field = message_.headers[i];
            AppendHeaderLine(out_, field.name, {field.value});
        }
    }

    // What stands between the header and the first body part.
    void WriteMultipartStarts() {
        if (!outer_.empty()) {
            out_ += kLineEnd;
            out_ += kPreamble;
            out_ += kLineEnd;
        }
        if (!related_.empty()) {
            WriteBoundary(outer_);
            AppendHeaderLine(out_, kContentType, {MultipartType("related", related_)});
        }
        if (!alternative_.empty()) {
            WriteBoundary(related_.empty() ? outer_ : related_);
            AppendHeaderLine(out_, kContentType, {MultipartType("alternative", alternative_)});
        }
    }

    void WriteBoundary(const std::string& boundary, std::string_view closing = {}) {
        out_ += "\r\n--";
        out_ += boundary;
        out_ += closing;
        out_ += kLineEnd;
    }

    const std::string& InnermostBoundary() const {
        if (!alternative_.empty()) return alternative_;
        return related_.empty() ? outer_ : related_;
    }

    void WriteBodyPart(const CBodyPart& part, const BodyContent& content) {
        if (!outer_.empty()) WriteBoundary(InnermostBoundary());
        const std::string type = ToAnsi(part.contentType);
        if (IsTextType(part.contentType)) {
            // The bytes of a file weren't converted, so its name stays what the caller chose.
            const std::string label =
                part.file.empty() ? CharsetLabel(part.charset) : ToAnsi(part.charset);
            AppendHeaderLine(out_, kContentType, {type, ";\r\n\tcharset=\"", label, "\""});
        } else {
            AppendHeaderLine(out_, kContentType, {type});
        }
        const std::string_view encoding = TransferEncodingName(content.Encoding());
        if (encoding.empty()) {
            out_ += kLineEnd;  // content that couldn't be read: nothing follows
        } else {
            AppendHeaderLine(out_, "Content-Transfer-Encoding", {encoding});
        }
        WriteContentId(part);
        out_ += kLineEnd;
        content.AppendTo(out_);
    }

    void WriteContentId(const CPartInfo& part) {
        if (part.contentId.empty()) return;
        AppendHeaderLine(out_, "Content-ID", {"<", ToAnsi(part.contentId), ">"});
    }

    void WriteAttachments() {
        for (std::size_t i = 0; i < attachments_.size(); ++i) {
            if (!related_.empty() && i == inlineCount_) WriteBoundary(related_, "--");
            const bool isRelated = !related_.empty() && i < inlineCount_;
            WriteAttachment(*attachments_[i], isRelated ? related_ : outer_);
        }
    }

    void WriteAttachment(const CAttachmentPart& part, const std::string& boundary) {
        AttachmentContent content(part, patience_);
        if (!content.IsPresent()) return;
        const std::size_t start = out_.size();
        if (!boundary.empty()) WriteBoundary(boundary);
        WriteAttachmentHeaders(part, content.Encoding());
        if (!content.AppendTo(out_)) out_.resize(start);
    }

    void WriteAttachmentHeaders(const CAttachmentPart& part, LONG encoding) {
        const WideView shownName = part.name.empty() ? LastPathComponent(part.file) : part.name;
        std::string name;
        AppendHeaderText(message_, shownName, true, name);
        const WideString type = LookupContentType(part, shownName);
        if (IsTextType(type)) {
            AppendHeaderLine(
                out_, kContentType,
                {ToAnsi(type), ";\r\n\tcharset=\"", ToAnsi(part.charset), "\";\r\n\tname=", name});
        } else {
            AppendHeaderLine(out_, kContentType, {ToAnsi(type), ";\r\n\tname=", name});
        }
        AppendHeaderLine(out_, "Content-Transfer-Encoding", {TransferEncodingName(encoding)});
        AppendHeaderLine(out_, "Content-Disposition",
                         {part.isInline ? "inline" : "attachment", ";\r\n\tfilename=", name});
        WriteContentId(part);
        out_ += kLineEnd;
    }

    COutgoingMessage& message_;
    std::string& out_;
    std::vector<const CAttachmentPart*> attachments_;  // the inline ones first
    std::size_t inlineCount_ = 0;
    std::string outer_, alternative_, related_;
    std::vector<BodyContent> bodies_;
    FilePatience patience_;
};

}  // namespace

void ComposeMessage(COutgoingMessage& message, std::string& out) {
    Composer(message, out).Compose();
}

}  // namespace quorvane

#include <stdexcept>

#include "bench/side_by_side/contender.h"
#include "mime/message_composer.h"
#include "mime/transfer_encoding.h"

namespace quorvane::bench {
namespace {

// The workload in wide strings, which callers of the component have. Bytes in memory stay the
// caller's until the record is made.
struct WideAttachment {
    CAttachmentPart part;
    WorkloadAttachment source;
};

// The composer alone, which the component's interfaces don't show.
class ComposerContender : public Contender {
public:
    void Prepare(const Workload& workload, int) override {
        sender_ = {FromUtf8(workload.senderName), FromUtf8(workload.senderAddress)};
        for (std::size_t i = 0; i < workload.recipientAddresses.size(); ++i) {
            to_.push_back(
                {FromUtf8(workload.recipientNames[i]), FromUtf8(workload.recipientAddresses[i])});
        }
        subject_ = FromUtf8(workload.subject);
        for (const WorkloadBody& body : workload.bodies) {
            CBodyPart part;
            part.contentType = FromUtf8(body.type);
            part.charset = OLESTR("unicode");
            part.text = FromUtf8(body.text);
            part.encoding =
                body.encoding == "quoted-printable" ? EncodingQuotedPrintable : Encoding7Bit;
            bodies_.push_back(part);
        }
        for (const WorkloadAttachment& attachment : workload.attachments) {
            WideAttachment wide;
            wide.part.name = FromUtf8(attachment.name);
            if (attachment.IsFile()) wide.part.file = FromUtf8(attachment.path);
            wide.part.contentType = FromUtf8(attachment.type);
            wide.part.contentId = FromUtf8(attachment.contentId);
            wide.part.isInline = !attachment.contentId.empty();
            wide.part.encoding = EncodingBase64;
            wide.source = attachment;
            attachments_.push_back(wide);
        }
    }

    std::string_view Compose() override {
        COutgoingMessage message;
        message.sender = sender_;
        message.to = to_;
        message.subject = subject_;
        message.bodyParts = bodies_;
        message.attachments.reserve(attachments_.size());
        for (const WideAttachment& attachment : attachments_) {
            message.attachments.push_back(attachment.part);
            if (attachment.source.IsFile()) continue;
            const AttachmentBytes bytes(attachment.source);
            message.attachments.back().data =
                DataBlock::Copy({reinterpret_cast<const BYTE*>((*bytes).data()), (*bytes).size()});
        }
        out_ = std::string();
        ComposeMessage(message, out_);
        return out_;
    }

    void Send() override { throw std::logic_error("the composer doesn't send"); }

private:
    CAddressEntry sender_;
    std::vector<CAddressEntry> to_;
    WideString subject_;
    std::vector<CBodyPart> bodies_;
    std::vector<WideAttachment> attachments_;
    std::string out_;
};

}  // namespace

std::unique_ptr<Contender> MakeContender() {
    return std::make_unique<ComposerContender>();
}

}  // namespace quorvane::bench

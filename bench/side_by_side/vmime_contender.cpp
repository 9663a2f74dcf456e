#include <vmime/contentDispositionField.hpp>
#include <vmime/platforms/posix/posixHandler.hpp>
#include <vmime/vmime.hpp>

#include "bench/side_by_side/contender.h"

namespace quorvane::bench {
namespace {

template <class Part>
using Ref = vmime::shared_ptr<Part>;

const vmime::charset kUtf8("utf-8");

// The message is built of its parts rather than with vmime's own builder, which orders them
// otherwise.
class VmimeContender : public Contender {
public:
    void Prepare(const Workload& workload, int port) override {
        workload_ = workload;
        session_ = vmime::net::session::create();
        server_ = vmime::utility::url("smtp://127.0.0.1:" + std::to_string(port));
    }

    std::string_view Compose() override {
        out_ = std::string();
        vmime::utility::outputStreamStringAdapter stream(out_);
        Message()->generate(stream);
        return out_;
    }

    void Send() override {
        const auto transport = session_->getTransport(server_);
        transport->connect();
        transport->send(Message());
        transport->disconnect();
    }

private:
    Ref<vmime::message> Message() {
        auto message = vmime::make_shared<vmime::message>();
        FillHeader(*message->getHeader());
        FillMixed(message);
        return message;
    }

    void FillHeader(vmime::header& header) {
        header.From()->setValue(
            vmime::mailbox(Text(workload_.senderName), workload_.senderAddress));
        vmime::addressList to;
        for (std::size_t i = 0; i < workload_.recipientAddresses.size(); ++i) {
            to.appendAddress(vmime::make_shared<vmime::mailbox>(Text(workload_.recipientNames[i]),
                                                                workload_.recipientAddresses[i]));
        }
        header.To()->setValue(to);
        header.Subject()->setValue(Text(workload_.subject));
        header.Date()->setValue(vmime::datetime::now());
        header.MessageId()->setValue(
            vmime::messageId(std::to_string(++count_) + ".bench", "example.com"));
        header.MimeVersion()->setValue(std::string("1.0"));
        Add(header, "Importance", "Normal");
        Add(header, "X-MSMail-Priority", "Normal");
        Add(header, "X-Priority", "3 (Normal)");
        Add(header, "X-Mailer", "Quorvane ActiveX 4.1 (Lindbrek Quorvane)");
        Add(header, "X-MimeOLE", "Produced By Lindbrek Mime V4.1");
    }

    static void Add(vmime::header& header, const char* name, const std::string& value) {
        header.getField(name)->setValue(value);
    }

    static vmime::text Text(const std::string& text) {
        return text.empty() ? vmime::text() : vmime::text(text, kUtf8);
    }

    std::size_t InlineCount() const {
        std::size_t count = 0;
        for (const auto& attachment : workload_.attachments) count += !attachment.contentId.empty();
        return count;
    }

    void FillMixed(const Ref<vmime::bodyPart>& part) const {
        if (InlineCount() == workload_.attachments.size()) return FillRelated(part);
        Type(*part, "multipart/mixed");
        FillRelated(Child(*part));
        AddAttachments(*part, false);
    }

    void FillRelated(const Ref<vmime::bodyPart>& part) const {
        if (InlineCount() == 0) return FillBodies(part);
        Type(*part, "multipart/related");
        FillBodies(Child(*part));
        AddAttachments(*part, true);
    }

    void FillBodies(const Ref<vmime::bodyPart>& part) const {
        if (workload_.bodies.size() == 1) return FillBody(*part, workload_.bodies[0]);
        Type(*part, "multipart/alternative");
        for (const WorkloadBody& body : workload_.bodies) FillBody(*Child(*part), body);
    }

    static void FillBody(vmime::bodyPart& part, const WorkloadBody& body) {
        part.getBody()->setContents(vmime::make_shared<vmime::stringContentHandler>(body.text),
                                    vmime::mediaType(body.type), kUtf8,
                                    vmime::encoding(body.encoding, vmime::encoding::USAGE_TEXT));
    }

    void AddAttachments(vmime::bodyPart& part, bool isInline) const {
        for (const WorkloadAttachment& attachment : workload_.attachments) {
            if (attachment.contentId.empty() != isInline) FillAttachment(*Child(part), attachment);
        }
    }

    static void FillAttachment(vmime::bodyPart& part, const WorkloadAttachment& attachment) {
        part.getBody()->setContents(Content(attachment), vmime::mediaType(attachment.type));
        part.getBody()->setEncoding(vmime::encoding("base64"));
        const auto disposition = part.getHeader()->ContentDisposition();
        disposition->setValue(
            vmime::contentDisposition(attachment.contentId.empty() ? "attachment" : "inline"));
        vmime::dynamicCast<vmime::contentDispositionField>(disposition)
            ->setFilename(vmime::word(attachment.name, kUtf8));
        if (!attachment.contentId.empty()) {
            part.getHeader()->ContentId()->setValue(
                vmime::messageId('<' + attachment.contentId + '>'));
        }
    }

    static Ref<vmime::contentHandler> Content(const WorkloadAttachment& attachment) {
        if (!attachment.IsFile()) {
            return vmime::make_shared<vmime::stringContentHandler>(*AttachmentBytes(attachment));
        }
        const auto file = vmime::platform::getHandler()->getFileSystemFactory()->create(
            vmime::platform::getHandler()->getFileSystemFactory()->stringToPath(attachment.path));
        return vmime::make_shared<vmime::fileContentHandler>(file);
    }

    static Ref<vmime::bodyPart> Child(vmime::bodyPart& part) {
        auto child = vmime::make_shared<vmime::bodyPart>();
        part.getBody()->appendPart(child);
        return child;
    }

    static void Type(vmime::bodyPart& part, const char* type) {
        part.getHeader()->ContentType()->setValue(vmime::mediaType(type));
    }

    Workload workload_;
    Ref<vmime::net::session> session_;
    vmime::utility::url server_{"smtp", ""};
    unsigned long count_ = 0;
    std::string out_;
};

}  // namespace

std::unique_ptr<Contender> MakeContender() {
    static const bool isReady = [] {
        vmime::platform::setHandler<vmime::platforms::posix::posixHandler>();
        return true;
    }();
    static_cast<void>(isReady);
    return std::make_unique<VmimeContender>();
}

}  // namespace quorvane::bench

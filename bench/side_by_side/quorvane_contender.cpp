#include <optional>
#include <quorvane.hpp>
#include <stdexcept>

#include "bench/side_by_side/contender.h"

namespace quorvane::bench {
namespace {

using client::Bstr;
using client::Check;
using client::ComPtr;
using client::Create;

struct Address {
    Bstr name, address;
};

struct Body {
    Bstr text;
    MailEncoding encoding;
};

struct Attachment {
    Bstr name, type, contentId, file;
    WorkloadAttachment source;
};

// The component as a program uses it: through the library and its interfaces, with one SmtpMail of
// its own.
class QuorvaneContender : public Contender {
public:
    QuorvaneContender() : mail_(Create<ISmtpMail>()) {}

    void Prepare(const Workload& workload, int port) override {
        Check(mail_->put_SmtpServer(Bstr("127.0.0.1")), mail_);
        Check(mail_->put_SmtpPort(port), mail_);
        sender_ = {Bstr(workload.senderName), Bstr(workload.senderAddress)};
        for (std::size_t i = 0; i < workload.recipientAddresses.size(); ++i) {
            recipients_.push_back(
                {Bstr(workload.recipientNames[i]), Bstr(workload.recipientAddresses[i])});
        }
        subject_ = Bstr(workload.subject);
        if (workload.bodies.size() > 1) alternative_ = ToBody(workload.bodies.front());
        main_ = ToBody(workload.bodies.back());
        isHtml_ = workload.bodies.back().type == "text/html";
        for (const WorkloadAttachment& attachment : workload.attachments) {
            attachments_.push_back({Bstr(attachment.name), Bstr(attachment.type),
                                    Bstr(attachment.contentId),
                                    Bstr(attachment.IsFile() ? attachment.path : ""), attachment});
        }
    }

    std::string_view Compose() override {
        throw std::logic_error("the interfaces show no composed message");
    }

    void Send() override {
        const auto message = Create<IMailMessage>();
        Check(message->put_Sender(ToObject(sender_)), message);
        for (const Address& recipient : recipients_) {
            Check(message->AddRecipient(ToObject(recipient)), message);
        }
        Check(message->put_MessageSubject(subject_), message);
        FillBodies(message);
        for (const Attachment& attachment : attachments_) {
            Check(message->AddAttachment(ToObject(attachment)), message);
        }
        Bstr text;
        LONG code = 0;
        Check(mail_->Send(message, VARIANT_TRUE, text.Put(), &code), mail_);
        if (code != 0) throw std::runtime_error(text.utf8());
    }

private:
    static Body ToBody(const WorkloadBody& body) {
        return {Bstr(body.text), body.encoding == "quoted-printable" ? MailEncodingQuotedPrintable
                                                                     : MailEncoding7Bit};
    }

    static ComPtr<IMailAddress> ToObject(const Address& address) {
        auto object = Create<IMailAddress>();
        if (SysStringLen(address.name) > 0) Check(object->put_Name(address.name), object);
        Check(object->put_Address(address.address), object);
        return object;
    }

    static ComPtr<IMailAttachment> ToObject(const Attachment& attachment) {
        auto object = Create<IMailAttachment>();
        if (attachment.source.IsFile()) {
            Check(object->put_File(attachment.file), object);
        } else {
            const AttachmentBytes bytes(attachment.source);
            auto* const data = reinterpret_cast<const unsigned char*>((*bytes).data());
            Check(object->LoadFromMemory(const_cast<unsigned char*>(data),
                                         static_cast<LONG>((*bytes).size())),
                  object);
        }
        Check(object->put_Name(attachment.name), object);
        Check(object->put_ContentType(attachment.type), object);
        Check(object->put_Encoding(MailEncodingBase64), object);
        if (SysStringLen(attachment.contentId) > 0) {
            Check(object->put_Inline(VARIANT_TRUE), object);
            Check(object->put_ContentId(attachment.contentId), object);
        }
        return object;
    }

    void FillBodies(const ComPtr<IMailMessage>& message) const {
        if (isHtml_) Check(message->put_MessageBodyFormat(MailFormatHtml), message);
        Check(message->put_MessageBody(main_.text), message);
        Check(message->put_MessageBodyEncoding(main_.encoding), message);
        Check(message->put_MessageBodyCharset(unicode_), message);
        if (!alternative_) return;
        Check(message->put_AltMessageBody(alternative_->text), message);
        Check(message->put_AltMessageBodyEncoding(alternative_->encoding), message);
        Check(message->put_AltMessageBodyCharset(unicode_), message);
    }

    const client::Apartment apartment_;
    const Bstr unicode_{"unicode"};
    ComPtr<ISmtpMail> mail_;
    Address sender_;
    std::vector<Address> recipients_;
    Bstr subject_;
    Body main_;
    std::optional<Body> alternative_;
    bool isHtml_ = false;
    std::vector<Attachment> attachments_;
};

}  // namespace

std::unique_ptr<Contender> MakeContender() {
    return std::make_unique<QuorvaneContender>();
}

}  // namespace quorvane::bench

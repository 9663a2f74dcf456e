#include <Poco/Net/FilePartSource.h>
#include <Poco/Net/MailMessage.h>
#include <Poco/Net/MailRecipient.h>
#include <Poco/Net/SMTPClientSession.h>
#include <Poco/Net/StringPartSource.h>

#include <sstream>
#include <stdexcept>

#include "bench/side_by_side/contender.h"

namespace quorvane::bench {
namespace {

using Poco::Net::MailMessage;
using Poco::Net::MailRecipient;

// Messages with one body. Poco nests no parts of its own accord, so the others are nothing that its
// users would make.
class PocoContender : public Contender {
public:
    void Prepare(const Workload& workload, int port) override {
        if (workload.bodies.size() != 1) throw std::logic_error("one body only");
        workload_ = workload;
        port_ = static_cast<Poco::UInt16>(port);
    }

    std::string_view Compose() override {
        MailMessage message;
        Fill(message);
        std::ostringstream stream;
        message.write(stream);
        out_ = std::move(stream).str();
        return out_;
    }

    void Send() override {
        MailMessage message;
        Fill(message);
        Poco::Net::SMTPClientSession session("127.0.0.1", port_);
        session.login("localhost");
        session.sendMessage(message);
        session.close();
    }

private:
    void Fill(MailMessage& message) {
        message.setSender('<' + workload_.senderAddress + '>');
        for (std::size_t i = 0; i < workload_.recipientAddresses.size(); ++i) {
            message.addRecipient(MailRecipient(MailRecipient::PRIMARY_RECIPIENT,
                                               workload_.recipientAddresses[i],
                                               workload_.recipientNames[i]));
        }
        message.setSubject(workload_.subject);
        message.set("Message-ID",
                    '<' + std::to_string(++count_) + ".bench." + workload_.senderAddress + '>');
        message.set("MIME-Version", "1.0");
        message.set("Importance", "Normal");
        message.set("X-MSMail-Priority", "Normal");
        message.set("X-Priority", "3 (Normal)");
        message.set("X-Mailer", "Quorvane ActiveX 4.1 (Lindbrek Quorvane)");
        message.set("X-MimeOLE", "Produced By Lindbrek Mime V4.1");
        FillParts(message);
    }

    void FillParts(MailMessage& message) const {
        const WorkloadBody& body = workload_.bodies[0];
        const std::string type = body.type + "; charset=utf-8";
        const auto encoding = body.encoding == "quoted-printable"
                                  ? MailMessage::ENCODING_QUOTED_PRINTABLE
                                  : MailMessage::ENCODING_7BIT;
        if (workload_.attachments.empty()) {
            message.setContentType(type);
            message.setContent(body.text, encoding);
            return;
        }
        message.addContent(new Poco::Net::StringPartSource(body.text, type), encoding);
        for (const WorkloadAttachment& attachment : workload_.attachments) {
            message.addAttachment(attachment.name, Source(attachment));
        }
    }

    // The message's own.
    static Poco::Net::PartSource* Source(const WorkloadAttachment& attachment) {
        if (attachment.IsFile()) {
            return new Poco::Net::FilePartSource(attachment.path, attachment.name, attachment.type);
        }
        return new Poco::Net::StringPartSource(*AttachmentBytes(attachment), attachment.type,
                                               attachment.name);
    }

    Workload workload_;
    Poco::UInt16 port_ = 0;
    unsigned long count_ = 0;
    std::string out_;
};

}  // namespace

std::unique_ptr<Contender> MakeContender() {
    return std::make_unique<PocoContender>();
}

}  // namespace quorvane::bench

#include <gmime/gmime.h>

#include <stdexcept>

#include "bench/side_by_side/contender.h"
#include "bench/side_by_side/smtp_dialogue.h"

namespace quorvane::bench {
namespace {

template <class Object>
struct Unref {
    void operator()(Object* object) const { g_object_unref(object); }
};
template <class Object>
using Ref = std::unique_ptr<Object, Unref<Object>>;

struct FreeOptions {
    void operator()(GMimeFormatOptions* options) const { g_mime_format_options_free(options); }
};

struct FreeBytes {
    void operator()(GByteArray* bytes) const { g_byte_array_free(bytes, TRUE); }
};

class GmimeContender : public Contender {
public:
    GmimeContender() {
        g_mime_init();
        options_.reset(g_mime_format_options_new());
        g_mime_format_options_set_newline_format(options_.get(), GMIME_NEWLINE_FORMAT_DOS);
    }

    void Prepare(const Workload& workload, int port) override {
        workload_ = workload;
        port_ = port;
    }

    std::string_view Compose() override {
        bytes_.reset(g_byte_array_new());
        const Ref<GMimeStream> stream = StreamToBytes();
        Write(stream.get());
        return Bytes();
    }

    // GMime has no sender, but a filter that doubles the dots; the rest is the program's own.
    void Send() override {
        SmtpDialogue dialogue(port_);
        dialogue.Open(workload_.senderAddress, workload_.recipientAddresses);
        bytes_.reset(g_byte_array_new());
        const Ref<GMimeStream> memory = StreamToBytes();
        const Ref<GMimeStream> stream(g_mime_stream_filter_new(memory.get()));
        const Ref<GMimeFilter> filter(g_mime_filter_smtp_data_new());
        g_mime_stream_filter_add(GMIME_STREAM_FILTER(stream.get()), filter.get());
        Write(stream.get());
        g_mime_stream_flush(stream.get());
        dialogue.SendText(Bytes());
        dialogue.Close();
    }

private:
    // A stream into bytes_.
    Ref<GMimeStream> StreamToBytes() const {
        Ref<GMimeStream> stream(g_mime_stream_mem_new());
        auto* const memory = GMIME_STREAM_MEM(stream.get());
        g_mime_stream_mem_set_owner(memory, FALSE);
        g_mime_stream_mem_set_byte_array(memory, bytes_.get());
        return stream;
    }

    std::string_view Bytes() const {
        return {reinterpret_cast<const char*>(bytes_->data), bytes_->len};
    }

    void Write(GMimeStream* stream) {
        const Ref<GMimeMessage> message(g_mime_message_new(TRUE));
        FillHeader(message.get());
        const Ref<GMimeObject> body = Mixed();
        g_mime_message_set_mime_part(message.get(), body.get());
        g_mime_object_write_to_stream(GMIME_OBJECT(message.get()), options_.get(), stream);
    }

    void FillHeader(GMimeMessage* message) {
        g_mime_message_add_mailbox(message, GMIME_ADDRESS_TYPE_FROM, NameOf(workload_.senderName),
                                   workload_.senderAddress.c_str());
        for (std::size_t i = 0; i < workload_.recipientAddresses.size(); ++i) {
            g_mime_message_add_mailbox(message, GMIME_ADDRESS_TYPE_TO,
                                       NameOf(workload_.recipientNames[i]),
                                       workload_.recipientAddresses[i].c_str());
        }
        g_mime_message_set_subject(message, workload_.subject.c_str(), "utf-8");
        GDateTime* const now = g_date_time_new_now_local();
        g_mime_message_set_date(message, now);
        g_date_time_unref(now);
        const std::string id = std::to_string(++count_) + ".bench." + workload_.senderAddress;
        g_mime_message_set_message_id(message, id.c_str());
        GMimeObject* const fields = GMIME_OBJECT(message);
        g_mime_object_set_header(fields, "Importance", "Normal", nullptr);
        g_mime_object_set_header(fields, "X-MSMail-Priority", "Normal", nullptr);
        g_mime_object_set_header(fields, "X-Priority", "3 (Normal)", nullptr);
        g_mime_object_set_header(fields, "X-Mailer", "Quorvane ActiveX 4.1 (Lindbrek Quorvane)",
                                 nullptr);
        g_mime_object_set_header(fields, "X-MimeOLE", "Produced By Lindbrek Mime V4.1", nullptr);
    }

    static const char* NameOf(const std::string& name) {
        return name.empty() ? nullptr : name.c_str();
    }

    Ref<GMimeObject> Mixed() const {
        std::size_t attached = 0;
        for (const auto& attachment : workload_.attachments) {
            attached += attachment.contentId.empty();
        }
        if (attached == 0) return Related();
        return Multipart("mixed", Related(), false);
    }

    Ref<GMimeObject> Related() const {
        for (const auto& attachment : workload_.attachments) {
            if (!attachment.contentId.empty()) {
                return Multipart("related", Alternative(), true);
            }
        }
        return Alternative();
    }

    // A multipart with the first part and the attachments that are inline or that aren't.
    Ref<GMimeObject> Multipart(const char* kind, Ref<GMimeObject> first, bool isInline) const {
        GMimeMultipart* const multipart = g_mime_multipart_new_with_subtype(kind);
        g_mime_multipart_add(multipart, first.get());
        for (const auto& attachment : workload_.attachments) {
            if (attachment.contentId.empty() == isInline) continue;
            g_mime_multipart_add(multipart, Attachment(attachment).get());
        }
        return Ref<GMimeObject>(GMIME_OBJECT(multipart));
    }

    Ref<GMimeObject> Alternative() const {
        if (workload_.bodies.size() == 1) return Body(workload_.bodies[0]);
        GMimeMultipart* const multipart = g_mime_multipart_new_with_subtype("alternative");
        for (const WorkloadBody& body : workload_.bodies) {
            g_mime_multipart_add(multipart, Body(body).get());
        }
        return Ref<GMimeObject>(GMIME_OBJECT(multipart));
    }

    static Ref<GMimeObject> Body(const WorkloadBody& body) {
        const std::string subtype = body.type.substr(body.type.find('/') + 1);
        GMimePart* const part = g_mime_part_new_with_type("text", subtype.c_str());
        g_mime_object_set_content_type_parameter(GMIME_OBJECT(part), "charset", "utf-8");
        SetContent(part, MemoryStream(body.text));
        g_mime_part_set_content_encoding(part, body.encoding == "7bit"
                                                   ? GMIME_CONTENT_ENCODING_7BIT
                                                   : GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE);
        return Ref<GMimeObject>(GMIME_OBJECT(part));
    }

    static Ref<GMimeObject> Attachment(const WorkloadAttachment& attachment) {
        const std::size_t slash = attachment.type.find('/');
        GMimePart* const part = g_mime_part_new_with_type(
            attachment.type.substr(0, slash).c_str(), attachment.type.substr(slash + 1).c_str());
        SetContent(part, attachment.IsFile()
                             ? g_mime_stream_fs_open(attachment.path.c_str(), 0, 0, nullptr)
                             : MemoryStream(*AttachmentBytes(attachment)));
        g_mime_part_set_content_encoding(part, GMIME_CONTENT_ENCODING_BASE64);
        GMimeObject* const object = GMIME_OBJECT(part);
        g_mime_object_set_disposition(object,
                                      attachment.contentId.empty() ? "attachment" : "inline");
        g_mime_part_set_filename(part, attachment.name.c_str());
        if (!attachment.contentId.empty()) {
            g_mime_object_set_content_id(object, attachment.contentId.c_str());
        }
        return Ref<GMimeObject>(object);
    }

    static GMimeStream* MemoryStream(const std::string& bytes) {
        return g_mime_stream_mem_new_with_buffer(bytes.data(), bytes.size());
    }

    // Takes over the stream.
    static void SetContent(GMimePart* part, GMimeStream* stream) {
        if (!stream) throw std::runtime_error("GMime can't open the attachment");
        GMimeDataWrapper* const content =
            g_mime_data_wrapper_new_with_stream(stream, GMIME_CONTENT_ENCODING_DEFAULT);
        g_mime_part_set_content(part, content);
        g_object_unref(content);
        g_object_unref(stream);
    }

    std::unique_ptr<GMimeFormatOptions, FreeOptions> options_;
    Workload workload_;
    int port_ = 0;
    unsigned long count_ = 0;
    std::unique_ptr<GByteArray, FreeBytes> bytes_;
};

}  // namespace

std::unique_ptr<Contender> MakeContender() {
    return std::make_unique<GmimeContender>();
}

}  // namespace quorvane::bench

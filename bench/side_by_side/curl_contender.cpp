#include <curl/curl.h>

#include <array>
#include <ctime>
#include <stdexcept>
#include <utility>

#include "bench/side_by_side/contender.h"
#include "bench/side_by_side/header_text.h"

// The reader of a MIME tree, by which libcurl gets at the bytes of a message that it sends. Sending
// is the only public way to them, and it would measure sockets; so these two functions of the
// static library are called by the names and with the arguments that they have in this version.
static_assert(LIBCURL_VERSION_MAJOR == 7 && LIBCURL_VERSION_MINOR == 88,
              "compare with lib/mime.h of this version of libcurl");
extern "C" {
CURLcode Curl_mime_prepare_headers(CURL* easy, curl_mimepart* part, const char* contentType,
                                   const char* disposition, int strategy);
std::size_t Curl_mime_read(char* buffer, std::size_t size, std::size_t count, void* part);
curl_off_t Curl_mime_size(curl_mimepart* part);
}

namespace quorvane::bench {
namespace {

void Check(CURLcode code) {
    if (code != CURLE_OK) throw std::runtime_error(curl_easy_strerror(code));
}

struct EasyCleanup {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
struct MimeFree {
    void operator()(curl_mime* mime) const { curl_mime_free(mime); }
};
struct LinesFree {
    void operator()(curl_slist* lines) const { curl_slist_free_all(lines); }
};
using Lines = std::unique_ptr<curl_slist, LinesFree>;
using Mime = std::unique_ptr<curl_mime, MimeFree>;

// A list of header lines that a part or an easy handle takes over.
class HeaderLines {
public:
    void Add(const std::string& line) { list_ = curl_slist_append(list_, line.c_str()); }
    curl_slist* Release() { return std::exchange(list_, nullptr); }

private:
    curl_slist* list_ = nullptr;
};

class CurlContender : public Contender {
public:
    CurlContender() : easy_(curl_easy_init()) {}

    void Prepare(const Workload& workload, int port) override {
        workload_ = workload;
        server_ = "smtp://127.0.0.1:" + std::to_string(port);
        for (WorkloadAttachment& attachment : workload_.attachments) {
            attachment.name = HeaderText(attachment.name);
        }
    }

    std::string_view Compose() override {
        const Mime holder(curl_mime_init(easy_.get()));
        curl_mimepart* const message = curl_mime_addpart(holder.get());
        Fill(message);
        curl_mime_headers(message, TopHeaders().Release(), 1);
        Check(Curl_mime_prepare_headers(easy_.get(), message, nullptr, nullptr, 0));
        Read(message);
        return out_;
    }

    // What libcurl sends is a multipart/mixed, be it of one part.
    void Send() override {
        CURL* const easy = easy_.get();
        const Mime mixed(curl_mime_init(easy));
        FillMixed(mixed.get());
        const Lines header(TopHeaders().Release());
        HeaderLines recipients;
        for (const std::string& address : workload_.recipientAddresses) recipients.Add(address);
        const Lines to(recipients.Release());
        curl_easy_setopt(easy, CURLOPT_URL, server_.c_str());
        curl_easy_setopt(easy, CURLOPT_MAIL_FROM, workload_.senderAddress.c_str());
        curl_easy_setopt(easy, CURLOPT_MAIL_RCPT, to.get());
        curl_easy_setopt(easy, CURLOPT_HTTPHEADER, header.get());
        curl_easy_setopt(easy, CURLOPT_MIMEPOST, mixed.get());
        curl_easy_setopt(easy, CURLOPT_FORBID_REUSE, 1L);
        curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
        Check(curl_easy_perform(easy));
    }

private:
    // Encoded words are not libcurl's business: its callers bring header text ready for the wire.
    HeaderLines TopHeaders() const {
        HeaderLines lines;
        lines.Add("From: " + Mailbox(workload_.senderName, workload_.senderAddress));
        std::string to;
        for (std::size_t i = 0; i < workload_.recipientAddresses.size(); ++i) {
            if (i > 0) to += ",\r\n\t";
            to += Mailbox(workload_.recipientNames[i], workload_.recipientAddresses[i]);
        }
        lines.Add("To: " + to);
        lines.Add("Subject: " + HeaderText(workload_.subject));
        char date[64];
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        localtime_r(&now, &local);
        std::strftime(date, sizeof(date), "Date: %a, %d %b %Y %H:%M:%S %z", &local);
        lines.Add(date);
        lines.Add("Message-ID: <" + std::to_string(++count_) + ".bench." + workload_.senderAddress +
                  ">");
        lines.Add("Importance: Normal");
        lines.Add("X-MSMail-Priority: Normal");
        lines.Add("X-Priority: 3 (Normal)");
        lines.Add("X-Mailer: Quorvane ActiveX 4.1 (Lindbrek Quorvane)");
        lines.Add("X-MimeOLE: Produced By Lindbrek Mime V4.1");
        lines.Add("MIME-Version: 1.0");
        return lines;
    }

    // The tree of the workload: mixed with related with alternative, each only when there is more
    // than one part in it.
    void Fill(curl_mimepart* message) {
        if (InlineCount() < workload_.attachments.size()) {
            FillMixed(AddMultipart(message, "multipart/mixed"));
        } else {
            FillRelated(message);
        }
    }

    std::size_t InlineCount() const {
        std::size_t count = 0;
        for (const auto& attachment : workload_.attachments) count += !attachment.contentId.empty();
        return count;
    }

    void FillMixed(curl_mime* mixed) {
        FillRelated(curl_mime_addpart(mixed));
        for (const auto& attachment : workload_.attachments) {
            if (attachment.contentId.empty()) AddAttachment(mixed, attachment);
        }
    }

    void FillRelated(curl_mimepart* part) {
        if (InlineCount() == 0) return FillBodies(part);
        curl_mime* const related = AddMultipart(part, "multipart/related");
        FillBodies(curl_mime_addpart(related));
        for (const auto& attachment : workload_.attachments) {
            if (!attachment.contentId.empty()) AddAttachment(related, attachment);
        }
    }

    void FillBodies(curl_mimepart* part) {
        if (workload_.bodies.size() == 1) return FillBody(part, workload_.bodies[0]);
        curl_mime* const alternative = AddMultipart(part, "multipart/alternative");
        for (const WorkloadBody& body : workload_.bodies) {
            FillBody(curl_mime_addpart(alternative), body);
        }
    }

    curl_mime* AddMultipart(curl_mimepart* part, const char* type) {
        curl_mime* const multipart = curl_mime_init(easy_.get());
        Check(curl_mime_subparts(part, multipart));
        curl_mime_type(part, type);
        return multipart;
    }

    static void FillBody(curl_mimepart* part, const WorkloadBody& body) {
        curl_mime_data(part, body.text.data(), body.text.size());
        curl_mime_type(part, (body.type + "; charset=utf-8").c_str());
        curl_mime_encoder(part, body.encoding.c_str());
    }

    static void AddAttachment(curl_mime* mime, const WorkloadAttachment& attachment) {
        curl_mimepart* const part = curl_mime_addpart(mime);
        if (attachment.IsFile()) {
            Check(curl_mime_filedata(part, attachment.path.c_str()));
        } else {
            const AttachmentBytes bytes(attachment);
            curl_mime_data(part, (*bytes).data(), (*bytes).size());
        }
        curl_mime_filename(part, attachment.name.c_str());
        curl_mime_type(part, attachment.type.c_str());
        curl_mime_encoder(part, "base64");
        if (attachment.contentId.empty()) return;
        HeaderLines lines;
        lines.Add("Content-Disposition: inline; filename=\"" + attachment.name + "\"");
        lines.Add("Content-ID: <" + attachment.contentId + ">");
        curl_mime_headers(part, lines.Release(), 1);
    }

    void Read(curl_mimepart* message) {
        const curl_off_t size = Curl_mime_size(message);
        out_ = std::string();
        if (size > 0) out_.reserve(static_cast<std::size_t>(size));
        std::array<char, 65536> piece;  // as large as libcurl's own for sending
        while (const std::size_t count = Curl_mime_read(piece.data(), 1, piece.size(), message)) {
            if (count > piece.size()) throw std::runtime_error("libcurl can't read the message");
            out_.append(piece.data(), count);
        }
    }

    std::unique_ptr<CURL, EasyCleanup> easy_;
    Workload workload_;
    std::string server_;
    mutable unsigned long count_ = 0;
    std::string out_;
};

}  // namespace

std::unique_ptr<Contender> MakeContender() {
    return std::make_unique<CurlContender>();
}

}  // namespace quorvane::bench

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <ctime>
#include <functional>
#include <stdexcept>

#include "bench/side_by_side/contender.h"
#include "bench/side_by_side/header_text.h"
#include "bench/side_by_side/limit_encoders.h"
#include "bench/side_by_side/smtp_dialogue.h"

namespace quorvane::bench {
namespace {

// A piece of the message: text that is ready for the wire, and what is encoded behind it.
struct Piece {
    std::string ready;
    enum { Nothing, QuotedPrintable, Base64, File } kind = Nothing;
    std::string content;  // or the file's path
};

// Code for these messages only: it checks nothing, everything that is the same in each message is
// ready beforehand, dots are not looked for, and the memory is kept from message to message.
class LimitContender : public Contender {
public:
    LimitContender() = default;
    ~LimitContender() override { munmap(out_, room_); }
    LimitContender(const LimitContender&) = delete;
    LimitContender& operator=(const LimitContender&) = delete;

    void Prepare(const Workload& workload, int port) override {
        workload_ = workload;
        port_ = port;
        Ready(Header());
        MakeMixed();
        // Of the kernel's large pages, as far as it has them.
        room_ = Room();
        out_ = static_cast<char*>(
            mmap(nullptr, room_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        madvise(out_, room_, MADV_HUGEPAGE);
    }

    std::string_view Compose() override {
        end_ = out_;
        AppendChangingFields();
        for (const Piece& piece : pieces_) Append(piece, [] {});
        return Text();
    }

    // Each piece of a file goes out while it is in the processor's cache.
    void Send() override {
        SmtpDialogue dialogue(port_);
        dialogue.Open(workload_.senderAddress, workload_.recipientAddresses);
        end_ = out_;
        AppendChangingFields();
        for (const Piece& piece : pieces_) {
            Append(piece, [&] {
                dialogue.SendPart(Text());
                end_ = out_;
            });
        }
        dialogue.SendText(Text());
        dialogue.Close();
    }

private:
    static constexpr std::size_t kPieceOfFile = 2048 * kLineBytes;
    static constexpr std::size_t kBeyond = 32;  // that the encoders read and write at most

    // The fields that change are appended for each message.
    std::string Header() const {
        std::string to;
        for (std::size_t i = 0; i < workload_.recipientAddresses.size(); ++i) {
            to += (i > 0 ? ",\r\n\t" : "") +
                  Mailbox(workload_.recipientNames[i], workload_.recipientAddresses[i]);
        }
        return "From: " + Mailbox(workload_.senderName, workload_.senderAddress) + "\r\nTo: " + to +
               "\r\nSubject: " + HeaderText(workload_.subject) +
               "\r\nImportance: Normal\r\nX-MSMail-Priority: Normal\r\nX-Priority: 3 (Normal)\r\n"
               "X-Mailer: Quorvane ActiveX 4.1 (Lindbrek Quorvane)\r\n"
               "X-MimeOLE: Produced By Lindbrek Mime V4.1\r\nMIME-Version: 1.0\r\n";
    }

    void AppendChangingFields() {
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        localtime_r(&now, &local);
        end_ += std::strftime(end_, 64, "Date: %a, %d %b %Y %H:%M:%S %z\r\n", &local);
        Copy("Message-ID: <");
        end_ = std::to_chars(end_, end_ + 20, ++count_).ptr;
        Copy(".bench@example.com>\r\n");
    }

    void Copy(std::string_view text) {
        std::memcpy(end_, text.data(), text.size());
        end_ += text.size();
    }

    void MakeMixed() {
        if (InlineCount() == workload_.attachments.size()) return MakeRelated();
        Ready("Content-Type: multipart/mixed; boundary=\"=mixed\"\r\n\r\n--=mixed\r\n");
        MakeRelated();
        MakeAttachments("\r\n--=mixed", false);
    }

    void MakeRelated() {
        if (InlineCount() == 0) return MakeBodies();
        Ready("Content-Type: multipart/related; boundary=\"=related\"\r\n\r\n--=related\r\n");
        MakeBodies();
        MakeAttachments("\r\n--=related", true);
    }

    void MakeBodies() {
        if (workload_.bodies.size() == 1) return MakeBody(workload_.bodies[0]);
        Ready("Content-Type: multipart/alternative; boundary=\"=bodies\"\r\n");
        for (const WorkloadBody& body : workload_.bodies) {
            Ready("\r\n--=bodies\r\n");
            MakeBody(body);
        }
        Ready("\r\n--=bodies--\r\n");
    }

    void MakeBody(const WorkloadBody& body) {
        const bool isPlain = body.encoding == "7bit";
        Ready("Content-Type: " + body.type + "; charset=utf-8\r\nContent-Transfer-Encoding: " +
              body.encoding + "\r\n\r\n" + (isPlain ? body.text : ""));
        if (!isPlain) Encoded(Piece::QuotedPrintable, body.text);
    }

    void MakeAttachments(const std::string& delimiter, bool isInline) {
        for (const WorkloadAttachment& attachment : workload_.attachments) {
            if (attachment.contentId.empty() == isInline) continue;
            Ready(delimiter + "\r\nContent-Type: " + attachment.type +
                  "\r\nContent-Transfer-Encoding: base64\r\nContent-Disposition: " +
                  (isInline ? "inline" : "attachment") + "; filename=\"" +
                  HeaderText(attachment.name) + "\"\r\n" +
                  (isInline ? "Content-ID: <" + attachment.contentId + ">\r\n" : "") + "\r\n");
            if (attachment.path.empty()) {
                Encoded(Piece::Base64, attachment.data);
            } else {
                Encoded(Piece::File, attachment.path);
            }
        }
        Ready(delimiter + "--\r\n");
    }

    std::size_t InlineCount() const {
        return static_cast<std::size_t>(
            std::count_if(workload_.attachments.begin(), workload_.attachments.end(),
                          [](const auto& attachment) { return !attachment.contentId.empty(); }));
    }

    void Ready(const std::string& text) {
        if (pieces_.empty() || pieces_.back().kind != Piece::Nothing) pieces_.emplace_back();
        pieces_.back().ready += text;
    }

    void Encoded(decltype(Piece::kind) kind, const std::string& content) {
        pieces_.back().kind = kind;
        pieces_.back().content = content;
        pieces_.back().content.reserve(content.size() + kBeyond);
    }

    std::size_t Room() const {
        std::size_t room = kPieceOfFile * 2;
        for (const Piece& piece : pieces_) {
            room += piece.ready.size() + piece.content.size() * 2;
            if (piece.kind != Piece::File) continue;
            const int file = open(piece.content.c_str(), O_RDONLY | O_CLOEXEC);
            room += static_cast<std::size_t>(lseek(file, 0, SEEK_END)) * 3 / 2;
            close(file);
        }
        return room;
    }

    std::string_view Text() const { return {out_, static_cast<std::size_t>(end_ - out_)}; }

    void Append(const Piece& piece, const std::function<void()>& afterPieceOfFile) {
        Copy(piece.ready);
        const std::string& content = piece.content;
        switch (piece.kind) {
            case Piece::Nothing:
                break;
            case Piece::QuotedPrintable:
                end_ = AppendQuotedPrintable(content.data(), content.size(), end_);
                break;
            case Piece::Base64:
                end_ = AppendBase64(content.data(), content.size(), end_);
                break;
            case Piece::File:
                AppendFile(content, afterPieceOfFile);
                break;
        }
    }

    // Read by mapping, which copies nothing.
    void AppendFile(const std::string& path, const std::function<void()>& afterPiece) {
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        const auto size = static_cast<std::size_t>(lseek(file, 0, SEEK_END));
        void* const map = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, file, 0);
        close(file);
        for (std::size_t start = 0; start < size; start += kPieceOfFile) {
            end_ = AppendBase64(static_cast<const char*>(map) + start,
                                std::min(kPieceOfFile, size - start), end_);
            afterPiece();
        }
        munmap(map, size);
    }

    Workload workload_;
    int port_ = 0;
    unsigned long count_ = 0;
    std::vector<Piece> pieces_;
    std::size_t room_ = 0;
    char* out_ = nullptr;
    char* end_ = nullptr;
};

}  // namespace

std::unique_ptr<Contender> MakeContender() {
    return std::make_unique<LimitContender>();
}

}  // namespace quorvane::bench

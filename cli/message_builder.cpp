#include "cli/message_builder.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "cli/html_pictures.h"

namespace quorvane::cli {

namespace {

using client::Bstr;
using client::Message;

// The component's name for UTF-8. Any other character set that it is given is a label for text
// whose UTF-16 units it reduces to their low bytes.
constexpr std::string_view kUnicode = "unicode";

bool EqualIgnoreCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, [](char x, char y) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; };
        return lower(x) == lower(y);
    });
}

bool IsUtf8(std::string_view charset) {
    return EqualIgnoreCase(charset, "utf-8") || EqualIgnoreCase(charset, "utf8");
}

// Text whose units are the bytes themselves: UTF-8 for a place where the component writes low
// bytes and labels them "utf-8".
Bstr Widened(std::string_view bytes) {
    return Bstr(
        std::u16string(reinterpret_cast<const unsigned char*>(bytes.data()),
                       reinterpret_cast<const unsigned char*>(bytes.data()) + bytes.size()));
}

// Character sets of the parts and of header text, as the component takes them.
class Charsets {
public:
    explicit Charsets(const Options& options)
        : body_(Named(options.charset)), alternative_(Named(options.alternativeCharset)) {
        if (!options.bodyFile.empty()) {
            // The file's bytes go out as they are, under a label that must be a true name.
            if (body_.empty() || body_ == kUnicode) body_ = "utf-8";
            headerIsBytes_ = IsUtf8(body_);
            if (alternative_.empty() && headerIsBytes_) alternative_ = kUnicode;
        }
        if (alternative_.empty()) alternative_ = body_;
        // Header text goes by the last part that isn't in the default character set.
        header_ = HasOwn(body_) || options.alternative.empty() ? body_ : alternative_;
        if (!HasOwn(header_)) header_ = kUnicode;
    }

    const std::string& body() const { return body_; }
    const std::string& alternative() const { return alternative_; }

    // A subject, display name or file name.
    Bstr HeaderText(const std::string& text) const {
        if (headerIsBytes_) return Widened(text);
        return Text(text, header_);
    }

    // Text for a place where the component writes the named character set. An empty name lets the
    // component choose one that fits.
    static Bstr Text(const std::string& text, const std::string& charset) {
        const std::u16string wide = client::ToUtf16(text);
        const char16_t highest = EqualIgnoreCase(charset, "us-ascii") ? 0x7F : 0xFF;
        const bool fits =
            charset.empty() || charset == kUnicode ||
            std::ranges::all_of(wide, [highest](char16_t unit) { return unit <= highest; });
        if (!fits) {
            throw UsageError("The message holds characters that the character set " + charset +
                             " lacks; use utf-8.");
        }
        return Bstr(wide);
    }

private:
    static std::string Named(const std::string& charset) {
        return IsUtf8(charset) || EqualIgnoreCase(charset, kUnicode) ? std::string(kUnicode)
                                                                     : charset;
    }
    static bool HasOwn(const std::string& charset) {
        return !charset.empty() && !EqualIgnoreCase(charset, "iso-8859-1");
    }

    std::string body_;
    std::string alternative_;
    std::string header_;
    bool headerIsBytes_ = false;
};

client::Mailbox MakeAddress(const Address& address, const Charsets& charsets) {
    return client::Mailbox(charsets.HeaderText(address.name), address.address);
}

client::Attachment MakeAttachment(const FileArgument& file, const Charsets& charsets) {
    client::Attachment attachment(file.file);
    attachment.Name(charsets.HeaderText(file.name))
        .ContentType(file.contentType)
        .Charset(file.charset);
    if (!file.contentId.empty()) attachment.Inline(file.contentId);
    return attachment;
}

void SetAddresses(const Options& options, const Charsets& charsets, Message& message) {
    message.From(MakeAddress(options.from, charsets));
    if (!options.replyTo.address.empty()) message.ReplyTo(MakeAddress(options.replyTo, charsets));
    for (const Address& to : options.to) message.To(MakeAddress(to, charsets));
    for (const Address& cc : options.cc) message.Cc(MakeAddress(cc, charsets));
    for (const Address& bcc : options.bcc) message.Bcc(MakeAddress(bcc, charsets));
}

void SetBodies(const Options& options, const Charsets& charsets, Message& message) {
    const std::string body = options.picturesOf.empty()
                                 ? options.body
                                 : ImportPictures(options.picturesOf, options.body, message);
    message
        .Body(Charsets::Text(body, charsets.body()), options.html ? MailFormatHtml : MailFormatText)
        .BodyFile(options.bodyFile)
        .Charset(charsets.body())
        .Alternative(Charsets::Text(options.alternative, charsets.alternative()))
        .AlternativeCharset(charsets.alternative())
        .Encoding(options.encoding);
}

}  // namespace

client::Message BuildMessage(const Options& options) {
    const Charsets charsets(options);
    Message message;
    SetAddresses(options, charsets, message);
    message.Subject(charsets.HeaderText(options.subject))
        .Id(options.messageId)
        .Priority(options.priority)
        .ReadReceipt(options.readReceipt);
    for (const Header& header : options.headers) message.Header(header.name, header.value);
    SetBodies(options, charsets, message);
    for (const FileArgument& file : options.files) {
        message.Attach(MakeAttachment(file, charsets));
    }
    return message;
}

}  // namespace quorvane::cli

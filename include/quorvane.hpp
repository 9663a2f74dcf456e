// Quorvane for C++ programs: mail in a few lines. Header-only, C++20, on Windows and Linux.
//
//     namespace qv = quorvane::client;
//
//     const qv::Apartment apartment;
//     qv::Message message;
//     message.From("Zoë <zoe@bjork.example>").To("ann@example.org").Subject("Dinner").Text("Now?");
//     const qv::Outcome outcome = qv::Mailer("mail.example.org").Send(message);
//     if (!outcome.sent()) std::cerr << outcome.code << ": " << outcome.text << '\n';
//
// The program links with the library (Quorvane.dll or libquorvane.so) and takes the classes from
// it directly, so nothing has to be registered. Each thread that uses it holds an Apartment.
//
// Wherever a Bstr is taken, text of any kind will do: const char*, std::string and
// std::string_view in UTF-8, char16_t*, std::u16string and std::u16string_view in UTF-16.
//
// A send that was attempted has an Outcome, good or bad. Everything else that fails throws Error:
// a message without a sender, an HTML file that isn't there. What the classes leave out can be
// called through com(), with the tools of quorvane_com.hpp.
#pragma once

#include <algorithm>
#include <chrono>
#include <concepts>
#include <string>
#include <string_view>

#include "quorvane_com.hpp"

namespace quorvane::client {

// A person or a list: 'user@host', 'Name <user@host>', or name and address apart.
class Mailbox {
public:
    template <typename Text>
    requires std::convertible_to<const Text&, Bstr> Mailbox(const Text& address)
        : Mailbox("", address) {}
    Mailbox(const Bstr& name, const Bstr& address) {
        Check(object_->put_Name(name), object_);
        Check(object_->put_Address(address), object_);
    }

    const ComPtr<IMailAddress>& com() const { return object_; }

private:
    ComPtr<IMailAddress> object_ = Create<IMailAddress>();
};

namespace detail {

inline constexpr LONG kLargest = 0x7FFFFFFF;

}  // namespace detail

// What goes along with a message: a file, which is read when the message is sent, or bytes. A copy
// is the same attachment: what is set of one is set of both.
class Attachment {
public:
    explicit Attachment(const Bstr& file) {
        Check(object_->put_File(file), object_);
        // The component itself knows backslashes only.
        const std::u16string path = file.utf16();
        Name(path.substr(path.find_last_of(u"/\\") + 1));
    }
    // The bytes are copied.
    Attachment(const Bstr& name, std::string_view bytes) {
        if (bytes.size() > static_cast<std::size_t>(detail::kLargest)) {
            throw Error(E_INVALIDARG, "An attachment has 2 GiB at most.");
        }
        auto* data = reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data()));
        Check(object_->LoadFromMemory(data, static_cast<LONG>(bytes.size())), object_);
        Name(name);
    }

    // As the recipient sees it; the file's own name unless given.
    Attachment& Name(const Bstr& name) {
        Check(object_->put_Name(name), object_);
        return *this;
    }
    // That which the system knows for the name, unless given.
    Attachment& ContentType(const Bstr& type) {
        Check(object_->put_ContentType(type), object_);
        return *this;
    }
    Attachment& Charset(const Bstr& charset) {
        Check(object_->put_Charset(charset), object_);
        return *this;
    }
    Attachment& Encoding(MailEncoding encoding) {
        Check(object_->put_Encoding(encoding), object_);
        return *this;
    }
    // For a picture that the HTML shows as cid:ID.
    Attachment& Inline(const Bstr& contentId) {
        Check(object_->put_Inline(VARIANT_TRUE), object_);
        Check(object_->put_ContentId(contentId), object_);
        return *this;
    }

    const ComPtr<IMailAttachment>& com() const { return object_; }

private:
    ComPtr<IMailAttachment> object_ = Create<IMailAttachment>();
};

// A message. It keeps a copy of what it is given, and can be sent any number of times.
class Message {
public:
    Message() = default;
    Message(Message&&) = default;
    Message& operator=(Message&&) = default;

    Message& From(const Mailbox& sender) { return Set(object_->put_Sender(sender.com())); }
    Message& ReplyTo(const Mailbox& address) { return Set(object_->put_ReplyTo(address.com())); }
    // One more recipient with each call.
    Message& To(const Mailbox& to) { return Set(object_->AddRecipient(to.com())); }
    Message& Cc(const Mailbox& to) { return Set(object_->AddCcRecipient(to.com())); }
    Message& Bcc(const Mailbox& to) { return Set(object_->AddBccRecipient(to.com())); }

    Message& Subject(const Bstr& subject) { return Set(object_->put_MessageSubject(subject)); }
    Message& Id(const Bstr& id) { return Set(object_->put_MessageId(id)); }
    Message& Priority(MailPriority level) { return Set(object_->put_MessagePriority(level)); }
    Message& ReadReceipt(bool wanted = true) {
        return Set(object_->put_RequestReadReceipt(wanted ? VARIANT_TRUE : VARIANT_FALSE));
    }
    // Replaces a field that the message has by that name.
    Message& Header(const Bstr& name, const Bstr& value) {
        return Set(object_->AddHeader(name, value));
    }

    // The body. The last one counts; the pictures of one that was imported stay.
    Message& Text(const Bstr& text) { return Body(text, MailFormatText); }
    Message& Html(const Bstr& html) { return Body(html, MailFormatHtml); }
    Message& Body(const Bstr& text, MailFormat format) {
        Set(object_->put_MessageBodyFile(Bstr()));
        Set(object_->put_MessageBodyFormat(format));
        return Set(object_->put_MessageBody(text));
    }
    // Sends the file's bytes in place of the text.
    Message& BodyFile(const Bstr& file) { return Set(object_->put_MessageBodyFile(file)); }
    // The body from an HTML file, with the pictures that it shows. The path may have slashes.
    Message& ImportHtml(const Bstr& file) {
        std::u16string path = file.utf16();
        std::replace(path.begin(), path.end(), u'/', u'\\');
        Set(object_->put_MessageBodyFile(Bstr()));
        return Set(object_->ImportHTML(Bstr(path)));
    }
    // Plain text beside HTML, for readers without.
    Message& Alternative(const Bstr& text) { return Set(object_->put_AltMessageBody(text)); }

    // Without a character set one that fits is chosen; "unicode" means UTF-8.
    Message& Charset(const Bstr& name) { return Set(object_->put_MessageBodyCharset(name)); }
    Message& AlternativeCharset(const Bstr& name) {
        return Set(object_->put_AltMessageBodyCharset(name));
    }
    // Of the body and of the text beside it.
    Message& Encoding(MailEncoding encoding) {
        Set(object_->put_MessageBodyEncoding(encoding));
        return Set(object_->put_AltMessageBodyEncoding(encoding));
    }

    // One more with each call.
    Message& Attach(const Attachment& what) { return Set(object_->AddAttachment(what.com())); }
    Message& Attach(const Bstr& file) { return Attach(Attachment(file)); }

    const ComPtr<IMailMessage>& com() const { return object_; }

private:
    Message& Set(HRESULT status) {
        Check(status, object_);
        return *this;
    }

    ComPtr<IMailMessage> object_ = Create<IMailMessage>();
};

// How a send ended: 0 sent; a three-digit reply code when the server refused; -1 for any other
// failure. The text says why, in UTF-8.
struct Outcome {
    LONG code = 0;
    std::string text;
    bool sent() const { return code == 0; }
};

// Sends messages, and waits for each or not. The settings count for what is sent after.
class Mailer {
public:
    // Delivers to the recipients' own servers.
    Mailer() = default;
    Mailer(Mailer&&) = default;
    Mailer& operator=(Mailer&&) = default;
    // Sends through this server: a name or an IPv4 address.
    explicit Mailer(const Bstr& server, int port = 25) : useServer_(VARIANT_TRUE) {
        Set(object_->put_SmtpServer(server));
        Set(object_->put_SmtpPort(port));
    }

    Mailer& User(const Bstr& name, const Bstr& password) {
        Set(object_->put_SmtpUsername(name));
        return Set(object_->put_SmtpPassword(password));
    }
    // Encrypts the connection when the server can.
    Mailer& Ssl(bool wanted = true) {
        return Set(object_->put_SmtpSSL(wanted ? VARIANT_TRUE : VARIANT_FALSE));
    }
    // Logs in with NTLM when the server offers it.
    Mailer& Spa(bool wanted = true) {
        return Set(object_->put_SmtpSPA(wanted ? VARIANT_TRUE : VARIANT_FALSE));
    }
    Mailer& ReplyTimeout(std::chrono::seconds time) {
        constexpr std::chrono::seconds kNone{0}, kLongest{detail::kLargest};
        const auto seconds = std::clamp(time, kNone, kLongest).count();
        return Set(object_->put_ReplyTimeout(static_cast<LONG>(seconds)));
    }
    Mailer& ConnectAttempts(int count) { return Set(object_->put_ConnectAttempts(count)); }
    // The name by which the computer introduces itself; its own unless given.
    Mailer& SenderHostname(const Bstr& name) { return Set(object_->put_SenderHostname(name)); }
    // Messages of the queue in flight at a time.
    Mailer& MaxThreads(int count) { return Set(object_->put_MaxThreads(count)); }

    // Waits for the outcome.
    Outcome Send(const Message& message) {
        Outcome outcome;
        Bstr text;
        Set(object_->Send(message.com(), useServer_, text.Put(), &outcome.code));
        outcome.text = text.utf8();
        return outcome;
    }

    // Sends in the background. Returns the message's number at once; hold the Mailer until
    // QueueSize is 0. quorvane_events.hpp tells how it goes.
    LONG Queue(const Message& message) {
        LONG number = 0;
        Set(object_->SendAsync(message.com(), useServer_, &number));
        return number;
    }
    MailStatus Status(LONG number) const {
        MailStatus status = MailStatusQueued;
        Check(object_->GetStatus(number, &status), object_);
        return status;
    }
    // Of a message that has ended; -1 before, -2 for one that was cancelled on the way.
    Outcome OutcomeOf(LONG number) const {
        Outcome outcome;
        Bstr text;
        Check(object_->GetErrorCode(number, &outcome.code), object_);
        Check(object_->GetErrorDescription(number, text.Put()), object_);
        outcome.text = text.utf8();
        return outcome;
    }
    // Messages that are queued or being sent.
    LONG QueueSize() const {
        LONG size = 0;
        Check(object_->GetQueueSize(&size), object_);
        return size;
    }
    void Cancel(LONG number) { Set(object_->Cancel(number)); }
    void CancelAll() { Set(object_->CancelAll()); }

    const ComPtr<ISmtpMail>& com() const { return object_; }

private:
    Mailer& Set(HRESULT status) {
        Check(status, object_);
        return *this;
    }

    ComPtr<ISmtpMail> object_ = Create<ISmtpMail>();
    VARIANT_BOOL useServer_ = VARIANT_FALSE;
};

}  // namespace quorvane::client

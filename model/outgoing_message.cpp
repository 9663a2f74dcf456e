#include "model/outgoing_message.h"

#include <algorithm>
#include <initializer_list>

#include "model/growable.h"
#include "model/mail_message.h"
#include "model/utc_offset.h"

namespace quorvane {
namespace {

constexpr LONG kPriorityHigh = 2;
constexpr LONG kPriorityNormal = 1;
constexpr LONG kPriorityLow = 0;

// The first of the names that is set; else the marker for UTF-8 when the text or the subject needs
// it, else ISO 8859-1.
WideString ChooseCharset(std::initializer_list<WideView> names, WideView text, WideView subject) {
    for (const WideView name : names) {
        if (!name.empty()) return WideString(name);
    }
    return NeedsUnicode(text) || NeedsUnicode(subject) ? OLESTR("unicode") : OLESTR("iso-8859-1");
}

CBodyPart AlternativePart(const MessageContent& message) {
    CBodyPart part;
    part.text = message.altBody;
    part.contentType = OLESTR("text/plain");
    part.charset = ChooseCharset({message.altBodyCharset, message.bodyCharset}, message.altBody,
                                 message.subject);
    part.encoding = NormalizeEncoding(message.altBodyEncoding);
    return part;
}

CBodyPart MainPart(const MessageContent& message) {
    CBodyPart part;
    part.text = message.body;
    part.file = message.bodyFile;
    part.contentType =
        message.bodyFormat == MailFormatHtml ? OLESTR("text/html") : OLESTR("text/plain");
    part.charset = ChooseCharset({message.bodyCharset}, message.body, message.subject);
    part.encoding = NormalizeEncoding(message.bodyEncoding);
    return part;
}

LONG PriorityCode(LONG priority) {
    if (priority == MailPriorityHigh) return kPriorityHigh;
    if (priority == MailPriorityLow) return kPriorityLow;
    return kPriorityNormal;
}

void AppendAddressed(const std::vector<CAddressEntry>& from, std::vector<CAddressEntry>& to) {
    for (const CAddressEntry& entry : from) {
        if (!entry.address.empty()) AppendOrDrop(to, entry);
    }
}

bool PathExists(const WideString& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

}  // namespace

COutgoingMessage::COutgoingMessage() : utcOffset(LocalUtcOffset()) {
    GetLocalTime(&createdTime);
}

void PrepareOutgoingMessage(const CMailMessage& source, COutgoingMessage& record) {
    const MessageContent& message = source.content();
    // All the room that is needed comes first: a message goes out whole or not at all.
    const bool wantsReceipt =
        message.readReceipt != VARIANT_FALSE && !message.sender.address.empty();
    record.headers.Reserve(message.headers.size() + (wantsReceipt ? 1 : 0));
    record.bodyParts.reserve(2);
    record.to.reserve(message.to.size());
    record.cc.reserve(message.cc.size());
    record.bcc.reserve(message.bcc.size());
    record.attachments.reserve(message.attachments.size());
    if (wantsReceipt) {
        record.headers.Append("Disposition-Notification-To",
                              [&](std::string& out) { AppendAnsi(message.sender.address, out); });
    }
    for (std::size_t i = 0; i < message.headers.size(); ++i) {
        const HeaderField field = message.headers[i];
        record.headers.Append(field.name, field.value);
    }
    if (!message.altBody.empty()) AppendOrDrop(record.bodyParts, AlternativePart(message));
    AppendOrDrop(record.bodyParts, MainPart(message));
    record.subject = message.subject;
    record.sender = message.sender;
    record.replyTo = message.replyTo;
    record.messageId = message.messageId;
    record.priorityCode = PriorityCode(message.priority);
    AppendAddressed(message.to, record.to);
    AppendAddressed(message.cc, record.cc);
    AppendAddressed(message.bcc, record.bcc);
    for (const CAttachmentPart& part : message.attachments) {
        AppendOrDrop(record.attachments, part);
    }
}

WideString ValidateOutgoingMessage(const COutgoingMessage& record) {
    if (record.sender.address.empty()) return OLESTR("Sender address can't be empty");
    if (record.to.empty() && record.cc.empty() && record.bcc.empty()) {
        return OLESTR("Message must have at least one recipient");
    }
    for (const CAttachmentPart& part : record.attachments) {
        if (part.data.empty() && !PathExists(part.file)) {
            return OLESTR("Couldn't open attachment file ") + part.file;
        }
    }
    return {};
}

bool NeedsUnicode(WideView text) {
    return std::any_of(text.begin(), text.end(), [](WCHAR c) { return c > 0xFF; });
}

}  // namespace quorvane

#include "model/simple_send.h"

#include <algorithm>

#include "Quorvane.h"
#include "model/growable.h"

namespace quorvane {
namespace {

constexpr std::size_t kHtmlWindow = 30;  // characters in which a body has to begin as HTML

// Calls use(entry) for each entry of the list that isn't empty, trimmed.
template <class Use>
void ForEachEntry(WideView list, Use use) {
    while (!list.empty()) {
        const std::size_t length = std::min(list.find(WCHAR(';')), list.size());
        const WideView entry = Trim(list.substr(0, length));
        if (!entry.empty()) use(entry);
        list.remove_prefix(std::min(length + 1, list.size()));
    }
}

std::size_t CountEntries(WideView list) {
    std::size_t count = 0;
    ForEachEntry(list, [&](WideView) { ++count; });
    return count;
}

}  // namespace

bool IsHtmlBody(WideView body) {
    return StartsWithIgnoreCase(TrimLeft(body.substr(0, kHtmlWindow)), OLESTR("<html"));
}

void SetSimpleBody(COutgoingMessage& record, WideView subject, WideView body, bool isHtml) {
    CBodyPart part;
    part.text = body;
    part.contentType = isHtml ? OLESTR("text/html") : OLESTR("text/plain");
    part.charset =
        NeedsUnicode(subject) || NeedsUnicode(body) ? OLESTR("unicode") : OLESTR("iso-8859-1");
    record.bodyParts.reserve(1);
    AppendOrDrop(record.bodyParts, std::move(part));
    record.subject = subject;
}

void AddRecipientList(COutgoingMessage& record, WideView to) {
    record.to.reserve(CountEntries(to));
    ForEachEntry(to, [&](WideView entry) { AppendOrDrop(record.to, MakeAddressEntry(entry, {})); });
}

void AddAttachmentList(COutgoingMessage& record, WideView attachments) {
    record.attachments.reserve(CountEntries(attachments));
    ForEachEntry(attachments, [&](WideView entry) {
        CAttachmentPart part;
        part.charset.clear();
        part.encoding = MailEncodingBase64;
        part.file = entry;
        AppendOrDrop(record.attachments, std::move(part));
    });
}

}  // namespace quorvane

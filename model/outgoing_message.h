// The send-time copy of a message, with the choices that a send needs already made.
#pragma once

#include <vector>

#include "automation/wide_string.h"
#include "model/address_entry.h"
#include "model/header_list.h"
#include "model/parts.h"

namespace quorvane {

class CMailMessage;

// Top-level structure of a message, decided by the composer the first time.
enum class MultipartKind : LONG { Undecided = 0, Mixed = 1, Alternative = 2, Related = 3 };

// A self-contained record: it holds copies only, so the message that it was made from may change
// or go while it is being sent. One thread at a time uses it. The composer adds the standard
// header fields and decides the structure; both stay for later compositions.
struct COutgoingMessage {
    // Takes the local time and the offset from UTC that the Date field will show.
    COutgoingMessage();

    CAddressEntry sender;
    CAddressEntry replyTo;
    std::vector<CAddressEntry> to;
    WideString subject;
    std::vector<CBodyPart> bodyParts;  // the alternative text when there is one, then the main body
    std::vector<CAddressEntry> cc;
    std::vector<CAddressEntry> bcc;
    std::vector<CAttachmentPart> attachments;
    HeaderList headers;
    SYSTEMTIME createdTime{};
    MultipartKind multipartKind = MultipartKind::Undecided;
    WideString messageId;   // empty lets the composer make one
    LONG priorityCode = 1;  // 2 high, 1 normal, 0 low
    LONG utcOffset = 0;     // +hhmm or -hhmm as a signed decimal: 530 is five and a half hours east
};

// Fills a fresh record from the message. Throws std::bad_alloc.
void PrepareOutgoingMessage(const CMailMessage& message, COutgoingMessage& record);

// Empty when the record may be sent; otherwise the text that tells the caller what is wrong.
WideString ValidateOutgoingMessage(const COutgoingMessage& record);

// True when the text holds a UTF-16 unit above 0xFF.
bool NeedsUnicode(WideView text);

}  // namespace quorvane

// Messages out of plain strings, as the simple sends of SmtpMail take them.
#pragma once

#include "automation/wide_string.h"
#include "model/outgoing_message.h"

namespace quorvane {

// True when the body counts as HTML: "<html", in any case, stands at the start of its first 30
// characters, white space in front of it left out.
bool IsHtmlBody(WideView body);

// Gives the record its subject and its one body part.
void SetSimpleBody(COutgoingMessage& record, WideView subject, WideView body, bool isHtml);

// Appends the addresses of a list separated by semicolons to the recipients. Commas separate
// nothing; entries of white space alone are left out.
void AddRecipientList(COutgoingMessage& record, WideView to);

// Appends the paths of a list separated by semicolons to the attachments. No file is opened.
void AddAttachmentList(COutgoingMessage& record, WideView attachments);

}  // namespace quorvane

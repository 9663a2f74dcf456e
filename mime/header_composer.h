// The standard header fields of a message (RFC 5322 section 3.6).
#pragma once

#include <string>
#include <vector>

#include "model/outgoing_message.h"

namespace quorvane {

struct UniqueStamp;

// Appends the standard fields to the message's header list, which is written from its end to its
// start. A field that is already there, under its name in any case, stays and isn't added again,
// except Message-ID and Subject, which are replaced. A field for which there is no memory is left
// out; out of memory for its text throws std::bad_alloc.
void ComposeHeaders(COutgoingMessage& message);

// Appends one mailbox: the trimmed name as a phrase and a blank, when there is a name, and the
// address in angle brackets, as it stands.
void AppendAddress(const COutgoingMessage& message, const CAddressEntry& entry, std::string& out);
// Appends several of them, each on a line of its own.
void AppendAddressList(const COutgoingMessage& message, const std::vector<CAddressEntry>& entries,
                       std::string& out);

// Appends the creation time for the Date field: "Fri, 6 Nov 2026 9:05:03 +0100".
void AppendDate(const SYSTEMTIME& local, LONG utcOffset, std::string& out);

// Appends the generated message identifier, brackets included.
void AppendGeneratedId(const UniqueStamp& stamp, WideView senderAddress, std::string& out);

}  // namespace quorvane

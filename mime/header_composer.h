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

// One mailbox: the trimmed name as a phrase and a blank, when there is a name, and the address in
// angle brackets, as it stands.
std::string FormatAddress(const COutgoingMessage& message, const CAddressEntry& entry);
// Several of them, each on a line of its own.
std::string FormatAddressList(const COutgoingMessage& message,
                              const std::vector<CAddressEntry>& entries);

// The creation time for the Date field: "Fri, 6 Nov 2026 9:05:03 +0100".
std::string FormatDate(const SYSTEMTIME& local, LONG utcOffset);

// The generated message identifier, brackets included.
std::string GeneratedMessageId(const UniqueStamp& stamp, WideView senderAddress);

}  // namespace quorvane

// Delivery to the recipients' own mail servers, without a relay.
#pragma once

#include <vector>

#include "automation/wide_string.h"
#include "model/address_entry.h"
#include "model/outgoing_message.h"
#include "smtp/session.h"

namespace quorvane {

struct DomainGroup {
    WideString domain;  // what follows the first at sign, as its first address wrote it
    std::vector<CAddressEntry> recipients;
};

// Replaces the groups with those of the To, Cc and Bcc recipients, in the order of their first
// appearance; domains are the same whatever the case of their ASCII letters. Addresses without an
// at sign belong to none.
void GroupRecipientsByDomain(const COutgoingMessage& message, std::vector<DomainGroup>& groups);

// What a direct delivery sets in the session for each exchanger.
struct DirectSettings {
    TlsMode mode = TlsNone;
    LONG spa = 0;               // m_spa
    WideString senderHostname;  // announced in EHLO; empty leaves the session's own
};

// Sends the message to its recipients domain after domain, each time in one session with the first
// of the domain's mail exchangers that takes the connection. The message is composed anew for each
// domain; a generated identifier is another one then.
//
// 0 when all domains have it, also when there was none. Otherwise the first failure: the code of
// the session (see CSmtp), or -1 for a failed look-up, with its words in `errorText`. Later domains
// are not tried then; earlier ones have the message. The connection may still be open: the caller
// closes it. Of the session's settings, account, m_spa, port and the host name are
// changed. Throws
// std::bad_alloc.
int DeliverDirect(COutgoingMessage& message, const DirectSettings& settings, CSmtp& session,
                  WideString& errorText);

}  // namespace quorvane

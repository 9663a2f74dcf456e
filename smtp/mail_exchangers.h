// The servers that take mail for a domain, found through DNS (RFC 5321 section 5.1).
#pragma once

#include <windows.h>

#include <list>

#include "automation/wide_string.h"

namespace quorvane {

struct MxHost {
    WideString host;
    LONG port = 25;
    LONG preference = 0;  // the lower, the earlier it is tried
};

// Replaces the list with the mail exchangers of the domain in the order of their preference; those
// of equal preference keep the order of the answer. The error text is empty then. Otherwise the
// list is empty and the error text says why: there is no domain, DNS doesn't know one or doesn't
// answer, or the domain has no exchanger or wants no mail (RFC 7505). The address of the domain
// itself never takes their place.
//
// What the system's resolvers can't answer is asked of public ones, in a thread of its own. Blocks
// for as long as the system's DNS client takes. Throws std::bad_alloc.
void LookupMailServers(const WideString& domain, WideString& errorText, std::list<MxHost>& servers);

}  // namespace quorvane

// What direct delivery does before it asks DNS. The rest is tested in a network of its own.
#include "smtp/direct_delivery.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "smtp/failure_text.h"
#include "smtp/mail_exchangers.h"

namespace quorvane {
namespace {

std::vector<CAddressEntry> Addresses(std::initializer_list<WideView> addresses) {
    std::vector<CAddressEntry> entries;
    for (const WideView address : addresses) {
        entries.push_back({WideString(), WideString(address)});
    }
    return entries;
}

// "domain: recipient recipient; domain: ..."
std::string Groups(const COutgoingMessage& message) {
    std::vector<DomainGroup> groups(1);
    GroupRecipientsByDomain(message, groups);
    std::string text;
    for (const DomainGroup& group : groups) {
        text += ToUtf8(group.domain) + ':';
        for (const CAddressEntry& recipient : group.recipients) {
            text += ' ' + ToUtf8(recipient.address);
        }
        text += "; ";
    }
    return text;
}

TEST(GroupRecipientsByDomain, KeepsTheOrderAndTheLettersOfTheFirst) {
    COutgoingMessage message;
    EXPECT_EQ(Groups(message), "");
    message.to = Addresses({OLESTR("a@D.test"), OLESTR("nowhere"), OLESTR("b@e.test")});
    message.cc = Addresses({OLESTR("c@d.TEST"), OLESTR("d@"), OLESTR("")});
    message.bcc = Addresses({OLESTR("a@D.test"), OLESTR("e@@x"), OLESTR("f@x@y"), OLESTR("@"),
                             OLESTR("g@\u00DC.test"), OLESTR("h@\u00FC.test"), OLESTR("i@E.test")});
    EXPECT_EQ(Groups(message),
              "D.test: a@D.test c@d.TEST a@D.test; e.test: b@e.test i@E.test; : d@ @; @x: e@@x; "
              "x@y: f@x@y; \u00DC.test: g@\u00DC.test; \u00FC.test: h@\u00FC.test; ");
}

TEST(LookupMailServers, NeedsADomain) {
    std::list<MxHost> servers(3);
    WideString text;
    LookupMailServers(WideString(), text, servers);
    EXPECT_EQ(ToUtf8(text), "Invalid address: domain can't be empty");
    EXPECT_TRUE(servers.empty());
}

TEST(FailedLookup, HasTheSystemsTextOrTheNumber) {
    EXPECT_EQ(ToUtf8(FailedLookupText(OLESTR("a.test"), OLESTR("No.\r\n"), 9003)),
              "Couldn't find mail server for domain 'a.test' - No.\r\n");
    EXPECT_EQ(ToUtf8(FailedLookupText(OLESTR("a.test"), WideView(), 9003)),
              "Couldn't find mail server for domain 'a.test' - DNS error 9003");
}

}  // namespace
}  // namespace quorvane

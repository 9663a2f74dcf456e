#include "smtp/direct_delivery.h"

#include <winsock2.h>

#include <list>
#include <unordered_map>

#include "smtp/mail_exchangers.h"

namespace quorvane {
namespace {

// Exchangers of a domain that are tried, the preferred ones. No honest domain has that many; an
// answer can list thousands of dead ones, which would hold the sender for days.
constexpr int kMaxExchangersTried = 100;

WideString LowerAscii(WideView text) {
    WideString lower(text);
    for (WCHAR& c : lower) {
        if (c >= WCHAR('A') && c <= WCHAR('Z')) {
            c = static_cast<WCHAR>(c + ('a' - 'A'));
        }
    }
    return lower;
}

int ConnectToFirst(const std::list<MxHost>& servers, const DirectSettings& settings,
                   CSmtp& session) {
    int result = -1;
    int tried = 0;
    for (const MxHost& server : servers) {
        if (result == 0 || tried == kMaxExchangersTried) {
            break;
        }
        ++tried;
        session.m_user.clear();
        session.m_password.clear();
        session.m_domain.clear();
        session.m_spa = settings.spa;
        session.m_port = htons(static_cast<USHORT>(server.port));
        if (!settings.senderHostname.empty()) {
            session.m_heloHost = settings.senderHostname;
        }
        result = session.Connect(server.host, settings.mode);
    }
    return result;
}

int DeliverToDomain(const DomainGroup& group, COutgoingMessage& message,
                    const DirectSettings& settings, CSmtp& session, WideString& errorText) {
    std::list<MxHost> servers;
    LookupMailServers(group.domain, errorText, servers);
    if (!errorText.empty()) {
        return -1;
    }
    int result = ConnectToFirst(servers, settings, session);
    if (result == 0) {
        result = session.SendMailTo(message, group.recipients);
    }
    if (result == 0) {
        session.Close();
    } else {
        errorText = session.GetErrorText();
    }
    return result;
}

}  // namespace

void GroupRecipientsByDomain(const COutgoingMessage& message, std::vector<DomainGroup>& groups) {
    groups.clear();
    std::unordered_map<WideString, std::size_t> known;  // domain in lower case, index of its group
    for (const auto* const list : {&message.to, &message.cc, &message.bcc}) {
        for (const CAddressEntry& recipient : *list) {
            const std::size_t at = recipient.address.find(WCHAR('@'));
            if (at == WideString::npos) {
                continue;
            }
            const WideView domain = WideView(recipient.address).substr(at + 1);
            const auto [entry, isNew] = known.try_emplace(LowerAscii(domain), groups.size());
            if (isNew) {
                groups.push_back({WideString(domain), {}});
            }
            groups[entry->second].recipients.push_back(recipient);
        }
    }
}

int DeliverDirect(COutgoingMessage& message, const DirectSettings& settings, CSmtp& session,
                  WideString& errorText) {
    errorText.clear();
    std::vector<DomainGroup> groups;
    GroupRecipientsByDomain(message, groups);
    for (const DomainGroup& group : groups) {
        if (const int result = DeliverToDomain(group, message, settings, session, errorText)) {
            return result;
        }
    }
    return 0;
}

}  // namespace quorvane

#include "smtp/mail_exchangers.h"

#include <windns.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

#include "smtp/failure_text.h"

namespace quorvane {
namespace {

constexpr std::size_t kSystemTextSize = 512;

constexpr IP4_ADDRESS Address(IP4_ADDRESS a, IP4_ADDRESS b, IP4_ADDRESS c, IP4_ADDRESS d) {
    return a | b << 8 | c << 16 | d << 24;
}

// Public recursive resolvers of three operators: they are asked when the system's own resolvers are
// out of order or don't look beyond the local network.
constexpr IP4_ADDRESS kPublicResolvers[] = {
    Address(8, 8, 8, 8), Address(1, 1, 1, 1), Address(9, 9, 9, 9),          // first choice of each
    Address(8, 8, 4, 4), Address(1, 0, 0, 1), Address(149, 112, 112, 112),  // their second ones
};

// An IP4_ARRAY that holds all of them.
struct ResolverArray {
    DWORD count = std::size(kPublicResolvers);
    IP4_ADDRESS addresses[std::size(kPublicResolvers)];
};
static_assert(offsetof(ResolverArray, addresses) == offsetof(IP4_ARRAY, AddrArray));

struct RecordDeleter {
    void operator()(DNS_RECORDW* records) const {
        DnsRecordListFree(reinterpret_cast<PDNS_RECORD>(records), DnsFreeRecordList);
    }
};
using Records = std::unique_ptr<DNS_RECORDW, RecordDeleter>;

DNS_STATUS Query(const WideString& domain, DWORD options, ResolverArray* servers,
                 Records& records) noexcept {
    PDNS_RECORD found = nullptr;
    const DNS_STATUS status = DnsQuery_W(domain.c_str(), DNS_TYPE_MX, options,
                                         reinterpret_cast<IP4_ARRAY*>(servers), &found, nullptr);
    records.reset(reinterpret_cast<DNS_RECORDW*>(found));
    return status;
}

// Some systems keep the servers of such a query as those of the thread, for good: it gets a thread
// that nothing else will be looked up in. `status` stays as it is when there can't be one.
void QueryPublicResolvers(const WideString& domain, DNS_STATUS& status, Records& records) {
    ResolverArray servers;
    std::copy(std::begin(kPublicResolvers), std::end(kPublicResolvers), servers.addresses);
    try {
        std::thread([&]() noexcept {
            status = Query(domain, DNS_QUERY_BYPASS_CACHE, &servers, records);
        }).join();
    } catch (const std::system_error&) {
        // No thread to be had: the first query's failure is the one to tell of.
    }
}

// Empty when the system has no text for the status.
WideString SystemText(DNS_STATUS status) {
    WCHAR text[kSystemTextSize];
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                       static_cast<DWORD>(status), MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), text,
                       kSystemTextSize, nullptr);
    return {text, length};
}

WideString WithoutLastDot(const WCHAR* name) {
    WideString host = name ? name : OLESTR("");
    if (host.ends_with(WCHAR('.'))) {
        host.pop_back();
    }
    return host;
}

// Appends the exchangers of the records in their order. True when there was at least one, be it the
// null exchanger, which is appended as little as any other without a name.
bool AppendExchangers(const DNS_RECORDW* records, std::list<MxHost>& servers) {
    bool found = false;
    for (const DNS_RECORDW* record = records; record; record = record->pNext) {
        if (record->wType != DNS_TYPE_MX) {
            continue;
        }
        found = true;
        MxHost server;
        server.host = WithoutLastDot(record->Data.MX.pNameExchange);
        server.preference = record->Data.MX.wPreference;
        if (!server.host.empty()) {
            servers.push_back(std::move(server));
        }
    }
    return found;
}

}  // namespace

void LookupMailServers(const WideString& domain, WideString& errorText,
                       std::list<MxHost>& servers) {
    servers.clear();
    errorText.clear();
    if (domain.empty()) {
        errorText = EmptyDomainText();
        return;
    }
    Records records;
    DNS_STATUS status = Query(domain, DNS_QUERY_STANDARD, nullptr, records);
    if (status != 0) {
        QueryPublicResolvers(domain, status, records);
    }
    if (status != 0) {
        errorText = FailedLookupText(domain, SystemText(status), status);
        return;
    }
    const bool hasExchanger = AppendExchangers(records.get(), servers);
    if (servers.empty()) {
        errorText = hasExchanger ? NoMailWantedText(domain) : NoMailServerText(domain);
        return;
    }
    // The sort of a list is stable.
    servers.sort([](const MxHost& a, const MxHost& b) { return a.preference < b.preference; });
}

}  // namespace quorvane

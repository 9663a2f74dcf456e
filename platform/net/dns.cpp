#include <windns.h>
#include <winerror.h>

#include <algorithm>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dns_answer.h"
#include "dns_client.h"

namespace quorvane::dns {
namespace {

// One entry of a list, with the texts that it points to.
struct Entry {
    DNS_RECORDW record{};
    std::u16string name;
    std::u16string exchanger;
};

struct ListDeleter {
    void operator()(DNS_RECORDW* list) const { DnsRecordListFree(list, DnsFreeRecordList); }
};
using List = std::unique_ptr<DNS_RECORDW, ListDeleter>;

DNS_STATUS StatusOf(Outcome outcome) {
    switch (outcome) {
        case Outcome::Answered:
            return ERROR_SUCCESS;
        case Outcome::NoSuchName:
            return DNS_ERROR_RCODE_NAME_ERROR;
        case Outcome::NoRecords:
            return DNS_INFO_NO_RECORDS;
        case Outcome::NotUnderstood:
            return DNS_ERROR_RCODE_FORMAT_ERROR;
        case Outcome::NotImplemented:
            return DNS_ERROR_RCODE_NOT_IMPLEMENTED;
        case Outcome::Refused:
            return DNS_ERROR_RCODE_REFUSED;
        case Outcome::BadName:
            return DNS_ERROR_INVALID_NAME_CHAR;
        case Outcome::BadAnswer:
            return DNS_ERROR_BAD_PACKET;
        case Outcome::TimedOut:
            return ERROR_TIMEOUT;
        case Outcome::OutOfMemory:
            return ERROR_NOT_ENOUGH_MEMORY;
        case Outcome::ServerFailed:
            break;
    }
    return DNS_ERROR_RCODE_SERVER_FAILURE;
}

// The name in bytes; none when it holds what the resolver would take for more than a character.
std::optional<std::string> Narrow(std::u16string_view name) {
    const auto isPlain = [](char16_t c) { return c > u' ' && c < 0x7F && c != u'\\'; };
    if (name.empty() || !std::all_of(name.begin(), name.end(), isPlain)) return std::nullopt;
    return std::string(name.begin(), name.end());
}

std::u16string Widen(std::string_view text) {
    return {text.begin(), text.end()};
}

DNS_RECORDW* MakeEntry(const Record& record) {
    auto entry = std::make_unique<Entry>();
    entry->name = Widen(record.name);
    entry->record.pName = entry->name.data();
    entry->record.wType = record.type;
    if (record.type == DNS_TYPE_MX) {
        entry->exchanger = Widen(record.exchanger);
        entry->record.Data.MX.pNameExchange = entry->exchanger.data();
        entry->record.Data.MX.wPreference = record.preference;
    }
    return &entry.release()->record;
}

List MakeList(const std::vector<Record>& records) {
    List list;
    std::for_each(records.rbegin(), records.rend(), [&](const Record& record) {
        DNS_RECORDW* const entry = MakeEntry(record);
        entry->pNext = list.release();
        list.reset(entry);
    });
    return list;
}

DNS_STATUS Query(std::u16string_view name, WORD type, const IP4_ARRAY* servers, List& list) {
    const std::optional<std::string> narrow = Narrow(name);
    if (!narrow) return DNS_ERROR_INVALID_NAME_CHAR;
    std::span<const std::uint32_t> addresses;
    if (servers) addresses = {servers->AddrArray, servers->AddrCount};
    std::vector<unsigned char> answer;
    if (const Outcome outcome = Ask(*narrow, type, addresses, answer);
        outcome != Outcome::Answered) {
        return StatusOf(outcome);
    }
    std::vector<Record> records;
    if (!ParseAnswer(answer, records)) return DNS_ERROR_BAD_PACKET;
    list = MakeList(records);
    return ERROR_SUCCESS;
}

}  // namespace
}  // namespace quorvane::dns

DNS_STATUS DnsQuery_W(PCWSTR name, WORD type, DWORD, PVOID servers, PDNS_RECORD* records, PVOID*) {
    using namespace quorvane::dns;
    *records = nullptr;
    if (!name) return ERROR_INVALID_PARAMETER;
    try {
        List list;
        const DNS_STATUS status = Query(name, type, static_cast<const IP4_ARRAY*>(servers), list);
        *records = list.release();
        return status;
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

void DnsRecordListFree(PDNS_RECORD records, DNS_FREE_TYPE) {
    using quorvane::dns::Entry;
    while (records) {
        DNS_RECORDW* const next = records->pNext;
        // The entry starts with its record.
        delete reinterpret_cast<Entry*>(records);
        records = next;
    }
}

#include "dns_answer.h"

#include <arpa/nameser.h>

namespace quorvane::dns {
namespace {

constexpr std::size_t kPreferenceSize = 2;

bool ReadExchanger(const ns_msg& message, const ns_rr& source, Record& record) {
    if (ns_rr_rdlen(source) <= kPreferenceSize) return false;
    record.preference = ns_get16(ns_rr_rdata(source));
    char name[NS_MAXDNAME];
    const int length = ns_name_uncompress(ns_msg_base(message), ns_msg_end(message),
                                          ns_rr_rdata(source) + kPreferenceSize, name, sizeof name);
    if (length < 0) return false;
    record.exchanger = name;
    return true;
}

}  // namespace

bool ParseAnswer(std::span<const unsigned char> answer, std::vector<Record>& records) {
    ns_msg message;
    if (ns_initparse(answer.data(), static_cast<int>(answer.size()), &message) != 0) return false;
    for (const ns_sect section : {ns_s_an, ns_s_ns, ns_s_ar}) {
        for (int i = 0; i < ns_msg_count(message, section); ++i) {
            ns_rr source;
            if (ns_parserr(&message, section, i, &source) != 0) return false;
            Record record;
            record.name = ns_rr_name(source);
            record.type = ns_rr_type(source);
            if (record.type == ns_t_mx && !ReadExchanger(message, source, record)) return false;
            records.push_back(std::move(record));
        }
    }
    return true;
}

}  // namespace quorvane::dns

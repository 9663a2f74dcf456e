#include "bench/side_by_side/describe.h"

#include <nlohmann/json.hpp>

namespace quorvane::bench {
namespace {

std::string Hexadecimal(const std::string& bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        text += kDigits[static_cast<unsigned char>(c) >> 4];
        text += kDigits[c & 0xF];
    }
    return text;
}

}  // namespace

std::string Describe(const Workload& workload) {
    nlohmann::json all = {{"sender", {workload.senderName, workload.senderAddress}},
                          {"subject", workload.subject}};
    for (std::size_t i = 0; i < workload.recipientAddresses.size(); ++i) {
        all["recipients"].push_back({workload.recipientNames[i], workload.recipientAddresses[i]});
    }
    for (const WorkloadBody& body : workload.bodies) {
        all["bodies"].push_back(
            {{"type", body.type}, {"text", body.text}, {"encoding", body.encoding}});
    }
    all["attachments"] = nlohmann::json::array();
    for (const WorkloadAttachment& attachment : workload.attachments) {
        all["attachments"].push_back({{"name", attachment.name},
                                      {"type", attachment.type},
                                      {"id", attachment.contentId},
                                      {"path", attachment.path},
                                      {"data", Hexadecimal(attachment.data)}});
    }
    return all.dump();
}

}  // namespace quorvane::bench

#include "bench/workloads.h"

#include <algorithm>
#include <fstream>
#include <random>
#include <stdexcept>

namespace quorvane::bench {
namespace {

constexpr std::size_t kKib = 1024;
constexpr std::size_t kMib = 1024 * kKib;

WorkloadBody Plain(std::string text, std::string encoding = "7bit") {
    return {"text/plain", std::move(text), std::move(encoding)};
}

Workload Base() {
    Workload workload;
    workload.senderAddress = "sender@example.com";
    workload.recipientNames = {""};
    workload.recipientAddresses = {"recipient@example.org"};
    workload.subject = "Figures of the month";
    return workload;
}

Workload FileMessage(const std::string& folder, std::size_t size, bool isLoaded) {
    Workload workload = Base();
    workload.bodies = {Plain("The archive is attached.\r\n")};
    workload.attachments = {{"archive.bin", "application/octet-stream", "",
                             folder + "/" + std::to_string(size), "", isLoaded}};
    return workload;
}

Workload ProseMessage() {
    Workload workload = Base();
    workload.bodies = {Plain(Prose(5 * kMib), "quoted-printable")};
    return workload;
}

Workload SmallMessage() {
    Workload workload = Base();
    workload.bodies = {
        Plain("Hello,\r\n\r\nthe nightly run has ended without errors.\r\n"
              "Files: 1284, bytes: 88123904, minutes: 14.\r\n\r\nYour server\r\n")};
    return workload;
}

Workload RichMessage() {
    Workload workload = Base();
    workload.senderName = "J\u00FCrgen M\u00FCller";
    workload.recipientNames = {"Zo\u00EB Garc\u00EDa", "Mail Room", ""};
    workload.recipientAddresses = {"zoe@example.org", "mailroom@example.org", "c@example.org"};
    workload.subject = "Gr\u00FC\u00DFe aus K\u00F6ln: Bericht f\u00FCr August";
    const std::string prose = Prose(2 * kKib);
    workload.bodies = {Plain(prose, "quoted-printable"),
                       {"text/html",
                        "<html><body>\r\n<img src=\"cid:logo@example.com\">\r\n<p>" + prose +
                            Prose(2 * kKib) + "</p>\r\n</body></html>\r\n",
                        "quoted-printable"}};
    workload.attachments = {
        {"logo.png", "image/png", "logo@example.com", "", RandomBytes(6 * kKib), false},
        {"Bericht f\u00FCr August.pdf", "application/pdf", "", "", RandomBytes(24 * kKib), false}};
    return workload;
}

Workload RecipientsMessage(std::size_t count) {
    Workload workload = SmallMessage();
    workload.recipientNames.assign(count, "A Recipient");
    workload.recipientAddresses.clear();
    for (std::size_t i = 0; i < count; ++i) {
        workload.recipientAddresses.push_back("recipient" + std::to_string(i) + "@example.org");
    }
    return workload;
}

Workload AttachmentsMessage(std::size_t count) {
    Workload workload = SmallMessage();
    for (std::size_t i = 0; i < count; ++i) {
        workload.attachments.push_back({"file" + std::to_string(i) + ".bin",
                                        "application/octet-stream", "", "", RandomBytes(10 * kKib),
                                        false});
    }
    return workload;
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    std::string bytes(static_cast<std::size_t>(std::max<std::streamoff>(file.tellg(), 0)), '\0');
    file.seekg(0).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file) throw std::runtime_error("can't read " + path);
    return bytes;
}

}  // namespace

AttachmentBytes::AttachmentBytes(const WorkloadAttachment& attachment) : own_(attachment.data) {
    if (attachment.isLoaded) loaded_ = ReadFile(attachment.path);
}

Workload MakeWorkload(const std::string& name, const std::string& folder) {
    constexpr std::size_t kFile = 25 * kMib;
    if (name == "base64") return FileMessage(folder, kFile, false);
    if (name == "block") return FileMessage(folder, kFile, true);
    if (name == "qp") return ProseMessage();
    if (name == "small") return SmallMessage();
    if (name == "rich") return RichMessage();
    const std::size_t colon = name.find(':');
    const std::string kind = name.substr(0, colon);
    if (colon != std::string::npos) {
        const std::size_t number = std::stoul(name.substr(colon + 1));
        if (kind == "size") return FileMessage(folder, number, false);
        if (kind == "recipients") return RecipientsMessage(number);
        if (kind == "attachments") return AttachmentsMessage(number);
    }
    throw std::runtime_error("no such workload: " + name);
}

std::string RandomBytes(std::size_t size) {
    std::mt19937_64 random(42);
    std::string bytes(size, '\0');
    for (char& c : bytes) c = static_cast<char>(random());
    return bytes;
}

std::string Prose(std::size_t size) {
    static const char* const kWords[] = {"the",     "report",   "of",     "a",
                                         "service", "and",      "number", "is",
                                         "where",   "f\u00FCr", "in",     "time"};
    std::mt19937 random(42);
    std::string text;
    std::size_t lineStart = 0;
    std::size_t lineSize = 60;
    while (text.size() < size) {
        text += kWords[random() % std::size(kWords)];
        if (text.size() - lineStart > lineSize) {
            text += ".\r\n";
            lineStart = text.size();
            lineSize = 10 + random() % 290;
        } else {
            text += ' ';
        }
    }
    return text + "\r\n";
}

}  // namespace quorvane::bench

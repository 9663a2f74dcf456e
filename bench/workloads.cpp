#include "bench/workloads.h"

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

Workload Base(std::string id, std::string title) {
    Workload workload;
    workload.id = std::move(id);
    workload.title = std::move(title);
    workload.senderAddress = "sender@example.com";
    workload.recipientNames = {""};
    workload.recipientAddresses = {"recipient@example.org"};
    workload.subject = "Figures of the month";
    return workload;
}

Workload FileMessage(const std::string& folder) {
    Workload workload = Base("base64", "25 MiB file, Base64");
    const std::string path = folder + "/attachment.bin";
    std::ofstream file(path, std::ios::binary);
    const std::string content = RandomBytes(25 * kMib);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!file) throw std::runtime_error("can't write " + path);
    workload.bodies = {Plain("The archive is attached.\r\n")};
    workload.attachments = {{"archive.bin", "application/octet-stream", "", path, ""}};
    return workload;
}

Workload ProseMessage() {
    Workload workload = Base("qp", "5 MiB body, quoted-printable");
    workload.bodies = {Plain(Prose(5 * kMib), "quoted-printable")};
    return workload;
}

Workload SmallMessage() {
    Workload workload = Base("small", "small text");
    workload.bodies = {
        Plain("Hello,\r\n\r\nthe nightly run has ended without errors.\r\n"
              "Files: 1284, bytes: 88123904, minutes: 14.\r\n\r\nYour server\r\n")};
    return workload;
}

Workload RichMessage() {
    Workload workload = Base("rich", "rich: alternative, inline, attachment");
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
        {"logo.png", "image/png", "logo@example.com", "", RandomBytes(6 * kKib)},
        {"Bericht f\u00FCr August.pdf", "application/pdf", "", "", RandomBytes(24 * kKib)}};
    return workload;
}

}  // namespace

std::vector<Workload> MakeWorkloads(const std::string& folder) {
    return {FileMessage(folder), ProseMessage(), SmallMessage(), RichMessage()};
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

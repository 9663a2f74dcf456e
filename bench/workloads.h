// The messages that are measured, in the form in which every contender can take them.
#pragma once

#include <string>
#include <vector>

namespace quorvane::bench {

struct WorkloadBody {
    std::string type;      // "text/plain" or "text/html"
    std::string text;      // UTF-8, lines end in CRLF
    std::string encoding;  // "7bit" or "quoted-printable"
};

struct WorkloadAttachment {
    std::string name;  // UTF-8
    std::string type;
    std::string contentId;  // not empty for an inline attachment
    std::string path;       // of a file, or empty and
    std::string data;       // the bytes
    // The program reads the file into a block of memory, hands that over and frees it.
    bool isLoaded = false;

    bool IsFile() const { return !path.empty() && !isLoaded; }
};

// The bytes of an attachment that isn't a file, while a program hands them over.
class AttachmentBytes {
public:
    explicit AttachmentBytes(const WorkloadAttachment& attachment);
    const std::string& operator*() const { return loaded_.empty() ? own_ : loaded_; }

private:
    const std::string& own_;
    std::string loaded_;
};

struct Workload {
    std::string senderName, senderAddress;  // names and subject are UTF-8
    std::vector<std::string> recipientNames, recipientAddresses;
    std::string subject;
    std::vector<WorkloadBody> bodies;  // the alternative text first
    std::vector<WorkloadAttachment> attachments;
};

// The workload of that name:
//   base64, block   a file of 25 MiB attached; the same file, loaded
//   qp, small, rich
//   size:N          a file of N bytes attached
//   recipients:N, attachments:N   so many of them, these of 10 KiB each
// Files are in the folder and named after their size in bytes.
Workload MakeWorkload(const std::string& name, const std::string& folder);

// Bytes and text without a pattern, the same in every run.
std::string RandomBytes(std::size_t size);
// Prose of UTF-8 words, one in twelve with letters outside of ASCII, in paragraphs of up to 300
// characters to the line.
std::string Prose(std::size_t size);

}  // namespace quorvane::bench

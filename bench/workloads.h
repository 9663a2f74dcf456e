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
};

struct Workload {
    std::string id;                         // as the command line names it
    std::string title;                      // as the table names it
    std::string senderName, senderAddress;  // names and subject are UTF-8
    std::vector<std::string> recipientNames, recipientAddresses;
    std::string subject;
    std::vector<WorkloadBody> bodies;  // the alternative text first
    std::vector<WorkloadAttachment> attachments;
};

// The four messages: base64, qp, small, rich. The attachment of the first is a file of 25 MiB that
// is made in the folder.
std::vector<Workload> MakeWorkloads(const std::string& folder);

// Bytes and text without a pattern, the same in every run.
std::string RandomBytes(std::size_t size);
// Prose of UTF-8 words, one in twelve with letters outside of ASCII, in paragraphs of up to 300
// characters to the line.
std::string Prose(std::size_t size);

}  // namespace quorvane::bench

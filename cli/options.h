// What the command line of quorvane-send asks for.
#pragma once

#include <string>
#include <vector>

#include "cli/option_values.h"
#include "quorvane.hpp"

namespace quorvane::cli {

// All text is UTF-8; one that wasn't given is empty.
struct Options {
    Server server;
    bool direct = false;  // to the recipients' own servers; there is no server then
    std::string user;
    std::string password;
    bool ssl = false;
    bool spa = false;
    int timeout = 30;  // seconds
    int attempts = 2;
    std::string helo;

    Address from;
    std::vector<Address> to;
    std::vector<Address> cc;
    std::vector<Address> bcc;
    Address replyTo;
    std::string subject;
    std::string messageId;  // without angle brackets
    MailPriority priority = MailPriorityNormal;
    bool readReceipt = false;
    std::vector<Header> headers;

    std::string body;      // lines end in CRLF
    std::string bodyFile;  // not empty: the component reads the body from it
    bool html = false;
    std::string picturesOf;   // not empty: the HTML file whose pictures go along
    std::string alternative;  // lines end in CRLF
    std::string charset;
    std::string alternativeCharset;
    MailEncoding encoding = MailEncodingDefault;
    std::vector<FileArgument> files;

    int count = 1;
    bool async = false;  // through the queue
    int threads = 5;     // of the queue
    bool json = false;
    bool quiet = false;
    bool verbose = false;
    bool dryRun = false;  // to nobody; there may be no server then

    std::string information;  // not empty: to be shown, and nothing is sent
};

// Reads the arguments, without the program's name, and the texts in files and standard input that
// they refer to. Throws UsageError.
Options ParseOptions(const std::vector<std::string>& arguments);

}  // namespace quorvane::cli

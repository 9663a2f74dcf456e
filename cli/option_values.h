// The forms in which the command line writes addresses, files, header fields and servers.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace quorvane::cli {

// The command was used wrongly; what() is a sentence for the user, in UTF-8.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct Address {
    std::string name;
    std::string address;
};

// A file to send along.
struct FileArgument {
    std::string file;
    std::string name;         // as it appears in the mail
    std::string contentType;  // empty lets the component choose
    std::string charset;      // of text
    std::string contentId;    // not empty for a file that is shown inside the message
};

struct Header {
    std::string name;
    std::string value;
};

struct Server {
    std::string host;
    int port = 25;
};

// All of them throw UsageError for text of any other form.

// 'user@host' or 'Name <user@host>', the name quoted or not.
Address ParseAddress(std::string_view text);
// 'FILE[,name=N][,type=T][,cid=ID]'. The file's own name may hold commas; the name in the mail is
// the file's unless given; a type may carry the character set of text, which is UTF-8 otherwise.
FileArgument ParseFileArgument(std::string_view text);
// 'Name: value'.
Header ParseHeader(std::string_view text);
// 'HOST[:PORT]'.
Server ParseServer(std::string_view text);
// An identifier with or without its angle brackets; the result is without.
std::string ParseMessageId(std::string_view text);

}  // namespace quorvane::cli

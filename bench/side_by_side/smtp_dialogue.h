// The few lines of SMTP that programs write themselves when their library only composes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvane::bench {

class SmtpDialogue {
public:
    // Connects to 127.0.0.1. Every function throws when the server says anything but yes.
    explicit SmtpDialogue(int port);
    ~SmtpDialogue();
    SmtpDialogue(const SmtpDialogue&) = delete;
    SmtpDialogue& operator=(const SmtpDialogue&) = delete;

    // Everything before the text.
    void Open(const std::string& sender, const std::vector<std::string>& recipients);
    // Some of the text. Dots are doubled already.
    void SendPart(std::string_view text);
    // The rest of it, whose last line has its end.
    void SendText(std::string_view text);
    void Close();

private:
    void SendAll(std::string_view text, std::string_view end);
    void Say(std::string_view command, char kind);
    void Expect(char kind);

    int socket_;
};

}  // namespace quorvane::bench

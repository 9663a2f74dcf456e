#include "bench/side_by_side/smtp_dialogue.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace quorvane::bench {

SmtpDialogue::SmtpDialogue(int port) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<in_port_t>(port));
    if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        close(socket_);
        throw std::runtime_error("can't connect");
    }
}

SmtpDialogue::~SmtpDialogue() {
    close(socket_);
}

void SmtpDialogue::Open(const std::string& sender, const std::vector<std::string>& recipients) {
    Expect('2');
    Say("EHLO localhost\r\n", '2');
    Say("MAIL FROM:<" + sender + ">\r\n", '2');
    for (const std::string& recipient : recipients) Say("RCPT TO:<" + recipient + ">\r\n", '2');
    Say("DATA\r\n", '3');
}

void SmtpDialogue::SendPart(std::string_view text) {
    SendAll(text, {});
}

void SmtpDialogue::SendText(std::string_view text) {
    // Together, or the few bytes of the end would wait for what is under way.
    SendAll(text, ".\r\n");
    Expect('2');
}

void SmtpDialogue::SendAll(std::string_view text, std::string_view end) {
    while (!text.empty() || !end.empty()) {
        std::array<iovec, 2> pieces = {iovec{const_cast<char*>(text.data()), text.size()},
                                       iovec{const_cast<char*>(end.data()), end.size()}};
        const ssize_t sent = writev(socket_, pieces.data(), pieces.size());
        if (sent < 0) throw std::runtime_error("the connection broke");
        const std::size_t ofText = std::min(text.size(), static_cast<std::size_t>(sent));
        text.remove_prefix(ofText);
        end.remove_prefix(static_cast<std::size_t>(sent) - ofText);
    }
}

void SmtpDialogue::Close() {
    Say("QUIT\r\n", '2');
}

void SmtpDialogue::Say(std::string_view command, char kind) {
    if (write(socket_, command.data(), command.size()) != static_cast<ssize_t>(command.size())) {
        throw std::runtime_error("the connection broke");
    }
    Expect(kind);
}

// A reply ends with a line that has a space behind its code.
void SmtpDialogue::Expect(char kind) {
    std::array<char, 4096> buffer;
    std::size_t size = 0;
    std::size_t line = 0;
    while (true) {
        const ssize_t count = read(socket_, buffer.data() + size, buffer.size() - size);
        if (count <= 0) throw std::runtime_error("the connection broke");
        size += static_cast<std::size_t>(count);
        const std::string_view reply(buffer.data(), size);
        for (std::size_t end; (end = reply.find("\r\n", line)) != reply.npos; line = end + 2) {
            if (end - line > 3 && reply[line + 3] == '-') continue;
            if (reply[line] != kind) throw std::runtime_error(std::string(reply));
            return;
        }
    }
}

}  // namespace quorvane::bench

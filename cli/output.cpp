#include "cli/output.h"

#include <nlohmann/json.hpp>

#include "cli/style.h"

namespace quorvane::cli {

std::string OutcomeAsJson(const client::Outcome& outcome) {
    return OutcomeAsJson(outcome, 0, outcome.sent() ? MailStatusSent : MailStatusFailed);
}

std::string OutcomeAsJson(const client::Outcome& outcome, LONG number, MailStatus status) {
    nlohmann::ordered_json line;
    line["number"] = nullptr;
    if (number != 0) line["number"] = number;
    line["status"] = status == MailStatusSent     ? "sent"
                     : status == MailStatusFailed ? "failed"
                                                  : "cancelled";
    line["code"] = outcome.code;
    line["text"] = outcome.text;
    return line.dump();
}

std::string OutcomeAsText(const client::Outcome& outcome) {
    std::u16string text = client::ToUtf16(outcome.text);
    text.erase(text.find_last_not_of(u" \r\n") + 1);
    std::u16string shown;
    for (const char16_t unit : text) {
        const bool control = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
        if (unit == u'\n') {
            shown += u"\n    ";
        } else if (unit != u'\r') {
            shown += control ? u'?' : unit;
        }
    }
    const std::string code = std::to_string(outcome.code), said = client::ToUtf8(shown);
    return said.starts_with(code) ? said : code + ": " + said;
}

std::string CaughtAsText(const CaughtMessage& caught, bool forTerminal) {
    std::string text = "MAIL FROM:<" + caught.from + ">\n";
    for (const std::string& to : caught.to) text += "RCPT TO:<" + to + ">\n";
    text += '\n';
    for (const char c : caught.message) {
        const auto byte = static_cast<unsigned char>(c);
        const bool control = (byte < 0x20 && c != '\n' && c != '\t') || byte == 0x7F;
        if (c == '\r') continue;
        text += forTerminal && control ? '?' : c;
    }
    return text;
}

std::string CaughtAsJson(const CaughtMessage& caught) {
    nlohmann::ordered_json line;
    line["number"] = nullptr;
    line["status"] = "composed";
    line["code"] = 0;
    line["text"] = "";
    line["from"] = caught.from;
    line["to"] = caught.to;
    line["message"] = caught.message;
    return line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

std::string Summary(int sent, int count) {
    if (count == 1) return sent == 1 ? "Sent." : "Not sent.";
    return std::to_string(sent) + " of " + std::to_string(count) + " messages sent.";
}

std::string SummaryLine(int sent, int count) {
    const Colour colour = sent == count ? Colour::kGreen : Colour::kNone;
    return ForOutput(colour, Summary(sent, count)) + "\n";
}

std::string InterruptedSummary(const Progress& progress) {
    const std::string text = "interrupted. ";
    if (progress.count == 1) return text + Summary(progress.sent, progress.count);
    const int cancelled = progress.count - progress.sent - progress.failed;
    return text + std::to_string(progress.sent) + " of " + std::to_string(progress.count) +
           " sent, " + std::to_string(progress.failed) + " failed, " + std::to_string(cancelled) +
           " cancelled.";
}

}  // namespace quorvane::cli

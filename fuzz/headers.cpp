// Headers: whatever texts a caller sets, the message has the lines, parts and content that it has
// with harmless ones.
#include <array>

#include "fuzz/input.h"
#include "mime/base64.h"
#include "mime/header_writer.h"
#include "mime/message_composer.h"

namespace {

using namespace quorvane;
using fuzzing::Require;

constexpr std::size_t kTexts = 14;
constexpr std::string_view kHarmless = "x";  // what the caller's field is called without a text
constexpr std::size_t kShort = 150;    // bytes of a whole input that never makes a line too long
constexpr std::size_t kMaxLine = 998;  // RFC 5322 section 2.1.1

// A message with three parts and every text in it; no text is empty, since those leave fields out.
std::string Compose(const std::array<std::string, kTexts>& texts) {
    std::array<WideString, kTexts> wide;
    std::transform(texts.begin(), texts.end(), wide.begin(),
                   [](const std::string& text) { return OLESTR("x") + FromAnsi(text); });
    COutgoingMessage message;
    message.subject = wide[0];
    message.sender = {wide[1], wide[2]};
    message.replyTo = {wide[3], wide[4]};
    message.to = {{wide[5], wide[6]}, {wide[6], wide[5]}};
    message.cc = {{wide[7], wide[1]}};
    message.messageId = wide[8];
    message.headers.Append(texts[9].empty() ? kHarmless : texts[9], texts[10]);
    for (const bool isAlternative : {true, false}) {
        CBodyPart& body = message.bodyParts.emplace_back();
        body.text = OLESTR("Hello");
        body.encoding = 1;
        body.charset = isAlternative ? WideString(OLESTR("iso-8859-1")) : wide[11];
        body.contentType = isAlternative ? OLESTR("text/plain") : OLESTR("text/html");
    }
    CAttachmentPart& attachment = message.attachments.emplace_back();
    attachment.name = wide[12];
    attachment.contentType = wide[13];
    attachment.contentId = wide[8];
    attachment.charset = wide[11];
    attachment.encoding = 1;
    attachment.data = DataBlock::Copy(BytesOf("data"));
    std::string text;
    ComposeMessage(message, text);
    return text;
}

// One letter for each line of a field, blank line, boundary and line of content.
std::string Skeleton(std::string_view message, std::size_t& longest) {
    std::string skeleton;
    bool isHeader = true;
    while (!message.empty()) {
        const std::size_t end = message.find("\r\n");
        Require(end != std::string_view::npos, "the last line has an end");
        const std::string_view line = message.substr(0, end);
        message.remove_prefix(end + 2);
        longest = std::max(longest, line.size());
        Require(line.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos,
                "lines hold no CR, LF or NUL");
        Require(!line.starts_with('.') || line.starts_with(".."), "a dot in front is doubled");
        if (line.empty()) {
            isHeader = false;
            skeleton += '_';
        } else if (!isHeader && line.starts_with("--")) {
            isHeader = !line.ends_with("--");
            skeleton += 'B';
        } else if (!isHeader || (line[0] != ' ' && line[0] != '\t')) {
            skeleton += isHeader ? 'F' : 'c';
        }
    }
    return skeleton;
}

// True when the harmless message has such a field, whose place one of the caller's then takes.
bool IsStandardField(std::string_view message, std::string_view name) {
    for (std::string_view line; !message.starts_with("\r\n");
         message.remove_prefix(line.size() + 2)) {
        line = message.substr(0, message.find("\r\n"));
        const std::string_view field = line.substr(0, line.find(": "));
        if (field != kHarmless && EqualIgnoreCase(field, name)) return true;
    }
    return false;
}

void CheckLine(std::string_view name, std::string_view value) {
    std::string line, again, inPieces;
    AppendHeaderLine(line, name, {value});
    const std::size_t half = value.size() / 2;
    AppendHeaderLine(inPieces, name, {value.substr(0, half), value.substr(half)});
    Require(inPieces == line, "a value doesn't depend on its pieces");
    AppendHeaderLine(again, "x", {value});
    const std::string written = again.substr(3, again.size() - 5);
    again.clear();
    AppendHeaderLine(again, name, {written});
    Require(again == line, "a value that has been written is written as it is");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::Input input(data, size);
    std::array<std::string, kTexts> texts;
    for (std::string& text : texts) text = input.TakeText();
    CheckLine(texts[9], texts[10]);

    std::size_t longest = 0;
    static const std::string harmless = Compose({});
    static const std::string expected = Skeleton(harmless, longest);
    longest = 0;
    std::string skeleton = Skeleton(Compose(texts), longest);
    if (IsStandardField(harmless, texts[9])) skeleton.insert(0, 1, 'F');
    Require(skeleton == expected, "the structure doesn't depend on the texts");
    Require(size > kShort || longest <= kMaxLine, "short texts make short lines");
    return 0;
}

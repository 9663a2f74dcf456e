#include "tests/mime/composing.h"

#include <fstream>
#include <regex>

#include "mime/message_composer.h"
#include "mime/unique_stamp.h"

namespace quorvane {

COutgoingMessage SampleRecord() {
    COutgoingMessage record;
    record.sender.address = OLESTR("a@b.example");
    record.to.push_back({{}, OLESTR("c@d.example")});
    record.subject = OLESTR("Test");
    record.messageId = OLESTR("id");
    record.createdTime = {2026, 11, 5, 6, 9, 5, 3, 0};
    record.utcOffset = 100;
    return record;
}

CBodyPart TextBody(const WideString& text, const WideString& charset) {
    CBodyPart part;
    part.contentType = OLESTR("text/plain");
    part.charset = charset;
    part.text = text;
    return part;
}

CAttachmentPart DataAttachment(const WideString& name, std::string_view data) {
    CAttachmentPart part;
    part.name = name;
    part.encoding = 4;
    part.data = DataBlock::Copy({reinterpret_cast<const BYTE*>(data.data()), data.size()});
    return part;
}

std::string Compose(COutgoingMessage& message) {
    std::string out = "what was there before";
    ComposeMessage(message, out);
    return out;
}

std::string Pinned(const std::string& text) {
    static const std::regex boundary("MessagePart_([012])0000[0-7][0-9A-F]{3}_[0-9A-F]{8}");
    static const std::regex id("<00000[0-7][0-9A-F]{3}\\.[0-9A-F]{8}\\.");
    return std::regex_replace(std::regex_replace(text, boundary, "{B$1}"), id, "<{ID}.");
}

std::string HeaderOf(const std::string& message) {
    return message.substr(0, message.find("\r\n\r\n"));
}

std::string BodyOf(const std::string& message) {
    return message.substr(message.find("\r\n\r\n") + 4);
}

std::vector<std::string> FieldNames(const std::string& message) {
    const std::string header = "\r\n" + HeaderOf(message);
    std::vector<std::string> names;
    for (std::size_t at = 0; (at = header.find("\r\n", at)) != std::string::npos;) {
        at += 2;
        if (header[at] == ' ' || header[at] == '\t') continue;
        names.push_back(header.substr(at, header.find(':', at) - at));
    }
    return names;
}

std::string FieldValue(const std::string& message, const std::string& name) {
    const std::string header = "\r\n" + HeaderOf(message) + "\r\n";
    const std::size_t found = header.find("\r\n" + name + ": ");
    if (found == std::string::npos) return "(none)";
    const std::size_t start = found + name.size() + 4;
    std::size_t end = header.find("\r\n", start);
    while (end + 2 < header.size() && (header[end + 2] == ' ' || header[end + 2] == '\t')) {
        end = header.find("\r\n", end + 2);
    }
    return header.substr(start, end - start);
}

TempFolder::TempFolder() {
    std::string name = "quorvane-test-";
    AppendStamp(NextStamp(), '-', name);
    folder_ = std::filesystem::temp_directory_path() / name;
    std::filesystem::create_directory(folder_);
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

WideString TempFolder::Path(const std::string& name) const {
    const std::u8string folder = folder_.u8string();
    const std::string_view bytes(reinterpret_cast<const char*>(folder.data()), folder.size());
    return FromUtf8(bytes) + WCHAR('\\') + FromUtf8(name);
}

WideString TempFolder::Write(const std::string& name, std::string_view content) const {
    std::ofstream file(folder_ / name, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    return Path(name);
}

}  // namespace quorvane

// What the tests of the composer share: a record to start from, the composed text with the
// generated numbers taken out, and files.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "model/outgoing_message.h"

namespace quorvane {

// From a@b.example to c@d.example, subject "Test", 6 November 2026 09:05:03 +0100, identifier "id",
// without a body part.
COutgoingMessage SampleRecord();

CBodyPart TextBody(const WideString& text, const WideString& charset = OLESTR("iso-8859-1"));
CAttachmentPart DataAttachment(const WideString& name, std::string_view data);

std::string Compose(COutgoingMessage& message);

// The text with {B0}, {B1}, {B2} for boundaries and {ID} for the numbers of a message identifier.
std::string Pinned(const std::string& text);

// The header block without its last line end, and what follows the blank line.
std::string HeaderOf(const std::string& message);
std::string BodyOf(const std::string& message);

// Names of the header fields, in order.
std::vector<std::string> FieldNames(const std::string& message);
// The field's value as it stands, folds included; "(none)" when there is no such field.
std::string FieldValue(const std::string& message, const std::string& name);

// A folder that goes with the object.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // Paths with '\' before the last component, as a Windows caller gives them.
    WideString Path(const std::string& name) const;
    WideString Write(const std::string& name, std::string_view content) const;

private:
    std::filesystem::path folder_;
};

}  // namespace quorvane

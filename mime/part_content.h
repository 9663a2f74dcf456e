// The bytes that the parts of a message carry.
#pragma once

#include <cstddef>
#include <string>

#include "mime/file_reader.h"
#include "mime/transfer_encoding.h"
#include "model/parts.h"

namespace quorvane {

// A body part's bytes and the encoding for them.
struct BodyContent {
    std::string bytes;
    LONG encoding = EncodingDefault;  // chosen; EncodingDefault stays for a file that is unreadable
};

// Converts the part's text, or reads its file, unconverted, which nothing else may have open.
BodyContent LoadBody(const CBodyPart& part);

// An attachment's bytes: in memory, or in a file that will be encoded as it is read.
class AttachmentContent {
public:
    // Opens the file of a part without data.
    explicit AttachmentContent(const CAttachmentPart& part);

    // False when there is nothing to send: the file is missing, unreadable or empty.
    bool IsPresent() const { return present_; }
    LONG Encoding() const { return encoding_; }

    // Appends the encoded bytes. False when the file turned out to be unreadable or empty.
    bool AppendTo(std::string& out);

private:
    bool AppendFile(std::string& out);

    FileReader file_;
    std::string fileBytes_;   // for the encodings that look at the whole content
    std::string_view bytes_;  // empty while the file is still to be read
    LONG encoding_;
    bool present_ = false;
};

// Size of the encoded attachment, for ordinary content.
std::size_t AttachmentSizeEstimate(const CAttachmentPart& part);

}  // namespace quorvane

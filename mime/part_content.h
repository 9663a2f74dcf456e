// The bytes that the parts of a message carry.
#pragma once

#include <cstddef>
#include <string>

#include "mime/transfer_encoding.h"
#include "model/file_reader.h"
#include "model/parts.h"

namespace quorvane {

// A body part's content. The part must outlive it.
class BodyContent {
public:
    // Converts the text, unless that can be done while it is encoded, or reads the part's file,
    // unconverted, which nothing else may have open.
    BodyContent(const CBodyPart& part, FilePatience& patience);

    // 1 to 4; EncodingDefault for a file that can't be read, which has no content.
    LONG Encoding() const { return encoding_; }
    std::size_t SizeEstimate() const;
    // Appends the encoded content.
    void AppendTo(std::string& out) const;

private:
    void AppendText(std::string& out) const;

    const CBodyPart& part_;
    bool converts_ = false;  // the text is converted while it is encoded
    std::string bytes_;      // otherwise
    LONG encoding_ = EncodingDefault;
};

// An attachment's bytes: in memory, or in a file that will be encoded as it is read.
class AttachmentContent {
public:
    // Opens the file of a part without data.
    AttachmentContent(const CAttachmentPart& part, FilePatience& patience);

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
std::size_t AttachmentSizeEstimate(const CAttachmentPart& part, FilePatience& patience);

}  // namespace quorvane

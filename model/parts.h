// Body and attachment parts of a message, as plain values.
#pragma once

#include "automation/wide_string.h"
#include "model/data_block.h"

namespace quorvane {

// What a body part and an attachment part have in common.
struct CPartInfo {
    WideString contentType;  // empty lets the composer choose one
    WideString charset;      // character set name of text; may be empty
    WideString contentId;    // without angle brackets; empty for none
    LONG encoding = 0;       // MailEncoding, 0 to 4
};

struct CBodyPart : CPartInfo {
    WideString text;
    WideString file;  // path of a file that holds the body instead of the text; empty for none
};

struct CAttachmentPart : CPartInfo {
    CAttachmentPart() { charset = OLESTR("iso-8859-1"); }

    WideString file;  // path of the file to attach; may be empty when there is data
    WideString name;  // display name; empty uses the last component of the path
    bool isInline = false;
    DataBlock data;  // the bytes when they came from memory; then the file isn't read
};

// A MailEncoding value as parts store it: 1 to 4, or 0 for anything else.
constexpr LONG NormalizeEncoding(LONG encoding) {
    return encoding >= 1 && encoding <= 4 ? encoding : 0;
}

}  // namespace quorvane

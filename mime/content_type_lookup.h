// The content type of an attachment.
#pragma once

#include <string>

#include "automation/wide_string.h"
#include "model/parts.h"

namespace quorvane {

// The part's own content type when it has one; otherwise the one that the registry has for the
// name's extension, which begins at the first dot of the name; otherwise
// "application/octet-stream". A registered type of 260 characters or more is ignored.
WideString LookupContentType(const CAttachmentPart& attachment, WideView name);

}  // namespace quorvane

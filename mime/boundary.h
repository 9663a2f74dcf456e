// Boundaries of multipart bodies (RFC 2046 section 5.1.1).
#pragma once

#include <string>

#include "mime/unique_stamp.h"

namespace quorvane {

// The boundary for the level 0, 1 or 2 of a message: "MessagePart_", the level and the stamp, 30
// characters in all.
inline std::string MakeBoundary(int level, const UniqueStamp& stamp = NextStamp()) {
    std::string boundary = "MessagePart_";
    boundary.reserve(30);
    boundary += static_cast<char>('0' + level);
    AppendStamp(stamp, '_', boundary);
    return boundary;
}

}  // namespace quorvane

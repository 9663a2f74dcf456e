// Content types of file extensions.
#pragma once

#include <string>
#include <string_view>

namespace quorvane::platform {

// The content type that ~/.mime.types, else /etc/mime.types, gives a file extension, which is taken
// without its dot and in small letters; empty when they know none. The files are read once,
// and again only when the system was short of something.
std::string_view ContentTypeOf(std::string_view extension);

}  // namespace quorvane::platform

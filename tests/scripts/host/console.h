// Lines of UTF-8 on the standard streams.
#pragma once

#include <cstdio>
#include <string_view>

namespace scripthost {

// Writes the line with a line feed behind it at once, whatever the stream is connected to.
void WriteLine(std::FILE* stream, std::wstring_view line);

}  // namespace scripthost

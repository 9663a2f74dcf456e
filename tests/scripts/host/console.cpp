#include "tests/scripts/host/console.h"

#include "automation/wide_string.h"

namespace scripthost {

void WriteLine(std::FILE* stream, std::wstring_view line) {
    const std::string bytes = quorvane::ToUtf8(line) + '\n';
    std::fwrite(bytes.data(), 1, bytes.size(), stream);
    std::fflush(stream);
}

}  // namespace scripthost

#include "smtp/command_writer.h"

#include <algorithm>

#include "mime/eight_bytes.h"
#include "smtp/failure_text.h"

namespace quorvane {
namespace {

constexpr std::string_view kPlaceholder = "%s";

// Checked in the bytes that go out: a code page may turn other characters into these.
bool StartsLineOfItsOwn(std::string_view value) {
    constexpr unsigned char kLowestOther = '\r' + 1;
    return HasBelow(value, kLowestOther) &&
           value.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

}  // namespace

bool WriteCommand(std::string_view format, const CommandArgument& argument, std::string& line,
                  WideString& problem) {
    const std::size_t place = std::min(format.find(kPlaceholder), format.size());
    line.reserve(format.size() + argument.value.size());
    line = format.substr(0, place);
    AppendAnsi(argument.value, line);
    const std::string_view value = std::string_view(line).substr(place);
    if (StartsLineOfItsOwn(value)) {
        problem = LineBreakText(argument.what, argument.value);
        line.clear();
        return false;
    }
    if (value.size() > argument.limit) {
        problem = TooLongText(argument.what, argument.value, argument.limit);
        line.clear();
        return false;
    }
    line += format.substr(std::min(place + kPlaceholder.size(), format.size()));
    return true;
}

std::string WriteCommand(std::string_view format, std::string_view value) {
    std::string line(format);
    const std::size_t place = line.find(kPlaceholder);
    if (place != std::string::npos) {
        line.replace(place, kPlaceholder.size(), value);
    }
    return line;
}

}  // namespace quorvane

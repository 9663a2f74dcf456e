#include "smtp/command_writer.h"

#include "smtp/failure_text.h"

namespace quorvane {
namespace {

constexpr std::string_view kPlaceholder = "%s";

// Checked in the bytes that go out: a code page may turn other characters into these.
bool StartsLineOfItsOwn(std::string_view value) {
    return value.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

}  // namespace

bool WriteCommand(std::string_view format, const CommandArgument& argument, std::string& line,
                  WideString& problem) {
    line.clear();
    const std::string value = ToAnsi(argument.value);
    if (StartsLineOfItsOwn(value)) {
        problem = LineBreakText(argument.what, argument.value);
        return false;
    }
    if (value.size() > argument.limit) {
        problem = TooLongText(argument.what, argument.value, argument.limit);
        return false;
    }
    line = WriteCommand(format, value);
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

// Addresses: what is taken out of a text reads the same again, and no text puts more than one line
// into a command.
#include "fuzz/input.h"
#include "model/address_entry.h"
#include "smtp/command_writer.h"

namespace {

using namespace quorvane;
using fuzzing::Require;

constexpr std::string_view kFormat = "RCPT TO: <%s>\r\n";
constexpr std::string_view kControls("\r\n\0", 3);

void CheckParsing(const WideString& text) {
    CAddressEntry entry;
    ParseAddressText(text, entry);
    Require(text.find(entry.address) != WideString::npos, "the address is a part of the text");
    Require(text.find(entry.name) != WideString::npos, "the name is a part of the text");
    Require(Trim(entry.name).size() == entry.name.size(), "the name is trimmed");
    CAddressEntry again;
    const bool inBrackets = entry.address != Trim(text);
    ParseAddressText(inBrackets ? entry.name + OLESTR(" <") + entry.address + OLESTR(">") : text,
                     again);
    Require(again.name == entry.name && again.address == entry.address, "an entry reads as it did");
}

void CheckCommand(const WideString& address) {
    std::string line = "left over";
    WideString problem;
    const bool written = WriteCommand(
        kFormat, {OLESTR("Recipient address"), address, kMaxAddressLength}, line, problem);
    const std::string bytes = ToAnsi(address);
    Require(written == (bytes.size() <= kMaxAddressLength &&
                        bytes.find_first_of(kControls) == std::string::npos),
            "only a line break, a NUL and too great a length are refused");
    if (written) {
        Require(line == "RCPT TO: <" + bytes + ">\r\n", "the address stands in the line as it is");
        Require(line.find_first_of(kControls) == line.size() - 2, "a command is one line");
    } else {
        Require(line.empty(), "a refused address leaves nothing to be sent");
        Require(!problem.empty() && problem.size() < 1000, "there are words for it");
        Require(std::none_of(problem.begin(), problem.end(), [](WCHAR c) { return c < ' '; }),
                "the words hold no control character");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::Input input(data, size);
    const WideString text = input.TakeWideText();
    const WideString name = input.TakeWideText();
    CheckParsing(text);
    const CAddressEntry entry = MakeAddressEntry(text, name);
    Require(name.empty() || entry.name == name, "a name of its own replaces the one in the text");
    CheckCommand(text);
    CheckCommand(entry.address);
    return 0;
}

#include "cli/text_input.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <limits>

#include "cli/options.h"
#include "cli/system.h"

namespace quorvane::cli {

namespace {

void RequireNoFolder(const std::string& name) {
    std::error_code error;
    if (std::filesystem::is_directory(PathOf(name), error)) {
        throw UsageError(name + " is a folder, not a file.");
    }
}

std::string ReadInput() {
    system::TakeInputAsBytes();
    std::string text;
    char piece[4096];
    // A terminal's end is told once, and another read would wait for the next one.
    while (!std::feof(stdin) && !std::ferror(stdin)) {
        text.append(piece, std::fread(piece, 1, sizeof piece, stdin));
    }
    if (std::ferror(stdin)) throw UsageError("Can't read standard input.");
    return text;
}

std::string ReadFile(const std::string& name) {
    RequireNoFolder(name);
    std::ifstream stream(PathOf(name), std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (!stream) throw UsageError("Can't read the file " + name + ".");
    return bytes;
}

}  // namespace

std::filesystem::path PathOf(std::string_view utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string ReadTextFile(const std::string& name) {
    std::string text = name == "-" ? ReadInput() : ReadFile(name);
    text = WithoutByteOrderMark(std::move(text));
    RequireText(text, name == "-" ? "Standard input" : "The file " + name);
    return text;
}

std::string WithoutByteOrderMark(std::string text) {
    if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
    return text;
}

void RequireText(std::string_view text, const std::string& what) {
    if (text.find('\0') != text.npos) throw UsageError(what + " holds a NUL, so it is no text.");
    if (client::ToUtf8(client::ToUtf16(text)) != text) {
        throw UsageError(what + " is not UTF-8 text.");
    }
}

std::string WithMailLineEnds(std::string_view text) {
    std::string out;
    out.reserve(text.size() + text.size() / 32);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' && text[i] != '\n') {
            out += text[i];
            continue;
        }
        out += "\r\n";
        if (text.substr(i, 2) == "\r\n") ++i;
    }
    return out;
}

std::string ReadPassword(const std::string& file) {
    const std::string remedy = system::RemedyForReaders(file);
    if (!remedy.empty()) {
        throw UsageError("Others can read the password file " + file +
                         ". Make it yours alone first:  " + remedy);
    }
    std::string text = ReadTextFile(file);
    text.erase(
        std::find_if(text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n'; }),
        text.end());
    if (text.empty())
        throw UsageError("The first line of the password file " + file + " is empty.");
    return text;
}

void RequireNoNul(const std::string& file) {
    std::ifstream stream(PathOf(file), std::ios::binary);
    const std::istreambuf_iterator<char> end;
    if (std::find(std::istreambuf_iterator<char>(stream), end, '\0') != end) {
        throw UsageError("The file " + file +
                         " holds a NUL, where the body would end; send it with --encoding base64.");
    }
}

void RequireSameMeaning(const std::string& file) {
    if (!system::MeansTheSameToTheComponent(file)) {
        throw UsageError("The name " + file +
                         " holds a backslash or begins like a drive, which the component takes "
                         "for a Windows path; give the file another name.");
    }
}

void RequireSendable(const std::string& file) {
    RequireSameMeaning(file);
    RequireContent(file);
}

void RequireContent(const std::string& file) {
    std::error_code error;
    const auto path = PathOf(file);
    if (!std::filesystem::exists(path, error)) return;
    RequireNoFolder(file);
    if (!std::filesystem::is_regular_file(path, error)) {
        throw UsageError(file + " is no regular file; save its content to one first.");
    }
    std::ifstream stream(path, std::ios::binary);
    if (!stream) throw UsageError("Can't read the file " + file + ".");
    // The component goes by the size, which is 0 for files that the system makes up as they are
    // read.
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error || size == 0 || stream.peek() == std::ifstream::traits_type::eof()) {
        throw UsageError("The file " + file + " is empty; an empty file can't be sent along.");
    }
    if (size > std::numeric_limits<std::uint32_t>::max()) {
        throw UsageError("The file " + file + " has 4 GiB or more, which no message can hold.");
    }
}

}  // namespace quorvane::cli

// Texts that come from outside: arguments, files and standard input.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quorvane::cli {

// The path that UTF-8 text names, on every system.
std::filesystem::path PathOf(std::string_view utf8);

// The text of a UTF-8 file, or of standard input for "-", without a byte-order mark. Throws
// UsageError when it can't be read.
std::string ReadTextFile(const std::string& name);

std::string WithoutByteOrderMark(std::string text);

// Throws UsageError unless the text is UTF-8 without NULs, which would end it early; `what` names
// the text in the sentence.
void RequireText(std::string_view text, const std::string& what);

// CR, LF and CRLF all become CRLF.
std::string WithMailLineEnds(std::string_view text);

// The first line of the file, which nobody but its owner may be able to read. Throws UsageError.
std::string ReadPassword(const std::string& file);

// Throws UsageError for a body file that a NUL would end.
void RequireNoNul(const std::string& file);

// Throws UsageError for a file name that the component would take for another path.
void RequireSameMeaning(const std::string& file);

// The second half of RequireSendable, for a path that is right.
void RequireContent(const std::string& file);

// Throws UsageError for a file that exists but that the component could not send: a folder, an
// unreadable file, or an empty one, which would be left out of the message.
void RequireSendable(const std::string& file);

}  // namespace quorvane::cli

// The encodings as their rules are worded, step after step, without a thought for speed: what the
// product's encoders, which do all steps in one pass, are compared with.
#pragma once

#include <string>

namespace quorvane::reference {

std::string MaskNonAscii(std::string text);
std::string WrapLines(const std::string& text, std::size_t limit);
std::string QuotedPrintable(const std::string& text);
std::string Base64(const std::string& bytes);
std::string StuffDots(const std::string& text);
int ChooseEncoding(const std::string& bytes);

// The content of a part in the encoding 1 to 4.
std::string EncodeBody(const std::string& bytes, int encoding);

}  // namespace quorvane::reference

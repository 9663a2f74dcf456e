// Base64: whatever is decoded fits, and what has been encoded, in one go, by line or in pieces,
// decodes to what it was.
#include "mime/base64.h"

#include "fuzz/input.h"

namespace {

using namespace quorvane;
using fuzzing::Require;

std::string Decoded(std::string_view text) {
    const std::span<const BYTE> bytes = BytesOf(text);
    CBase64 codec;
    codec.Decode(bytes.data(), static_cast<DWORD>(bytes.size()));
    Require(codec.EncodedLength() <= text.size(), "only characters of the text are taken");
    Require(codec.DecodedLength() <= (codec.EncodedLength() + 3) / 4 * std::size_t{3},
            "four characters give three bytes");
    // What stands in the object has a zero byte behind it, which readers of texts rely on.
    Require(codec.GetDecoded()[codec.DecodedLength()] == 0, "the result is terminated");
    return {reinterpret_cast<const char*>(codec.GetDecoded()), codec.DecodedLength()};
}

void CheckDecoding(std::string_view text) {
    const std::string decoded = Decoded(text);
    std::string withBreaks;
    for (const char c : text) (withBreaks += c) += "\r\n\t ";
    Require(Decoded(withBreaks) == decoded, "line breaks and blanks are skipped");
}

void CheckEncoding(std::string_view text) {
    const std::span<const BYTE> bytes = BytesOf(text);
    std::string line;
    AppendBase64(bytes, line);
    Require(line.size() == Base64Size(bytes.size()), "the size is known before");
    CBase64 codec;
    codec.Encode(bytes.data(), static_cast<DWORD>(bytes.size()));
    Require(line == std::string_view(reinterpret_cast<const char*>(codec.GetEncoded()),
                                     codec.EncodedLength()),
            "the object encodes as the function does");

    std::string lines;
    AppendBase64Lines(bytes, lines);
    Require(lines.size() == Base64LinesSize(bytes.size()), "the size of lines is known before");
    std::string pieces;
    for (std::size_t at = 0; at < bytes.size(); at += kBase64LineBytes) {
        AppendBase64Lines(bytes.subspan(at, std::min(kBase64LineBytes, bytes.size() - at)), pieces);
    }
    Require(pieces == lines, "lines don't depend on the pieces");

    const auto padding = static_cast<std::size_t>(std::count(line.begin(), line.end(), '='));
    for (const std::string& encoded : {line, lines}) {
        Require(Decoded(encoded) == std::string(text) + std::string(padding, '\0'),
                "decoding gives the text, and zero bytes for padding");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    CheckDecoding(text);
    CheckEncoding(text);
    return 0;
}

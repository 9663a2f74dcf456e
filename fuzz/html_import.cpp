// HTML import: whatever the file holds, the result is that of the plainest way to do it, which
// searches everything anew for each reference.
#include "model/html_import.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>

namespace {

using namespace quorvane;
using Parts = std::vector<CAttachmentPart>;

const WideString kPath = OLESTR("C:\\mail\\page.htm");

// What the message had before: a named part, one without a file, one without an identifier.
Parts FirstParts() {
    Parts parts(3);
    parts[0].file = OLESTR("C:\\mail\\a.png");
    parts[0].contentId = OLESTR("logo@example");
    parts[1].contentId = OLESTR("from-memory");
    parts[2].file = OLESTR("C:\\mail\\b.png");
    return parts;
}

WideString PlainlyAddImage(const WideString& file, Parts& parts) {
    const auto known = std::find_if(parts.begin(), parts.end(), [&](const CAttachmentPart& part) {
        return EqualIgnoreCase(part.file, file);
    });
    if (known != parts.end() && !known->contentId.empty()) return OLESTR("cid:") + known->contentId;
    std::string number = std::to_string(parts.size());
    while (number.size() < 4) number.insert(0, 1, '0');
    CAttachmentPart part;
    part.file = file;
    part.contentId = OLESTR("i") + WidenBytes(number);
    parts.push_back(part);
    return OLESTR("cid:") + part.contentId;
}

// Nothing when the text is malformed.
std::optional<WideString> PlainlyImport(const WideString& text, Parts& parts) {
    WideString lower = text;
    for (WCHAR& c : lower) c = c >= 'A' && c <= 'Z' ? WCHAR(c + 32) : c;
    WideString out;
    std::size_t position = 0;
    for (;;) {
        std::size_t i = lower.find(OLESTR("src="), position);
        if (i == text.npos) return out + text.substr(position);
        for (i += 4; i < text.size() && IsSpace(text[i]);) ++i;
        const std::size_t j = i + 1;
        if (j >= text.size() || (text[i] != '"' && text[i] != '\'')) return std::nullopt;
        std::size_t end = text.find('"', j);
        if (end == text.npos) end = text.find('\'', j);
        if (end == text.npos) return std::nullopt;
        WideString url = text.substr(j, end - j);
        if (!StartsWithIgnoreCase(url, OLESTR("http://")) &&
            !StartsWithIgnoreCase(url, OLESTR("https://"))) {
            url = PlainlyAddImage(ResolveImagePath(kPath, url), parts);
        }
        out += text.substr(position, j - position) + url;
        position = end;
    }
}

bool SameParts(const Parts& a, const Parts& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& x, const auto& y) {
        return x.file == y.file && x.contentId == y.contentId;
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const WideString text = FromAnsi({reinterpret_cast<const char*>(data), size});
    Parts expectedParts = FirstParts();
    const std::optional<WideString> expected = PlainlyImport(text, expectedParts);
    Parts parts = FirstParts();
    std::optional<WideString> imported;
    try {
        imported = ImportHtmlText(text, kPath, parts);
    } catch (const HtmlImportError&) {
    }
    if (imported != expected || !SameParts(parts, expectedParts)) std::abort();
    return 0;
}

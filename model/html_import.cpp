#include "model/html_import.h"

#include <windows.h>

#include <algorithm>
#include <new>

#include "Quorvane.h"
#include "model/file_reader.h"
#include "model/html_references.h"

namespace quorvane {
namespace {

constexpr DWORD kNoSharing = 0;
constexpr WCHAR kSeparator = '\\';

HtmlImportError CannotOpen(const WideString& path) {
    return HtmlImportError(OLESTR("Cannot open HTML file ") + path);
}

bool IsRemote(WideView reference) {
    return StartsWithIgnoreCase(reference, OLESTR("http://")) ||
           StartsWithIgnoreCase(reference, OLESTR("https://"));
}

// "i" and at least four digits.
WideString ContentIdOf(std::size_t index) {
    const std::string digits = std::to_string(index);
    return OLESTR("i") + WideString(digits.size() < 4 ? 4 - digits.size() : 0, WCHAR('0')) +
           WidenBytes(digits);
}

CAttachmentPart InlinePart(const WideString& file, const WideString& contentId) {
    CAttachmentPart part;
    part.contentId = contentId;
    part.encoding = MailEncodingBase64;
    part.file = file;
    part.isInline = true;
    return part;
}

}  // namespace

InlineImages::InlineImages(std::vector<CAttachmentPart>& attachments) : attachments_(attachments) {
    for (std::size_t i = 0; i < attachments.size(); ++i) {
        const std::size_t hash = HashIgnoreCase(attachments[i].file);
        if (!FirstWith(attachments[i].file, hash)) firsts_.emplace(hash, i);
    }
}

const CAttachmentPart* InlineImages::FirstWith(WideView file, std::size_t hash) const {
    const auto [begin, end] = firsts_.equal_range(hash);
    const auto found = std::find_if(begin, end, [&](const auto& entry) {
        return EqualIgnoreCase(attachments_[entry.second].file, file);
    });
    return found != end ? &attachments_[found->second] : nullptr;
}

WideString InlineImages::AddInlineImage(const WideString& file) {
    const std::size_t hash = HashIgnoreCase(file);
    const CAttachmentPart* const first = FirstWith(file, hash);
    if (first && !first->contentId.empty()) return OLESTR("cid:") + first->contentId;
    const std::size_t index = attachments_.size();
    const WideString contentId = ContentIdOf(index);
    // Not dropped for want of memory: the next picture would get its number, and stand in its
    // place.
    attachments_.push_back(InlinePart(file, contentId));
    if (!first) firsts_.emplace(hash, index);
    return OLESTR("cid:") + contentId;
}

WideString ReadHtmlFile(const WideString& path) {
    FilePatience patience;
    FileReader file(path, kNoSharing, patience);
    if (!file.IsOpen()) throw CannotOpen(path);
    std::string bytes;
    try {
        bytes.resize(file.Size());
    } catch (const std::bad_alloc&) {
        return {};
    }
    std::size_t count = 0;
    if (!file.Read(bytes, count)) throw CannotOpen(path);
    const std::string_view read(bytes.data(), count);
    return FromAnsi(read.substr(0, read.find('\0')));
}

WideString ResolveImagePath(WideView htmlPath, WideView reference) {
    WideString path(reference);
    if (path.size() < 2) return path;
    std::replace(path.begin(), path.end(), WCHAR('/'), kSeparator);
    if (path[0] == kSeparator || path[1] == ':') return path;
    const std::size_t folder = htmlPath.rfind(kSeparator);
    return (folder == WideView::npos ? WideString(OLESTR(".\\"))
                                     : WideString(htmlPath.substr(0, folder + 1))) +
           path;
}

WideString ImportHtmlText(WideView html, const WideString& path,
                          std::vector<CAttachmentPart>& attachments) {
    InlineImages images(attachments);
    HtmlReferences references(html);
    WideString out;
    out.reserve(html.size());
    while (references.Next()) {
        out += references.before();
        const WideView reference = references.value();
        if (IsRemote(reference)) {
            out += reference;
        } else {
            out += images.AddInlineImage(ResolveImagePath(path, reference));
        }
    }
    if (references.malformed()) {
        throw HtmlImportError(OLESTR("Cannot import malformed HTML file ") + path);
    }
    out += references.rest();
    return out;
}

WideString ImportHtmlFile(const WideString& path, std::vector<CAttachmentPart>& attachments) {
    return ImportHtmlText(ReadHtmlFile(path), path, attachments);
}

}  // namespace quorvane

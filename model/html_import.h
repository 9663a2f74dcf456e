// HTML files as message bodies: what a file refers to on this machine becomes an inline part, and
// the reference becomes "cid:" with the part's content identifier (RFC 2392).
#pragma once

#include <exception>
#include <unordered_map>
#include <vector>

#include "automation/wide_string.h"
#include "model/parts.h"

namespace quorvane {

// An HTML file that can't be imported. text() is the sentence that the caller gets to see.
class HtmlImportError : public std::exception {
public:
    explicit HtmlImportError(WideString text) : text_(std::move(text)) {}
    const WideString& text() const { return text_; }
    const char* what() const noexcept override { return "HTML import failed"; }

private:
    WideString text_;
};

// The inline parts of a message, found by the path of their file without regard to the case of
// ASCII letters. The list of parts outlives this and has no other writer meanwhile.
class InlineImages {
public:
    explicit InlineImages(std::vector<CAttachmentPart>& attachments);

    // The reference to the first part with this file, "cid:" and its content identifier. When
    // there is none, or it has no identifier, a new part is appended, named "i" and its index.
    WideString AddInlineImage(const WideString& file);

private:
    const CAttachmentPart* FirstWith(WideView file, std::size_t hash) const;

    std::vector<CAttachmentPart>& attachments_;
    std::unordered_multimap<std::size_t, std::size_t> firsts_;  // index by hash of the path
};

// The text of a file, up to its first zero byte, taken from the calling thread's ANSI code page
// whatever the file says about itself. Nobody else may have the file open meanwhile. Throws
// HtmlImportError.
WideString ReadHtmlFile(const WideString& path);

// The path that a reference in an HTML file means: in the file's folder, which ends at the last
// '\' of the path; a reference that begins with a slash or a drive stands for itself. Nothing is
// decoded, neither percent signs nor schemes.
WideString ResolveImagePath(WideView htmlPath, WideView reference);

// The text with the references replaced that don't begin with "http://" or "https://"; their parts
// are appended to the attachments. No file is opened. Throws HtmlImportError, which leaves the
// parts of the references before the faulty one.
WideString ImportHtmlText(WideView html, const WideString& path,
                          std::vector<CAttachmentPart>& attachments);

// The same for the text of the file with this path.
WideString ImportHtmlFile(const WideString& path, std::vector<CAttachmentPart>& attachments);

}  // namespace quorvane

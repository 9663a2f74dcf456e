#include "model/html_references.h"

namespace quorvane {
namespace {

constexpr WideView kAttribute = OLESTR("src=");

bool IsQuote(WCHAR c) {
    return c == '"' || c == '\'';
}

}  // namespace

bool HtmlReferences::Next() {
    std::size_t quote = 0;
    if (malformed_ || !FindAttribute(quote)) return false;
    while (quote < html_.size() && IsSpace(html_[quote])) ++quote;
    const std::size_t begin = quote + 1;
    const std::size_t end = begin < html_.size() ? FindClosingQuote(begin) : WideView::npos;
    if (end == WideView::npos || !IsQuote(html_[quote])) {
        malformed_ = true;
        return false;
    }
    previousEnd_ = end_;
    begin_ = begin;
    end_ = end;
    return true;
}

// Of the four characters the last is the rarest, so that is what is searched for.
bool HtmlReferences::FindAttribute(std::size_t& behind) const {
    constexpr std::size_t kName = kAttribute.size() - 1;
    std::size_t last = html_.find(kAttribute.back(), end_ + kName);
    while (last != WideView::npos) {
        if (EqualIgnoreCase(html_.substr(last - kName, kName), kAttribute.substr(0, kName))) {
            behind = last + 1;
            return true;
        }
        last = html_.find(kAttribute.back(), last + 1);
    }
    return false;
}

// A text without double quotes is searched for them once, not once for each reference.
std::size_t HtmlReferences::FindClosingQuote(std::size_t from) {
    if (doubleQuotesLeft_) {
        const std::size_t found = html_.find(WCHAR('"'), from);
        if (found != WideView::npos) return found;
        doubleQuotesLeft_ = false;
    }
    return html_.find(WCHAR('\''), from);
}

}  // namespace quorvane

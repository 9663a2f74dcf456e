#include "cli/imported_references.h"

#include <algorithm>

namespace quorvane::cli {
namespace {

constexpr std::string_view kBeginning = "cid:i";
constexpr std::string_view kDigits = "0123456789";

// A value ends at the next double quote; without one, at the next single quote.
std::size_t EndOfValue(std::string_view text) {
    const auto end = text.find('"');
    return end == text.npos ? std::min(text.find('\''), text.size()) : end;
}

}  // namespace

std::vector<std::string> ImportedReferences(std::string_view html, std::string_view imported) {
    std::vector<std::string> references;
    for (;;) {
        const auto differ = std::ranges::mismatch(html, imported);
        const auto same = static_cast<std::size_t>(differ.in1 - html.begin());
        if (same == html.size() || same == imported.size()) return references;
        // The new value may begin like the old one.
        const auto start = imported.rfind(kBeginning, same);
        if (start == imported.npos || start + kBeginning.size() + 4 < same) return references;
        const auto end = imported.find_first_not_of(kDigits, start + kBeginning.size());
        html.remove_prefix(start);
        const std::size_t length = EndOfValue(html);
        references.emplace_back(html.substr(0, length));
        html.remove_prefix(length);
        imported.remove_prefix(std::min(end, imported.size()));
    }
}

}  // namespace quorvane::cli

#include "cli/unknown_option.h"

#include <algorithm>
#include <numeric>

namespace quorvane::cli {
namespace {

// Words of other mail programs.
constexpr struct {
    std::string_view word, meant;
} kSynonyms[] = {
    {"--attachment", "--attach"},
    {"--body", "--text"},
    {"--file", "--attach"},
    {"--host", "--server"},
    {"--message", "--text"},
    {"--pass", "--password-file"},
    {"--password", "--password-file"},
    {"--port", "--server HOST:PORT"},
    {"--receipt", "--read-receipt"},
    {"--recipient", "--to"},
    {"--sender", "--from"},
    {"--smtp", "--server"},
    {"--starttls", "--ssl"},
    {"--tls", "--ssl"},
    {"--username", "--user"},
};

std::string WithoutSigns(std::string_view text) {
    std::string plain(text);
    std::erase(plain, '-');
    std::erase(plain, '_');
    return plain;
}

// How many letters have to be put in, taken out or changed to make one word of the other.
std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t corner = i;
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed = corner + (a[i] == b[j] ? 0 : 1);
            corner = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

// Empty when no option is near.
std::string_view Nearest(std::string_view option, const std::vector<std::string>& names) {
    for (const auto& synonym : kSynonyms) {
        if (synonym.word == option) return synonym.meant;
    }
    const std::string plain = WithoutSigns(option);
    std::string_view nearest;
    std::size_t least = std::min<std::size_t>(plain.size() / 2, 2) + 1;
    for (const std::string& name : names) {
        const std::size_t distance = Distance(plain, WithoutSigns(name));
        if (distance < least) {
            least = distance;
            nearest = name;
        }
    }
    return nearest;
}

}  // namespace

std::string AboutUnknown(std::string_view argument, const std::vector<std::string>& names) {
    if (!argument.starts_with('-')) {
        return "'" + std::string(argument) +
               "' belongs to no option. A value with blanks wants quotes around it.";
    }
    const std::string_view option = argument.substr(0, argument.find('='));
    const std::string_view nearest = Nearest(option, names);
    std::string text = "There is no option " + std::string(option) + ".";
    if (!nearest.empty()) text += " Did you mean " + std::string(nearest) + "?";
    return text;
}

}  // namespace quorvane::cli

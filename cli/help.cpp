#include "cli/help.h"

#include <sstream>
#include <string_view>
#include <vector>

namespace quorvane::cli {
namespace {

constexpr std::size_t kColumn = 29;  // where the explanations begin
constexpr std::size_t kWidth = 79;

constexpr const char* kCommon[] = {
    "--server", "--user",  "--password-file", "--ssl",     "--direct",  "--from",
    "--to",     "--cc",    "--bcc",           "--subject", "--text",    "--html-file",
    "--attach", "--async", "--dry-run",       "--verbose", "--help-all"};

constexpr std::string_view kUsage =
    "Usage: quorvane-send {--server HOST[:PORT] | --direct} --from ADDRESS\n"
    "                     --to ADDRESS... [OPTION...]\n";

constexpr std::string_view kExamples = R"(
Examples:
  quorvane-send --server mail.example.org --from zoe@example.org \
      --to ann@example.org --subject Report --text "See below." --attach a.pdf
  quorvane-send --server mail.example.org:587 --ssl --user zoe \
      --password-file secret --from zoe@example.org --to ann@example.org \
      --html-file news.html
  df -h | quorvane-send --server localhost --from root@example.org \
      --to admin@example.org --text -
)";

constexpr std::string_view kFooter =
    "\n"
    "Options marked * may be given several times.\n"
    "Exit status: 0 sent, 1 tried and not sent, 2 wrong use.\n";

// The words, broken into lines that begin at the column.
std::string Wrapped(const std::string& text) {
    std::istringstream words(text);
    std::string out, word;
    std::size_t column = kColumn;
    while (words >> word) {
        if (column > kColumn && column + 1 + word.size() > kWidth) {
            out += "\n" + std::string(kColumn, ' ');
            column = kColumn;
        } else if (column > kColumn) {
            out += ' ';
            ++column;
        }
        out += word;
        column += word.size();
    }
    return out;
}

}  // namespace

std::string Help::make_option(const CLI::Option* option, bool) const {
    std::string line = "  " + option->get_name();
    if (option->get_type_size() != 0) line += " " + option->get_type_name();
    line += line.size() + 2 > kColumn ? "\n" + std::string(kColumn, ' ')
                                      : std::string(kColumn - line.size(), ' ');
    return line + Wrapped(option->get_description()) + "\n";
}

std::string Help::make_help(const CLI::App* app, std::string, CLI::AppFormatMode mode) const {
    std::string text(kUsage);
    if (mode == CLI::AppFormatMode::All) {
        text += CLI::detail::find_and_replace(make_groups(app, mode), "\n\n\n", "\n\n");
    } else {
        text = app->get_description() + "\n" + text + "\n";
        for (const char* name : kCommon) text += make_option(app->get_option(name), false);
        text += kExamples;
    }
    return text += kFooter;
}

}  // namespace quorvane::cli

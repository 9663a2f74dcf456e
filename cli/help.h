// The texts of --help and --help-all.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace quorvane::cli {

// Lays the options out in lines of at most 79 characters, each with the kind of its value: those
// that most sends need, with examples, so that all fits a screen, or every one.
class Help : public CLI::Formatter {
public:
    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override;
    std::string make_option(const CLI::Option* option, bool isPositional) const override;
};

}  // namespace quorvane::cli

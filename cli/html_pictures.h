// HTML files whose pictures go along.
#pragma once

#include <string>

#include "quorvane.hpp"

namespace quorvane::cli {

// Adds the files that the HTML file shows from this machine to the message and returns its text
// with references to them instead. Both texts are UTF-8 with mail's line ends; `html` is the
// file's as it was read. Throws UsageError when the component can't import it.
std::string ImportPictures(const std::string& file, const std::string& html,
                           client::Message& message);

}  // namespace quorvane::cli

// What an import took for pictures.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvane::cli {

// The references of HTML text that its import replaced by "cid:i" and a number, in their order.
// Found by comparing the two texts, which are otherwise the same.
std::vector<std::string> ImportedReferences(std::string_view html, std::string_view imported);

}  // namespace quorvane::cli

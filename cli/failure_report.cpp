#include "cli/failure_report.h"

#include "cli/hints.h"
#include "cli/output.h"
#include "cli/style.h"
#include "cli/system.h"

namespace quorvane::cli {

std::string ErrorText(const std::string& sentence, const std::string& hint) {
    std::string text = ForError(Colour::kRed, "quorvane-send:") + " " + sentence + "\n";
    if (!hint.empty()) text += "    " + ForError(Colour::kCyan, "hint:") + " " + hint + "\n";
    return text;
}

void FailureReport::Tell(LONG number, const client::Outcome& outcome) {
    std::string hint = HintFor(outcome, options_);
    if (!given_.insert(hint).second) hint.clear();
    const bool told = options_.count > 1 && number != 0;
    const std::string which = told ? "message " + std::to_string(number) + " " : "";
    system::WriteError(ErrorText(which + "not sent: " + OutcomeAsText(outcome), hint));
}

}  // namespace quorvane::cli

#include "cli/dry_run.h"

#include "cli/catcher.h"
#include "cli/failure_report.h"
#include "cli/output.h"
#include "cli/system.h"

namespace quorvane::cli {

ExitStatus PrintInsteadOfSending(const Options& options, const client::Message& message) {
    Catcher catcher;
    client::Mailer mailer("127.0.0.1", catcher.port());
    mailer.SenderHostname(options.helo);
    client::Outcome outcome;
    try {
        outcome = mailer.Send(message);
    } catch (const client::Error& error) {
        if (error.status() == E_INVALIDARG) throw UsageError(error.what());
        throw;
    }
    const CaughtMessage caught = catcher.Finish();
    if (!outcome.sent()) {
        FailureReport(options).Tell(0, outcome);
        return kNotSent;
    }
    system::WriteOutput(options.json ? CaughtAsJson(caught) + "\n"
                                     : CaughtAsText(caught, system::OutputIsTerminal()));
    return kSent;
}

}  // namespace quorvane::cli

#include "cli/run.h"

#include <chrono>

#include "cli/dry_run.h"
#include "cli/failure_report.h"
#include "cli/hints.h"
#include "cli/message_builder.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/queued_send.h"
#include "cli/system.h"

namespace quorvane::cli {

namespace {

using client::Mailer;
using client::Outcome;

Mailer MakeMailer(const Options& options) {
    Mailer mailer = options.direct ? Mailer() : Mailer(options.server.host, options.server.port);
    mailer.User(options.user, options.password)
        .Spa(options.spa)
        .Ssl(options.ssl)
        .ReplyTimeout(std::chrono::seconds(options.timeout))
        .ConnectAttempts(options.attempts)
        .SenderHostname(options.helo);
    return mailer;
}

// A message that the component didn't even attempt counts as wrong use, unless the fault was not
// in the message, or came after messages that are out.
Outcome SendOnce(Mailer& mailer, const client::Message& message, bool isFirst) {
    try {
        return mailer.Send(message);
    } catch (const client::Error& error) {
        if (error.status() == E_INVALIDARG && isFirst) throw UsageError(error.what());
        return {-1, error.what()};
    }
}

ExitStatus SendAll(const Options& options) {
    const client::Apartment apartment;
    const auto message = BuildMessage(options);
    if (options.dryRun) return PrintInsteadOfSending(options, message);
    Mailer mailer = MakeMailer(options);
    if (WantsQueue(options)) return SendThroughQueue(options, mailer, message);
    FailureReport failures(options);
    int sent = 0;
    for (int i = 0; i < options.count; ++i) {
        const Outcome outcome = SendOnce(mailer, message, i == 0);
        if (options.json) system::WriteOutput(OutcomeAsJson(outcome) + "\n");
        if (outcome.sent()) {
            ++sent;
        } else {
            failures.Tell(i + 1, outcome);
        }
    }
    if (!options.json && !options.quiet) {
        system::WriteOutput(SummaryLine(sent, options.count));
    }
    return sent == options.count ? kSent : kNotSent;
}

}  // namespace

int Run(const std::vector<std::string>& arguments) {
    try {
        const Options options = ParseOptions(arguments);
        const bool asksForOutput = !options.information.empty() || options.dryRun;
        ExitStatus status = kSent;
        if (!options.information.empty()) {
            system::WriteOutput(options.information);
        } else {
            status = SendAll(options);
        }
        if (system::OutputIsWhole()) return status;
        system::WriteError(ErrorText("Can't write to standard output.", {}));
        return asksForOutput ? kNotSent : status;  // what is sent is sent
    } catch (const UsageError& error) {
        const std::string hint = HintForRefusal(error.what());
        system::WriteError(ErrorText(error.what(), hint));
        if (hint.empty()) system::WriteError("Try quorvane-send --help.\n");
        return kWrongUse;
    } catch (const std::exception& error) {
        system::WriteError(ErrorText(error.what(), {}));
        return kNotSent;
    }
}

}  // namespace quorvane::cli

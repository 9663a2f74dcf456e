#include "cli/run.h"

#include <chrono>

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
// in the message.
Outcome SendOnce(Mailer& mailer, const client::Message& message) {
    try {
        return mailer.Send(message);
    } catch (const client::Error& error) {
        if (error.status() == E_INVALIDARG) throw UsageError(error.what());
        return {-1, error.what()};
    }
}

ExitStatus SendAll(const Options& options) {
    const client::Apartment apartment;
    const auto message = BuildMessage(options);
    Mailer mailer = MakeMailer(options);
    if (options.async) return SendThroughQueue(options, mailer, message);
    int sent = 0;
    for (int i = 0; i < options.count; ++i) {
        const Outcome outcome = SendOnce(mailer, message);
        if (options.json) system::WriteOutput(OutcomeAsJson(outcome) + "\n");
        if (outcome.sent()) {
            ++sent;
        } else {
            system::WriteError("quorvane-send: not sent: " + OutcomeAsText(outcome) + "\n");
        }
    }
    if (!options.json && !options.quiet) {
        system::WriteOutput(Summary(sent, options.count) + "\n");
    }
    return sent == options.count ? kSent : kNotSent;
}

}  // namespace

int Run(const std::vector<std::string>& arguments) {
    try {
        const Options options = ParseOptions(arguments);
        if (!options.information.empty()) {
            system::WriteOutput(options.information);
            return kSent;
        }
        return SendAll(options);
    } catch (const UsageError& error) {
        system::WriteError(std::string("quorvane-send: ") + error.what() +
                           "\nTry quorvane-send --help.\n");
        return kWrongUse;
    } catch (const std::exception& error) {
        system::WriteError(std::string("quorvane-send: ") + error.what() + "\n");
        return kNotSent;
    }
}

}  // namespace quorvane::cli

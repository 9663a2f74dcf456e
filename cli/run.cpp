#include "cli/run.h"

#include "cli/message_builder.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/queued_send.h"
#include "cli/system.h"

namespace quorvane::cli {

namespace {

using client::Bstr;
using client::Check;
using client::ComPtr;
using client::Outcome;

ComPtr<ISmtpMail> MakeSender(const Options& options) {
    auto mail = client::Create<ISmtpMail>();
    Check(mail->put_SmtpServer(Bstr(options.server.host)), mail);
    Check(mail->put_SmtpPort(options.server.port), mail);
    Check(mail->put_SmtpUsername(Bstr(options.user)), mail);
    Check(mail->put_SmtpPassword(Bstr(options.password)), mail);
    Check(mail->put_SmtpSPA(options.spa ? VARIANT_TRUE : VARIANT_FALSE), mail);
    Check(mail->put_SmtpSSL(options.ssl ? VARIANT_TRUE : VARIANT_FALSE), mail);
    Check(mail->put_ReplyTimeout(options.timeout), mail);
    Check(mail->put_ConnectAttempts(options.attempts), mail);
    Check(mail->put_SenderHostname(Bstr(options.helo)), mail);
    return mail;
}

// A message that the component didn't even attempt counts as wrong use, unless the fault was not
// in the message.
Outcome SendOnce(const ComPtr<ISmtpMail>& mail, const ComPtr<IMailMessage>& message,
                 bool useServer) {
    try {
        return client::Send(mail, message, useServer);
    } catch (const client::Error& error) {
        if (error.status() == E_INVALIDARG) throw UsageError(error.what());
        return {-1, error.what()};
    }
}

ExitStatus SendAll(const Options& options) {
    const client::Apartment apartment;
    const auto message = BuildMessage(options);
    const auto mail = MakeSender(options);
    if (options.async) return SendThroughQueue(options, mail, message);
    int sent = 0;
    for (int i = 0; i < options.count; ++i) {
        const Outcome outcome = SendOnce(mail, message, !options.direct);
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

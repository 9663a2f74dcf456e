// What the methods of SmtpMail that send or queue a message share.
#pragma once

#include "Quorvane.h"
#include "automation/wide_string.h"
#include "model/html_import.h"
#include "model/mail_message.h"

namespace quorvane {

// Installs error information with the text and returns the status: wrong use of the interface.
HRESULT Report(LPCOLESTR text, HRESULT status);
HRESULT ReportForeignMessage();
HRESULT ReportMissingServer();

// The implementation behind the pointer when it is one of this component's own messages, in its
// own apartment; null otherwise.
const CMailMessage* OwnMessage(IMailMessage* message);

// Runs a send and reports whatever escapes from it.
template <class Body>
HRESULT GuardedSend(Body&& body) noexcept {
    try {
        return body();
    } catch (const HtmlImportError& error) {
        return Report(error.text().c_str(), E_FAIL);
    } catch (...) {
        return Report(OLESTR("Unexpected exception!"), E_FAIL);
    }
}

}  // namespace quorvane

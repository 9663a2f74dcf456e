#include "component/delivery.h"

#include <winsock2.h>

namespace quorvane {
namespace {

void ApplySettings(const SmtpSettings& settings, CSmtp& session) {
    session.m_user = settings.username;
    session.m_password = settings.password;
    session.m_domain = settings.domain;
    if (settings.useSpa != VARIANT_FALSE) session.m_spa = 1;
    session.m_connectAttempts = settings.connectAttempts;
    session.m_replyTimeout = settings.replyTimeout;
    session.m_port = htons(static_cast<USHORT>(settings.port));
    if (!settings.senderHostname.empty()) session.m_heloHost = settings.senderHostname;
}

}  // namespace

SendOutcome SendThroughRelay(const SmtpSettings& settings, CSmtp& session,
                             COutgoingMessage& message) {
    ApplySettings(settings, session);
    const TlsMode mode = settings.useSsl != VARIANT_FALSE ? TlsImplicit : TlsNone;
    int code = session.Connect(settings.server, mode);
    if (code == 0) code = session.SendMail(message);
    SendOutcome outcome{code, code != 0 ? session.GetErrorText() : WideString()};
    session.Close();
    return outcome;
}

SendOutcome SendDirect(const DirectSettings& settings, CSmtp& session, COutgoingMessage& message) {
    SendOutcome outcome;
    outcome.code = DeliverDirect(message, settings, session, outcome.text);
    session.Close();
    return outcome;
}

}  // namespace quorvane

#include "server/classes.h"

#include "Quorvane.h"
#include "component/smtp_mail.h"
#include "model/mail_address.h"
#include "model/mail_attachment.h"
#include "model/mail_message.h"

namespace quorvane {

const std::array<CreatableClass, kClassCount> kClasses{{
    {&CLSID_SmtpMail, OLESTR("SmtpMail"), true, CreateComObject<CSmtpMail>},
    {&CLSID_MailMessage, OLESTR("MailMessage"), false, CreateComObject<CMailMessage>},
    {&CLSID_MailAddress, OLESTR("MailAddress"), false, CreateComObject<CMailAddress>},
    {&CLSID_MailAttachment, OLESTR("MailAttachment"), false, CreateComObject<CMailAttachment>},
}};

}  // namespace quorvane

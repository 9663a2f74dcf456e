#include "component/send_method.h"

#include "automation/error_info.h"

namespace quorvane {

HRESULT Report(LPCOLESTR text, HRESULT status) {
    return ReportComError(CLSID_SmtpMail, text, 0, nullptr, IID_ISmtpMail, status);
}

HRESULT ReportForeignMessage() {
    return Report(OLESTR("Quorvane internal error 973!"), E_FAIL);
}

HRESULT ReportMissingServer() {
    return Report(OLESTR("SmtpServer property can't be empty if useSmtpServer parameter is true"),
                  E_INVALIDARG);
}

const CMailMessage* OwnMessage(IMailMessage* message) {
    ComPtr<IMailMessageObject> own;
    void* implementation = nullptr;
    if (FAILED(message->QueryInterface(IID_IMailMessageObject, own.ReceiveVoid())) || !own ||
        FAILED(own->GetMailMessage(&implementation))) {
        return nullptr;
    }
    return static_cast<const CMailMessage*>(implementation);
}

}  // namespace quorvane

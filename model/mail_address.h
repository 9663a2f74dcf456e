// MailAddress: the automation object with which a client names a person.
#pragma once

#include "Quorvane.h"
#include "automation/object.h"
#include "automation/wide_string.h"

namespace quorvane {

// Stores both strings as given and checks nothing.
class CMailAddress final : public ComObject<PlainCount, IMailAddress> {
public:
    STDMETHODIMP get_Name(BSTR* pVal) override;
    STDMETHODIMP put_Name(BSTR newVal) override;
    STDMETHODIMP get_Address(BSTR* pVal) override;
    STDMETHODIMP put_Address(BSTR newVal) override;

private:
    WideString name_;
    WideString address_;
};

}  // namespace quorvane

#include "model/mail_address.h"

#include "automation/property.h"

namespace quorvane {

STDMETHODIMP CMailAddress::get_Name(BSTR* pVal) {
    return GetText(name_, pVal);
}

STDMETHODIMP CMailAddress::put_Name(BSTR newVal) {
    return PutText(name_, newVal);
}

STDMETHODIMP CMailAddress::get_Address(BSTR* pVal) {
    return GetText(address_, pVal);
}

STDMETHODIMP CMailAddress::put_Address(BSTR newVal) {
    return PutText(address_, newVal);
}

}  // namespace quorvane

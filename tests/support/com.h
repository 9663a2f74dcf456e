// What tests of COM objects share: automation strings, calls of properties, error information.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>
#include <oleauto.h>

#include "Quorvane.h"
#include "automation/com_ptr.h"
#include "automation/object.h"
#include "automation/wide_string.h"

namespace quorvane {

// An automation string for the length of an expression.
class Bstr {
public:
    explicit Bstr(WideView text)
        : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
    ~Bstr() { SysFreeString(text_); }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    operator BSTR() const { return text_; }

private:
    BSTR text_;
};

template <class Class, class Interface>
ComPtr<Interface> New() {
    ComPtr<Interface> object;
    EXPECT_EQ(CreateComObject<Class>(__uuidof(Interface), object.ReceiveVoid()), S_OK);
    return object;
}

template <class Interface>
WideString GetString(Interface* object, HRESULT (STDMETHODCALLTYPE Interface::*get)(BSTR*)) {
    BstrHolder text;
    EXPECT_EQ((object->*get)(text.Receive()), S_OK);
    EXPECT_NE(text.Get(), nullptr) << "a string property reads back null";
    return text.Get() ? WideString(text.Get(), SysStringLen(text.Get())) : WideString();
}

// UTF-8 form for messages and comparisons.
inline std::string Show(WideView text) {
    return ToUtf8(text);
}

// The description of the thread's error information, which this removes; "-" for none.
inline std::string TakeErrorText() {
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Receive()) != S_OK) return "-";
    BstrHolder description;
    info->GetDescription(description.Receive());
    return Show(FromBstr(description.Get()));
}

}  // namespace quorvane

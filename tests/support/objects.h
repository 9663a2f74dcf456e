// Making the component's objects, for test programs without GoogleTest.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <stdexcept>
#include <string_view>

#include "automation/com_ptr.h"
#include "automation/object.h"
#include "automation/wide_string.h"
#include "model/mail_address.h"
#include "model/mail_message.h"

namespace quorvane {

// An automation string for the length of an expression.
class Text {
public:
    explicit Text(WideView text) { ToBstr(text, text_.Receive()); }
    explicit Text(std::string_view ascii) : Text(WidenBytes(ascii)) {}
    operator BSTR() const { return text_.Get(); }

private:
    BstrHolder text_;
};

template <class Class, class Interface>
HRESULT Make(ComPtr<Interface>& object) {
    return CreateComObject<Class>(__uuidof(Interface), object.ReceiveVoid());
}

template <class Class, class Interface>
ComPtr<Interface> MakeOrThrow() {
    ComPtr<Interface> object;
    if (Make<Class>(object) != S_OK) throw std::runtime_error("an object can't be made");
    return object;
}

// From and to the same address, with a body of that many characters.
inline ComPtr<IMailMessage> MessageOf(WideView sender, std::size_t bodySize) {
    auto message = MakeOrThrow<CMailMessage, IMailMessage>();
    const auto address = MakeOrThrow<CMailAddress, IMailAddress>();
    address->put_Address(Text(sender));
    message->put_Sender(address.Get());
    message->AddRecipient(address.Get());
    message->put_MessageBody(Text(WideString(bodySize, WCHAR('x'))));
    return message;
}

}  // namespace quorvane

// Prints every readable property of a new object of each class, by late binding: the interface and
// the member, and its value.
#include <quorvane.hpp>

#include <iostream>
#include <string>

namespace qv = quorvane::client;
using qv::Check;
using qv::ComPtr;

std::string Text(const VARIANT& value) {
    switch (value.vt) {
        case VT_BSTR:
            return '"' + qv::detail::Utf16ToUtf8(value.bstrVal, SysStringLen(value.bstrVal)) + '"';
        case VT_BOOL:
            return value.boolVal == VARIANT_FALSE ? "False" : "True";
        case VT_I4:
            return std::to_string(value.lVal);
        case VT_DISPATCH:
            return value.pdispVal ? "object" : "Nothing";
        default:
            return "type " + std::to_string(value.vt);
    }
}

void PrintProperty(const char* interfaceName, IDispatch* object, ITypeInfo* info,
                   const FUNCDESC& function) {
    qv::Bstr name;
    Check(info->GetDocumentation(function.memid, name.Put(), nullptr, nullptr, nullptr));
    DISPPARAMS none{};
    const IID reserved{};
    qv::Variant value;
    Check(object->Invoke(function.memid, reserved, 0, DISPATCH_PROPERTYGET, &none, value.Put(),
                         nullptr, nullptr));
    std::cout << interfaceName << '.' << name.utf8() << ' ' << Text(value.get()) << '\n';
}

template <typename Interface>
void PrintProperties(const char* name) {
    const auto object = qv::Create<Interface>();
    ComPtr<ITypeInfo> info;
    Check(object->GetTypeInfo(0, 0, info.Put()));
    TYPEATTR* type = nullptr;
    Check(info->GetTypeAttr(&type));
    const UINT count = type->cFuncs;
    info->ReleaseTypeAttr(type);
    for (UINT i = 0; i < count; ++i) {
        FUNCDESC* function = nullptr;
        Check(info->GetFuncDesc(i, &function));
        // Those of IUnknown and IDispatch are no properties.
        if (function->invkind == INVOKE_PROPERTYGET) {
            PrintProperty(name, object.get(), info.get(), *function);
        }
        info->ReleaseFuncDesc(function);
    }
}

int main() {
    try {
        const qv::Apartment apartment;
        PrintProperties<ISmtpMail>("ISmtpMail");
        PrintProperties<IMailMessage>("IMailMessage");
        PrintProperties<IMailAddress>("IMailAddress");
        PrintProperties<IMailAttachment>("IMailAttachment");
    } catch (const qv::Error& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}

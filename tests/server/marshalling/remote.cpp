#include "tests/server/marshalling/remote.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quorvane::testing {
namespace {

ComPtr<IGlobalInterfaceTable> Table() {
    ComPtr<IGlobalInterfaceTable> table;
    CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                     IID_IGlobalInterfaceTable, table.ReceiveVoid());
    return table;
}

ComPtr<IDispatch> Create(REFCLSID clsid) {
    ComPtr<IDispatch> object;
    EXPECT_EQ(
        CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.ReceiveVoid()),
        S_OK);
    return object;
}

}  // namespace

std::vector<Way> Ways() {
    return kInterfacesCross ? std::vector{Way::kDispatch, Way::kTable}
                            : std::vector{Way::kDispatch};
}

Value::Value(LONG number) {
    value.vt = VT_I4;
    value.lVal = number;
}

Value::Value(bool truth) {
    value.vt = VT_BOOL;
    value.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
}

Value::Value(const WCHAR* text) {
    value.vt = VT_BSTR;
    value.bstrVal = SysAllocString(text);
}

Value::Value(IDispatch* object) {
    value.vt = VT_DISPATCH;
    value.pdispVal = object;
    if (object) object->AddRef();
}

Value::Value(const Value& other) {
    // Windows has a parameter for both that isn't const.
    VariantCopy(&value, const_cast<VARIANT*>(&other.value));
}

Value& Value::operator=(Value other) {
    std::swap(value, other.value);
    return *this;
}

std::string Value::Text() const {
    switch (value.vt) {
        case VT_I4:
            return std::to_string(value.lVal);
        case VT_BOOL:
            return value.boolVal == VARIANT_TRUE ? "true" : "false";
        case VT_BSTR:
            return '"' + ToUtf8(FromBstr(value.bstrVal)) + '"';
        case VT_DISPATCH:
            return value.pdispVal ? "object" : "no object";
        default:
            return "type " + std::to_string(value.vt);
    }
}

Remote::Remote(PumpingThread& home, REFCLSID clsid, REFIID dual) : home_(home), dual_(dual) {
    home_.Run([&] {
        const ComPtr<IDispatch> object = Create(clsid);
        object_ = object.Get();
        const IID& marshalled = kInterfacesCross ? dual : IID_IDispatch;
        EXPECT_EQ(Table()->RegisterInterfaceInGlobal(object.Get(), marshalled, &cookie_), S_OK);
    });
    EXPECT_EQ(Table()->GetInterfaceFromGlobal(cookie_, IID_IDispatch, proxy_.ReceiveVoid()), S_OK);
    EXPECT_EQ(Create(clsid)->GetTypeInfo(0, 0, type_.Receive()), S_OK);
}

Remote::~Remote() {
    proxy_.Reset();
    home_.Run([this] { Table()->RevokeInterfaceFromGlobal(cookie_); });
}

HRESULT Remote::Call(Way way, const WCHAR* member, WORD flags, const std::vector<Value>& arguments,
                     std::vector<VARIANT> outs, Value& result) const {
    WideString name(member);
    LPOLESTR names[] = {name.data()};
    DISPID id = 0;
    HRESULT hr = proxy_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(hr)) return hr;
    std::vector<VARIANT> all;
    for (const Value& argument : arguments) all.push_back(argument.value);
    all.insert(all.end(), outs.begin(), outs.end());
    std::reverse(all.begin(), all.end());
    DISPID put = DISPID_PROPERTYPUT;
    const bool isPut = flags & DISPATCH_PROPERTYPUT;
    DISPPARAMS parameters = {all.data(), isPut ? &put : nullptr, static_cast<UINT>(all.size()),
                             isPut ? 1u : 0u};
    VARIANT* const stored = isPut ? nullptr : &result.value;
    if (way == Way::kDispatch) {
        return proxy_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, stored,
                              nullptr, nullptr);
    }
    ComPtr<IUnknown> dual;
    hr = proxy_->QueryInterface(dual_, dual.ReceiveVoid());
    if (FAILED(hr)) return hr;
    UINT bad = 0;
    EXCEPINFO exception{};
    hr = type_->Invoke(dual.Get(), id, flags, &parameters, stored, &exception, &bad);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    return hr;
}

HRESULT Remote::Put(Way way, const WCHAR* member, const Value& value) const {
    Value none;
    return Call(way, member, DISPATCH_PROPERTYPUT, {value}, {}, none);
}

Value Remote::Get(Way way, const WCHAR* member) const {
    Value value;
    EXPECT_EQ(Call(way, member, DISPATCH_PROPERTYGET, {}, {}, value), S_OK);
    return value;
}

}  // namespace quorvane::testing

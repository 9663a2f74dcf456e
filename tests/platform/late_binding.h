// Calls by type information on an attachment of the test's own.
#pragma once

#include <windows.h>
#include <ole2.h>
#include <oleauto.h>

#include <Quorvane.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/platform/type_library.h"

namespace late_binding {

using Text = std::basic_string<OLECHAR>;

// An attachment that keeps what its setters get, and fails on demand. The base of every case.
class Attachment : public IMailAttachment, public ISupportErrorInfo {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        if (iid == IID_IUnknown || iid == IID_IDispatch || iid == __uuidof(IMailAttachment)) {
            *object = static_cast<IMailAttachment*>(this);
        } else if (iid == IID_ISupportErrorInfo) {
            *object = static_cast<ISupportErrorInfo*>(this);
        }
        if (!*object) return E_NOINTERFACE;
        ++references;
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(++references); }
    STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(--references); }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                        UINT*) override {
        return E_NOTIMPL;
    }

    STDMETHODIMP get_Name(BSTR* value) override {
        *value = SysAllocStringLen(name.data(), static_cast<UINT>(name.size()));
        return status;
    }
    STDMETHODIMP put_Name(BSTR value) override {
        name.assign(value, SysStringLen(value));
        return status;
    }
    STDMETHODIMP get_File(BSTR*) override { return Fail(); }
    STDMETHODIMP put_File(BSTR) override { return E_NOTIMPL; }
    STDMETHODIMP get_Encoding(MailEncoding* value) override {
        *value = encoding;
        return status;
    }
    STDMETHODIMP put_Encoding(MailEncoding value) override {
        encoding = value;
        return status;
    }
    STDMETHODIMP get_ContentType(BSTR* value) override {
        *value = nullptr;
        return S_OK;
    }
    STDMETHODIMP put_ContentType(BSTR) override { return E_INVALIDARG; }
    STDMETHODIMP get_Charset(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP put_Charset(BSTR) override { return E_NOTIMPL; }
    STDMETHODIMP get_Inline(VARIANT_BOOL* value) override {
        *value = isInline;
        return status;
    }
    STDMETHODIMP put_Inline(VARIANT_BOOL value) override {
        isInline = value;
        return status;
    }
    STDMETHODIMP get_ContentId(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP put_ContentId(BSTR) override { return E_NOTIMPL; }
    STDMETHODIMP LoadFromMemory(unsigned char* data, LONG size) override {
        loaded.assign(data, data + size);
        return status;
    }
    STDMETHODIMP SaveToMemory(unsigned char**, LONG*) override { return E_NOTIMPL; }

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) override {
        return iid == __uuidof(IMailAttachment) ? S_OK : S_FALSE;
    }

    HRESULT status = S_OK;
    LONG references = 0;
    Text name;
    MailEncoding encoding = MailEncodingDefault;
    VARIANT_BOOL isInline = VARIANT_FALSE;
    std::vector<unsigned char> loaded;

private:
    static HRESULT Fail() {
        ICreateErrorInfo* creator = nullptr;
        IErrorInfo* info = nullptr;
        OLECHAR source[] = OLESTR("Test.Attachment");
        OLECHAR description[] = OLESTR("No such file.");
        CreateErrorInfo(&creator);
        creator->SetSource(source);
        creator->SetDescription(description);
        creator->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info));
        SetErrorInfo(0, info);
        info->Release();
        creator->Release();
        return E_ACCESSDENIED;
    }
};

// The arguments of a call, the last one first as callers give them; owns them.
class Arguments {
public:
    Arguments() = default;
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;
    ~Arguments() {
        for (VARIANT& value : values_) VariantClear(&value);
    }

    // Adds the next argument.
    Arguments& Add(const VARIANT& value) {
        values_.insert(values_.begin(), value);
        return *this;
    }
    Arguments& Add(LONG value) {
        VARIANT variant = Typed(VT_I4);
        variant.lVal = value;
        return Add(variant);
    }
    Arguments& Add(const OLECHAR* text) {
        VARIANT variant = Typed(VT_BSTR);
        variant.bstrVal = SysAllocString(text);
        return Add(variant);
    }
    // Names the argument that comes first in the list.
    Arguments& Name(DISPID id) {
        names_.push_back(id);
        return *this;
    }

    DISPPARAMS* get() {
        params_ = {values_.data(), names_.empty() ? nullptr : names_.data(),
                   static_cast<UINT>(values_.size()), static_cast<UINT>(names_.size())};
        return &params_;
    }

    static VARIANT Typed(VARTYPE type) {
        VARIANT variant;
        VariantInit(&variant);
        variant.vt = type;
        return variant;
    }

private:
    std::vector<VARIANT> values_;
    std::vector<DISPID> names_;
    DISPPARAMS params_{};
};

class LateBindingTest : public testing::Test {
protected:
    void SetUp() override {
        library_ = LoadComponentTypeLibrary();
        ASSERT_NE(library_, nullptr);
        ASSERT_EQ(library_->GetTypeInfoOfGuid(__uuidof(IMailAttachment), &info_), S_OK);
        VariantInit(&result_);
    }
    void TearDown() override {
        VariantClear(&result_);
        SysFreeString(exception_.bstrSource);
        SysFreeString(exception_.bstrDescription);
        SysFreeString(exception_.bstrHelpFile);
        if (info_) info_->Release();
        if (library_) library_->Release();
        EXPECT_EQ(attachment_.references, 0);
    }

    DISPID Id(const OLECHAR* name) {
        LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
        DISPID id = DISPID_UNKNOWN;
        EXPECT_EQ(info_->GetIDsOfNames(names, 1, &id), S_OK);
        return id;
    }

    HRESULT Invoke(const OLECHAR* name, WORD flags, Arguments& arguments) {
        VariantClear(&result_);
        badArgument_ = 99;
        return info_->Invoke(static_cast<IMailAttachment*>(&attachment_), Id(name), flags,
                             arguments.get(), &result_, &exception_, &badArgument_);
    }
    HRESULT Get(const OLECHAR* name) {
        Arguments none;
        return Invoke(name, DISPATCH_PROPERTYGET, none);
    }
    template <class Value>
    HRESULT Put(const OLECHAR* name, const Value& value) {
        Arguments arguments;
        arguments.Add(value).Name(DISPID_PROPERTYPUT);
        return Invoke(name, DISPATCH_PROPERTYPUT, arguments);
    }

    Attachment attachment_;
    ITypeLib* library_ = nullptr;
    ITypeInfo* info_ = nullptr;
    VARIANT result_;
    EXCEPINFO exception_{};
    UINT badArgument_ = 0;
};

}  // namespace late_binding

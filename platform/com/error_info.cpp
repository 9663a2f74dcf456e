// Error information: an object with texts about a failure, kept for the thread that failed.
#include <ole2.h>

#include <atomic>
#include <new>
#include <string>

namespace {

// A text of the object, E_OUTOFMEMORY when it can't be kept.
class Text {
public:
    Text() = default;
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    ~Text() { SysFreeString(text_); }

    HRESULT Set(LPCOLESTR text) {
        const BSTR copy = SysAllocString(text);
        if (text && !copy) return E_OUTOFMEMORY;
        SysFreeString(text_);
        text_ = copy;
        return S_OK;
    }

    HRESULT Get(BSTR* out) const {
        if (!out) return E_INVALIDARG;
        *out = SysAllocString(text_);
        return text_ && !*out ? E_OUTOFMEMORY : S_OK;
    }

private:
    BSTR text_ = nullptr;
};

class ErrorInfo final : public ICreateErrorInfo, public IErrorInfo {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (!object) return E_POINTER;
        if (riid == IID_IUnknown || riid == IID_ICreateErrorInfo) {
            *object = static_cast<ICreateErrorInfo*>(this);
        } else if (riid == IID_IErrorInfo) {
            *object = static_cast<IErrorInfo*>(this);
        } else {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

    HRESULT STDMETHODCALLTYPE SetGUID(REFGUID guid) override {
        guid_ = guid;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetSource(LPOLESTR source) override { return source_.Set(source); }
    HRESULT STDMETHODCALLTYPE SetDescription(LPOLESTR description) override {
        return description_.Set(description);
    }
    HRESULT STDMETHODCALLTYPE SetHelpFile(LPOLESTR helpFile) override {
        return helpFile_.Set(helpFile);
    }
    HRESULT STDMETHODCALLTYPE SetHelpContext(DWORD helpContext) override {
        helpContext_ = helpContext;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetGUID(GUID* guid) override {
        if (!guid) return E_INVALIDARG;
        *guid = guid_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetSource(BSTR* source) override { return source_.Get(source); }
    HRESULT STDMETHODCALLTYPE GetDescription(BSTR* description) override {
        return description_.Get(description);
    }
    HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* helpFile) override {
        return helpFile_.Get(helpFile);
    }
    HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* helpContext) override {
        if (!helpContext) return E_INVALIDARG;
        *helpContext = helpContext_;
        return S_OK;
    }

private:
    ~ErrorInfo() = default;

    std::atomic<ULONG> references_{1};
    GUID guid_{};
    Text source_;
    Text description_;
    Text helpFile_;
    DWORD helpContext_ = 0;
};

// The error information of one thread.
class ThreadErrorInfo {
public:
    ThreadErrorInfo() = default;
    ThreadErrorInfo(const ThreadErrorInfo&) = delete;
    ThreadErrorInfo& operator=(const ThreadErrorInfo&) = delete;
    ~ThreadErrorInfo() { Set(nullptr); }

    void Set(IErrorInfo* info) {
        if (info) info->AddRef();
        // The old one goes last: its Release may run foreign code that sets another.
        IErrorInfo* const old = info_;
        info_ = info;
        if (old) old->Release();
    }

    IErrorInfo* Take() {
        IErrorInfo* const info = info_;
        info_ = nullptr;
        return info;
    }

private:
    IErrorInfo* info_ = nullptr;
};

thread_local ThreadErrorInfo t_errorInfo;

}  // namespace

HRESULT CreateErrorInfo(ICreateErrorInfo** info) {
    if (!info) return E_INVALIDARG;
    *info = new (std::nothrow) ErrorInfo;
    return *info ? S_OK : E_OUTOFMEMORY;
}

HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info) {
    if (reserved != 0) return E_INVALIDARG;
    t_errorInfo.Set(info);
    return S_OK;
}

HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** info) {
    if (reserved != 0 || !info) return E_INVALIDARG;
    *info = t_errorInfo.Take();
    return *info ? S_OK : S_FALSE;
}

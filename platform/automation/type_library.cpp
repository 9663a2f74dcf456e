#include <oleauto.h>

#include <deque>
#include <new>

#include "type_info.h"
#include "type_registration.h"

namespace quorvane::platform {
namespace {

constexpr TypeData kDispatchType = {
    u"IDispatch", nullptr, __uuidof(IDispatch), TKIND_DISPATCH, 0, {}, {}, {}};

// The one type library; an object for ever, as its types are.
class TypeLibrary final : public ITypeLib {
public:
    TypeLibrary() {
        for (std::size_t i = 0; i < kTypeLibrary.types.size(); ++i) {
            const TypeData& type = kTypeLibrary.types[i];
            types_.emplace_back(type, static_cast<int>(i), TypeInfo::Side::Dispatch);
            types_.emplace_back(type, static_cast<int>(i), TypeInfo::Side::Table);
        }
    }
    TypeLibrary(const TypeLibrary&) = delete;
    TypeLibrary& operator=(const TypeLibrary&) = delete;

    TypeInfo* Find(HREFTYPE reference) {
        if (reference == kDispatchReference) return &dispatch_;
        return reference < types_.size() ? &types_[reference] : nullptr;
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (!object) return E_POINTER;
        const bool known = riid == IID_IUnknown || riid == IID_ITypeLib;
        *object = known ? static_cast<ITypeLib*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    UINT STDMETHODCALLTYPE GetTypeInfoCount() override {
        return static_cast<UINT>(kTypeLibrary.types.size());
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, ITypeInfo** info) override {
        if (!info) return E_INVALIDARG;
        *info = nullptr;
        if (index >= GetTypeInfoCount()) return TYPE_E_ELEMENTNOTFOUND;
        *info = Find(ReferenceTo(static_cast<int>(index), TypeInfo::Side::Dispatch));
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfoType(UINT index, TYPEKIND* kind) override {
        if (!kind) return E_INVALIDARG;
        if (index >= GetTypeInfoCount()) return TYPE_E_ELEMENTNOTFOUND;
        *kind = kTypeLibrary.types[index].kind;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfoOfGuid(REFGUID guid, ITypeInfo** info) override {
        if (!info) return E_INVALIDARG;
        *info = nullptr;
        for (UINT index = 0; index < GetTypeInfoCount(); ++index) {
            if (kTypeLibrary.types[index].guid == guid) return GetTypeInfo(index, info);
        }
        return TYPE_E_ELEMENTNOTFOUND;
    }

    HRESULT STDMETHODCALLTYPE GetLibAttr(TLIBATTR** attributes) override {
        if (!attributes) return E_INVALIDARG;
        *attributes = new (std::nothrow)
            TLIBATTR{kTypeLibrary.guid,         kTypeLibrary.lcid,         SYS_WIN64,
                     kTypeLibrary.majorVersion, kTypeLibrary.minorVersion, 0};
        return *attributes ? S_OK : E_OUTOFMEMORY;
    }

    void STDMETHODCALLTYPE ReleaseTLibAttr(TLIBATTR* attributes) override { delete attributes; }

    HRESULT STDMETHODCALLTYPE GetDocumentation(INT index, BSTR* name, BSTR* text,
                                               DWORD* helpContext, BSTR* helpFile) override {
        if (index >= 0) {
            ITypeInfo* info;
            const HRESULT hr = GetTypeInfo(static_cast<UINT>(index), &info);
            if (FAILED(hr)) return hr;
            return info->GetDocumentation(MEMBERID_NIL, name, text, helpContext, helpFile);
        }
        if (helpContext) *helpContext = 0;
        if (helpFile) *helpFile = nullptr;
        const HRESULT hr = GiveText(kTypeLibrary.name, name);
        return FAILED(hr) ? hr : GiveText(kTypeLibrary.help, text);
    }

    // Binding compilers have no use here.
    HRESULT STDMETHODCALLTYPE GetTypeComp(ITypeComp**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE IsName(LPOLESTR, ULONG, BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE FindName(LPOLESTR, ULONG, ITypeInfo**, MEMBERID*, USHORT*) override {
        return E_NOTIMPL;
    }

private:
    std::deque<TypeInfo> types_;  // of each type the dispatch side and the table
    TypeInfo dispatch_{kDispatchType, -1, TypeInfo::Side::Dispatch};
};

// Never destroyed: clients may hold it until the very end of the process.
TypeLibrary& Library() {
    static TypeLibrary& library = *new TypeLibrary;
    return library;
}

}  // namespace

TypeInfo* FindType(HREFTYPE reference) {
    return Library().Find(reference);
}

ITypeLib* OwnTypeLibrary() {
    return &Library();
}

}  // namespace quorvane::platform

using namespace quorvane::platform;

HRESULT LoadTypeLibEx(LPCOLESTR path, REGKIND kind, ITypeLib** library) {
    if (!path || !library) return E_INVALIDARG;
    *library = nullptr;
    try {
        if (kind == REGKIND_REGISTER) {
            const HRESULT hr = RegisterTypeLibrary(path);
            if (FAILED(hr)) return hr;
        }
        *library = OwnTypeLibrary();
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT UnRegisterTypeLib(REFGUID guid, WORD majorVersion, WORD minorVersion, LCID lcid, SYSKIND) {
    if (guid != kTypeLibrary.guid || majorVersion != kTypeLibrary.majorVersion ||
        minorVersion != kTypeLibrary.minorVersion || lcid != kTypeLibrary.lcid) {
        return TYPE_E_REGISTRYACCESS;
    }
    try {
        return UnregisterTypeLibrary();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

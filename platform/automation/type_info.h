// Type information from data.
#pragma once

#include <oaidl.h>

#include "type_data.h"

namespace quorvane::platform {

// One type of the library, or IDispatch, from which its interfaces derive. A dual interface has
// two: the dispatch side, which is the one that the library hands out, and the table of functions.
// Objects of this class live as long as the program; reference counts mean nothing to them.
class TypeInfo final : public ITypeInfo {
public:
    enum class Side { Dispatch, Table };

    // `index`: place in the library; -1 for a type of another library.
    TypeInfo(const TypeData& data, int index, Side side)
        : data_(data), index_(index), side_(side) {}
    TypeInfo(const TypeInfo&) = delete;
    TypeInfo& operator=(const TypeInfo&) = delete;

    const TypeData& data() const { return data_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE GetTypeAttr(TYPEATTR** attributes) override;
    HRESULT STDMETHODCALLTYPE GetTypeComp(ITypeComp** comp) override;
    HRESULT STDMETHODCALLTYPE GetFuncDesc(UINT index, FUNCDESC** description) override;
    HRESULT STDMETHODCALLTYPE GetVarDesc(UINT index, VARDESC** description) override;
    HRESULT STDMETHODCALLTYPE GetNames(MEMBERID member, BSTR* names, UINT room,
                                       UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetRefTypeOfImplType(UINT index, HREFTYPE* type) override;
    HRESULT STDMETHODCALLTYPE GetImplTypeFlags(UINT index, INT* flags) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(LPOLESTR* names, UINT count, MEMBERID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(PVOID instance, MEMBERID member, WORD flags,
                                     DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                     UINT* argumentInError) override;
    HRESULT STDMETHODCALLTYPE GetDocumentation(MEMBERID member, BSTR* name, BSTR* text,
                                               DWORD* helpContext, BSTR* helpFile) override;
    HRESULT STDMETHODCALLTYPE GetDllEntry(MEMBERID member, INVOKEKIND kind, BSTR* library,
                                          BSTR* name, WORD* ordinal) override;
    HRESULT STDMETHODCALLTYPE GetRefTypeInfo(HREFTYPE type, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE AddressOfMember(MEMBERID member, INVOKEKIND kind,
                                              PVOID* address) override;
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, PVOID* object) override;
    HRESULT STDMETHODCALLTYPE GetMops(MEMBERID member, BSTR* mops) override;
    HRESULT STDMETHODCALLTYPE GetContainingTypeLib(ITypeLib** library, UINT* index) override;
    void STDMETHODCALLTYPE ReleaseTypeAttr(TYPEATTR* attributes) override;
    void STDMETHODCALLTYPE ReleaseFuncDesc(FUNCDESC* description) override;
    void STDMETHODCALLTYPE ReleaseVarDesc(VARDESC* description) override;

private:
    bool IsDual() const { return data_.flags & TYPEFLAG_FDUAL; }
    bool IsInterface() const { return data_.kind == TKIND_DISPATCH; }
    const FunctionData* FindFunction(MEMBERID member) const;
    const FunctionData* FindFunction(const OLECHAR* name) const;

    const TypeData& data_;
    int index_;
    Side side_;
};

// References to types: those of the library by their place and side, and IDispatch.
constexpr HREFTYPE kDispatchReference = 0xFFFF;
constexpr HREFTYPE ReferenceTo(int index, TypeInfo::Side side) {
    return static_cast<HREFTYPE>(index) * 2 + (side == TypeInfo::Side::Table ? 1 : 0);
}

// The type information behind a reference; null when there is none.
TypeInfo* FindType(HREFTYPE reference);
// The component's type library, itself an object for ever.
ITypeLib* OwnTypeLibrary();

// A function's description in one block of memory, freed with FreeFunctionDescription: as the table
// of functions has it, or as IDispatch callers see it, whose result is the parameter marked retval.
// Null when there is no memory.
FUNCDESC* DescribeFunction(const FunctionData& function, TypeInfo::Side side);
void FreeFunctionDescription(FUNCDESC* description);

// Gives *out an automation string with the text, null for a null text; nothing for a null `out`.
HRESULT GiveText(const OLECHAR* text, BSTR* out);

// Compares without regard to the case of ASCII letters.
bool EqualNames(const OLECHAR* a, const OLECHAR* b);

}  // namespace quorvane::platform

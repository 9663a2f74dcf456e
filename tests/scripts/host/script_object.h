// Automation objects that the host offers to scripts, with their members in a table.
#pragma once

#include <windows.h>
#include <oaidl.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace scripthost {

// Thrown by a member to become a run-time error of the script.
struct ScriptError {
    HRESULT status;
    std::wstring text;
};

// The arguments of one call, in the order in which they were written.
class Arguments {
public:
    explicit Arguments(const DISPPARAMS& parameters) : parameters_(parameters) {}

    UINT Count() const { return parameters_.cArgs; }
    // Conversions as the language does them; throw ScriptError when there is none.
    std::wstring Text(UINT index) const;
    long Number(UINT index) const;
    IDispatch& Object(UINT index) const;

private:
    const VARIANT& At(UINT index) const;

    const DISPPARAMS& parameters_;
};

// Lives as long as its owner: references don't count. Names are matched without regard to case.
class ScriptObject : public IDispatch {
public:
    // Fills the result, which is VT_EMPTY at first and may be thrown away.
    using Member = std::function<void(const Arguments&, VARIANT& result)>;

    ScriptObject() = default;
    ScriptObject(const ScriptObject&) = delete;
    ScriptObject& operator=(const ScriptObject&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override;
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** out) override;
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                        VARIANT* result, EXCEPINFO* exception, UINT* badArgument) override;

protected:
    ~ScriptObject() = default;

    void Add(const wchar_t* name, Member member);
    // The member that stands for the object itself.
    void AddDefault(Member member) { default_ = std::move(member); }

private:
    struct Entry {
        std::wstring name;
        Member member;
    };
    const Member* Find(DISPID id) const;

    std::vector<Entry> entries_;
    Member default_;
};

void SetText(VARIANT& result, std::wstring_view text);
void SetNumber(VARIANT& result, long number);
// Takes a reference.
void SetObject(VARIANT& result, IDispatch* object);

}  // namespace scripthost

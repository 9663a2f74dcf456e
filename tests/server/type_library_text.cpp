#include "tests/server/type_library_text.h"

#include <windows.h>
#include <oleauto.h>

#include <fmt/format.h>

#include <stdexcept>
#include <vector>

#include "automation/com_ptr.h"
#include "automation/wide_string.h"

namespace quorvane {
namespace {

struct FlagName {
    unsigned flag;
    const char* name;
};

constexpr FlagName kTypeFlags[] = {
    {TYPEFLAG_FCANCREATE, "creatable"},
    {TYPEFLAG_FCONTROL, "control"},
    {TYPEFLAG_FDUAL, "dual"},
    {TYPEFLAG_FOLEAUTOMATION, "oleautomation"},
    {TYPEFLAG_FDISPATCHABLE, "dispatchable"},
};
constexpr FlagName kImplementedFlags[] = {
    {IMPLTYPEFLAG_FDEFAULT, "default"},
    {IMPLTYPEFLAG_FSOURCE, "source"},
};
constexpr FlagName kParameterFlags[] = {
    {PARAMFLAG_FIN, "in"},
    {PARAMFLAG_FOUT, "out"},
    {PARAMFLAG_FRETVAL, "retval"},
};

// Names of the flags, and the rest as a number so that no flag goes unseen; a blank behind each.
template <std::size_t N>
std::string Names(unsigned flags, const FlagName (&known)[N]) {
    std::string text;
    for (const FlagName& each : known) {
        if (!(flags & each.flag)) continue;
        text += fmt::format("{} ", each.name);
        flags &= ~each.flag;
    }
    return flags ? text + fmt::format("flags:{} ", flags) : text;
}

void Check(HRESULT hr, const char* call) {
    if (SUCCEEDED(hr)) return;
    throw std::runtime_error(fmt::format("{}: {:08X}", call, static_cast<unsigned long>(hr)));
}

std::string Text(const BstrHolder& text) {
    return ToUtf8(FromBstr(text.Get()));
}

std::string GuidText(REFGUID guid) {
    WCHAR text[40];
    StringFromGUID2(guid, text, 40);
    return ToUtf8(text);
}

// One type of the library, with its attributes.
class Type {
public:
    explicit Type(ComPtr<ITypeInfo> info) : info_(std::move(info)) {
        Check(info_->GetTypeAttr(&attributes_), "GetTypeAttr");
    }
    ~Type() { info_->ReleaseTypeAttr(attributes_); }
    Type(const Type&) = delete;
    Type& operator=(const Type&) = delete;

    const TYPEATTR& attributes() const { return *attributes_; }

    std::string Name(MEMBERID member = MEMBERID_NIL) const {
        BstrHolder name;
        Check(info_->GetDocumentation(member, name.Receive(), nullptr, nullptr, nullptr),
              "GetDocumentation");
        return Text(name);
    }

    std::string Help(MEMBERID member = MEMBERID_NIL) const {
        BstrHolder help;
        Check(info_->GetDocumentation(member, nullptr, help.Receive(), nullptr, nullptr),
              "GetDocumentation");
        return help.Get() ? fmt::format(" \"{}\"", Text(help)) : "";
    }

    ComPtr<ITypeInfo> Referred(HREFTYPE reference) const {
        ComPtr<ITypeInfo> info;
        Check(info_->GetRefTypeInfo(reference, info.Receive()), "GetRefTypeInfo");
        return info;
    }

    // The interface implemented or derived from; -1 is the table of functions of a dual interface.
    ComPtr<ITypeInfo> Implemented(int index) const {
        HREFTYPE reference = 0;
        Check(info_->GetRefTypeOfImplType(static_cast<UINT>(index), &reference),
              "GetRefTypeOfImplType");
        return Referred(reference);
    }

    std::string Implementations() const {
        std::string text;
        for (WORD index = 0; index < attributes_->cImplTypes; ++index) {
            INT flags = 0;
            Check(info_->GetImplTypeFlags(index, &flags), "GetImplTypeFlags");
            const Type implemented(Implemented(index));
            text += fmt::format("    {} {}{} {}\n",
                                attributes_->typekind == TKIND_COCLASS ? "implements" : "base",
                                Names(static_cast<unsigned>(flags), kImplementedFlags),
                                implemented.Name(), GuidText(implemented.attributes().guid));
        }
        return text;
    }

    std::string Members() const {
        std::string text;
        for (WORD index = 0; index < attributes_->cFuncs; ++index) text += Function(index);
        for (WORD index = 0; index < attributes_->cVars; ++index) text += Constant(index);
        return text;
    }

private:
    std::string TypeText(const TYPEDESC& type) const {
        static constexpr struct {
            VARTYPE type;
            const char* name;
        } kNames[] = {
            {VT_I4, "long"},   {VT_BSTR, "BSTR"},       {VT_BOOL, "VARIANT_BOOL"},
            {VT_VOID, "void"}, {VT_VARIANT, "VARIANT"}, {VT_UI1, "unsigned char"},
            {VT_INT, "int"},   {VT_HRESULT, "HRESULT"},
        };
        if (type.vt == VT_PTR) return TypeText(*type.lptdesc) + "*";
        if (type.vt == VT_USERDEFINED) return Type(Referred(type.hreftype)).Name();
        for (const auto& known : kNames) {
            if (known.type == type.vt) return known.name;
        }
        return fmt::format("type{}", type.vt);
    }

    std::string Function(UINT index) const {
        FUNCDESC* function = nullptr;
        Check(info_->GetFuncDesc(index, &function), "GetFuncDesc");
        const std::string text = FunctionText(*function);
        info_->ReleaseFuncDesc(function);
        return text;
    }

    std::string FunctionText(const FUNCDESC& function) const {
        const char* kind = function.invkind == INVOKE_PROPERTYGET   ? "get"
                           : function.invkind == INVOKE_PROPERTYPUT ? "put"
                           : function.invkind == INVOKE_FUNC        ? "method"
                                                                    : "putref";
        const std::string slot =
            function.funckind == FUNC_PUREVIRTUAL
                ? fmt::format("[{}] ", function.oVft / static_cast<int>(sizeof(void*)))
                : "";
        const std::string flags =
            function.wFuncFlags ? fmt::format(" flags:{}", function.wFuncFlags) : "";
        return fmt::format("    {}{} {} {}({}) {}{}{}\n", slot, kind, function.memid,
                           Name(function.memid), Parameters(function),
                           TypeText(function.elemdescFunc.tdesc), flags, Help(function.memid));
    }

    std::string Parameters(const FUNCDESC& function) const {
        constexpr UINT kMostNames = 16;
        BSTR names[kMostNames] = {};
        UINT count = 0;
        Check(info_->GetNames(function.memid, names, kMostNames, &count), "GetNames");
        // Both halves of a property have one identifier, and the names are those of its first half.
        const bool isPut = function.invkind == INVOKE_PROPERTYPUT;
        std::string text;
        for (SHORT index = 0; index < function.cParams; ++index) {
            const ELEMDESC& parameter = function.lprgelemdescParam[index];
            const UINT name = static_cast<UINT>(index) + 1;
            text += fmt::format("{}{}{}", index > 0 ? ", " : "",
                                Names(parameter.paramdesc.wParamFlags, kParameterFlags),
                                TypeText(parameter.tdesc));
            if (name < count && !isPut) text += fmt::format(" {}", ToUtf8(FromBstr(names[name])));
        }
        for (UINT index = 0; index < count; ++index) SysFreeString(names[index]);
        return text;
    }

    std::string Constant(UINT index) const {
        VARDESC* variable = nullptr;
        Check(info_->GetVarDesc(index, &variable), "GetVarDesc");
        const bool isConstant = variable->varkind == VAR_CONST && variable->lpvarValue->vt == VT_I4;
        const std::string text = fmt::format(
            "    {} = {}{}\n", Name(variable->memid),
            isConstant ? std::to_string(variable->lpvarValue->lVal) : "?", Help(variable->memid));
        info_->ReleaseVarDesc(variable);
        return text;
    }

    ComPtr<ITypeInfo> info_;
    TYPEATTR* attributes_ = nullptr;
};

std::string Heading(const Type& type, const char* kind) {
    const TYPEATTR& attributes = type.attributes();
    const std::string guid =
        attributes.guid != GUID_NULL ? fmt::format(" {}", GuidText(attributes.guid)) : "";
    std::string flags = Names(attributes.wTypeFlags, kTypeFlags);
    if (!flags.empty()) flags = fmt::format(" {}", flags.substr(0, flags.size() - 1));
    return fmt::format("\n{} {}{}{}{}\n", kind, type.Name(), guid, flags, type.Help());
}

std::string TypeText(ComPtr<ITypeInfo> info) {
    const Type type(std::move(info));
    switch (type.attributes().typekind) {
        case TKIND_COCLASS:
            return Heading(type, "class") + type.Implementations();
        case TKIND_ENUM:
            return Heading(type, "enum") + type.Members();
        case TKIND_DISPATCH:
            break;
        default:
            return Heading(type, "other") + type.Implementations() + type.Members();
    }
    if (!(type.attributes().wTypeFlags & TYPEFLAG_FDUAL)) {
        return Heading(type, "dispinterface") + type.Implementations() + type.Members();
    }
    const Type table(type.Implemented(-1));
    return Heading(table, "interface") + table.Implementations() + table.Members();
}

std::string LibraryHeading(ITypeLib& library) {
    BstrHolder name;
    BstrHolder help;
    Check(library.GetDocumentation(-1, name.Receive(), help.Receive(), nullptr, nullptr),
          "GetDocumentation");
    TLIBATTR* attributes = nullptr;
    Check(library.GetLibAttr(&attributes), "GetLibAttr");
    const std::string text = fmt::format(
        "library {} {} version {}.{} locale {} \"{}\"\n", Text(name), GuidText(attributes->guid),
        attributes->wMajorVerNum, attributes->wMinorVerNum, attributes->lcid, Text(help));
    library.ReleaseTLibAttr(attributes);
    return text;
}

}  // namespace

std::string TypeLibraryText(const WideString& path) {
    ComPtr<ITypeLib> library;
    Check(LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.Receive()), "LoadTypeLibEx");
    std::string text = LibraryHeading(*library.Get());
    for (UINT index = 0; index < library->GetTypeInfoCount(); ++index) {
        ComPtr<ITypeInfo> info;
        Check(library->GetTypeInfo(index, info.Receive()), "GetTypeInfo");
        text += TypeText(std::move(info));
    }
    return text;
}

}  // namespace quorvane

// A type library as data. scripts/idl/generate_type_data.py makes it out of the interface
// definition.
#pragma once

#include <oaidl.h>

#include <span>

namespace quorvane::platform {

struct TypeReference {
    VARTYPE type;  // VT_USERDEFINED for a type of the library
    BYTE pointers;
    SHORT index;  // of the library's type; else -1
};

struct ParameterData {
    const OLECHAR* name;
    TypeReference type;
    USHORT flags;  // PARAMFLAG_...
};

struct FunctionData {
    const OLECHAR* name;
    const OLECHAR* help;  // null for none, here and below
    MEMBERID member;
    INVOKEKIND kind;
    TypeReference result;
    std::span<const ParameterData> parameters;
    SHORT slot;  // in the table of functions; -1 when it is called through IDispatch only
};

struct ConstantData {
    const OLECHAR* name;
    LONG value;
};

struct ImplementedData {
    SHORT index;  // of the library's type
    INT flags;    // IMPLTYPEFLAG_...
};

struct TypeData {
    const OLECHAR* name;
    const OLECHAR* help;
    GUID guid;
    TYPEKIND kind;  // TKIND_DISPATCH for a dual interface
    WORD flags;     // TYPEFLAG_...
    std::span<const FunctionData> functions;
    std::span<const ConstantData> constants;
    std::span<const ImplementedData> implemented;
};

struct LibraryData {
    const OLECHAR* name;
    const OLECHAR* help;
    GUID guid;
    LCID lcid;
    WORD majorVersion;
    WORD minorVersion;
    std::span<const TypeData> types;
};

// The component's type library.
extern const LibraryData kTypeLibrary;

}  // namespace quorvane::platform

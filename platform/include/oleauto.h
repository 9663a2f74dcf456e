// Functions on automation strings, variants, type libraries and error information.
#pragma once

#include "oaidl.h"

#ifdef __cplusplus

// Automation strings. The length prefix counts bytes; text may hold NULs; a null BSTR is a text of
// length 0. Null when there is no memory or the length doesn't fit the prefix.
STDAPI_(BSTR) SysAllocString(const OLECHAR* text);
STDAPI_(BSTR) SysAllocStringLen(const OLECHAR* text, UINT units);
STDAPI_(BSTR) SysAllocStringByteLen(LPCSTR bytes, UINT size);
STDAPI_(void) SysFreeString(BSTR text);
STDAPI_(UINT) SysStringLen(BSTR text);
STDAPI_(UINT) SysStringByteLen(BSTR text);

#define VARIANT_ALPHABOOL 0x02

// Variants of the types VT_EMPTY, VT_NULL, VT_BSTR, VT_BOOL, VT_ERROR, VT_DISPATCH, VT_UNKNOWN, all
// integers, VT_R4, VT_R8, and VT_BYREF forms of them and of VT_VARIANT.
// Differs from Windows: any other type (dates, currency, decimals, arrays, records) gives
// DISP_E_BADVARTYPE, since no interface here has a parameter of one; and VT_DATE is copied but not
// converted.
STDAPI_(void) VariantInit(VARIANTARG* variant);
STDAPI VariantClear(VARIANTARG* variant);
STDAPI VariantCopy(VARIANTARG* destination, const VARIANTARG* source);
STDAPI VariantCopyInd(VARIANT* destination, const VARIANTARG* source);
STDAPI VariantChangeType(VARIANTARG* destination, const VARIANTARG* source, USHORT flags,
                         VARTYPE type);
STDAPI VariantChangeTypeEx(VARIANTARG* destination, const VARIANTARG* source, LCID lcid,
                           USHORT flags, VARTYPE type);

// The calling thread's error information. SetErrorInfo(0, nullptr) removes it; GetErrorInfo takes
// it away and gives it to the caller, S_FALSE when there is none.
STDAPI CreateErrorInfo(ICreateErrorInfo** info);
STDAPI SetErrorInfo(ULONG reserved, IErrorInfo* info);
STDAPI GetErrorInfo(ULONG reserved, IErrorInfo** info);

typedef enum tagREGKIND { REGKIND_DEFAULT = 0, REGKIND_REGISTER = 1, REGKIND_NONE = 2 } REGKIND;

// Differs from Windows: there is one type library, that of the component, and it is loaded
// whatever the path. TYPE_E_REGISTRYACCESS when it can't be registered.
STDAPI LoadTypeLibEx(LPCOLESTR path, REGKIND kind, ITypeLib** library);
// Differs from Windows: only the component's own library is known.
STDAPI UnRegisterTypeLib(REFGUID guid, WORD majorVersion, WORD minorVersion, LCID lcid,
                         SYSKIND kind);

#endif

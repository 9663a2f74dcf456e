// Globally unique identifiers.
#pragma once

#include "windef.h"

typedef struct _GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
} GUID;

typedef GUID IID;
typedef GUID CLSID;
typedef CLSID* LPCLSID;

#ifdef __cplusplus
#define REFGUID const GUID&
#define REFIID const IID&
#define REFCLSID const CLSID&
#else
#define REFGUID const GUID*
#define REFIID const IID*
#define REFCLSID const CLSID*
#endif

#define DEFINE_GUID(name, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8) \
    EXTERN_C QUORVANE_EXPORT const GUID name

EXTERN_C QUORVANE_EXPORT const GUID GUID_NULL;
#define IID_NULL GUID_NULL
#define CLSID_NULL GUID_NULL

#ifdef __cplusplus

inline bool IsEqualGUID(REFGUID a, REFGUID b) {
    return __builtin_memcmp(&a, &b, sizeof(GUID)) == 0;
}
inline bool IsEqualIID(REFIID a, REFIID b) {
    return IsEqualGUID(a, b);
}
inline bool IsEqualCLSID(REFCLSID a, REFCLSID b) {
    return IsEqualGUID(a, b);
}
inline bool operator==(REFGUID a, REFGUID b) {
    return IsEqualGUID(a, b);
}
inline bool operator!=(REFGUID a, REFGUID b) {
    return !IsEqualGUID(a, b);
}

// __uuidof for compilers that have no such keyword: each interface declares its identifier with
// __CRT_UUID_DECL, as the headers that come out of interface definitions do.
template <typename T>
struct QuorvaneUuidOf;
template <typename T>
struct QuorvaneUuidOf<T*> : QuorvaneUuidOf<T> {};
template <typename T>
struct QuorvaneUuidOf<T&> : QuorvaneUuidOf<T> {};
template <typename T>
struct QuorvaneUuidOf<const T> : QuorvaneUuidOf<T> {};

#define __CRT_UUID_DECL(type, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8)             \
    extern "C++" {                                                                   \
    template <>                                                                      \
    struct QuorvaneUuidOf<type> {                                                    \
        static constexpr GUID value = {l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}}; \
    };                                                                               \
    }
#define __uuidof(type) (QuorvaneUuidOf<__typeof__(type)>::value)

#endif

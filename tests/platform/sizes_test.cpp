// Sizes, values and layouts that compiled code on both sides of an interface agrees on. All of this
// is decided when it compiles.
#include <winsock2.h>
#include <windows.h>
#include <ws2tcpip.h>
#include <olectl.h>
#include <windns.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace {

static_assert(sizeof(BYTE) == 1 && std::is_unsigned_v<BYTE>);
static_assert(sizeof(WORD) == 2 && std::is_unsigned_v<WORD>);
static_assert(sizeof(SHORT) == 2 && std::is_signed_v<SHORT>);
static_assert(sizeof(LONG) == 4 && std::is_signed_v<LONG>);
static_assert(sizeof(ULONG) == 4 && std::is_unsigned_v<ULONG>);
static_assert(sizeof(DWORD) == 4 && std::is_unsigned_v<DWORD>);
static_assert(sizeof(INT) == 4 && sizeof(UINT) == 4 && sizeof(BOOL) == 4);
static_assert(sizeof(LONGLONG) == 8 && sizeof(ULONGLONG) == 8);
static_assert(sizeof(SIZE_T) == 8 && std::is_same_v<SIZE_T, std::size_t>);
static_assert(sizeof(HANDLE) == 8 && sizeof(UINT_PTR) == 8 && sizeof(LONG_PTR) == 8);
static_assert(sizeof(HRESULT) == 4 && std::is_signed_v<HRESULT>);
static_assert(sizeof(WCHAR) == 2 && sizeof(OLECHAR) == 2 && std::is_same_v<WCHAR, OLECHAR>);
static_assert(std::is_same_v<BSTR, OLECHAR*>);
static_assert(sizeof(VARIANT_BOOL) == 2 && VARIANT_TRUE == -1 && VARIANT_FALSE == 0);
static_assert(sizeof(DISPID) == 4 && sizeof(LCID) == 4 && sizeof(VARTYPE) == 2);

static_assert(sizeof(GUID) == 16 && alignof(GUID) == 4);
static_assert(sizeof(VARIANT) == 24 && offsetof(VARIANT, vt) == 0);
static_assert(offsetof(VARIANT, lVal) == 8 && offsetof(VARIANT, bstrVal) == 8);
static_assert(offsetof(VARIANT, pRecInfo) == 16 && sizeof(DECIMAL) == 16);
static_assert(sizeof(DISPPARAMS) == 24 && offsetof(DISPPARAMS, cNamedArgs) == 20);
static_assert(sizeof(EXCEPINFO) == 64 && offsetof(EXCEPINFO, scode) == 56);
static_assert(offsetof(EXCEPINFO, bstrSource) == 8 && offsetof(EXCEPINFO, dwHelpContext) == 32);
static_assert(sizeof(TYPEATTR) == 96 && offsetof(TYPEATTR, typekind) == 44);
static_assert(offsetof(TYPEATTR, cFuncs) == 48 && offsetof(TYPEATTR, wTypeFlags) == 58);
static_assert(sizeof(TYPEDESC) == 16 && offsetof(TYPEDESC, vt) == 8);
static_assert(sizeof(ELEMDESC) == 32 && offsetof(ELEMDESC, paramdesc) == 16);
static_assert(sizeof(FUNCDESC) == 88 && offsetof(FUNCDESC, funckind) == 24);
static_assert(offsetof(FUNCDESC, cParams) == 36 && offsetof(FUNCDESC, elemdescFunc) == 48);
static_assert(sizeof(VARDESC) == 64 && offsetof(VARDESC, lpvarValue) == 16);
static_assert(sizeof(TLIBATTR) == 32 && offsetof(TLIBATTR, syskind) == 20);
static_assert(sizeof(SYSTEMTIME) == 16 && sizeof(TIME_ZONE_INFORMATION) == 172);
static_assert(offsetof(TIME_ZONE_INFORMATION, DaylightBias) == 168);
static_assert(sizeof(LARGE_INTEGER) == 8);

static_assert(sizeof(SOCKET) == 8 && std::is_unsigned_v<SOCKET>);
static_assert(sizeof(u_long) == 4 && sizeof(sockaddr) == 16);
static_assert(sizeof(sockaddr_in) == 16 && offsetof(sockaddr_in, sin_port) == 2);
static_assert(offsetof(sockaddr_in, sin_addr) == 4);
static_assert(sizeof(WSAPOLLFD) == 16 && offsetof(WSAPOLLFD, events) == 8);
static_assert(sizeof(ADDRINFOA) == 48 && offsetof(ADDRINFOA, ai_addr) == 32);
static_assert(sizeof(WSADATA) == 408);
static_assert(sizeof(DNS_STATUS) == 4 && sizeof(IP4_ARRAY) == 8);
static_assert(offsetof(DNS_RECORDW, wType) == 16 && offsetof(DNS_RECORDW, Data) == 32);
static_assert(sizeof(DNS_MX_DATAW) == 16 && offsetof(DNS_MX_DATAW, wPreference) == 8);

// An interface is a pointer to a table of its functions in the order of their declaration, and
// nothing else: a virtual destructor would take places of its own.
template <class Interface>
constexpr bool kIsBareTable =
    sizeof(Interface) == sizeof(void*) &&
    !std::has_virtual_destructor_v<Interface> && std::is_abstract_v<Interface>;
static_assert(kIsBareTable<IUnknown> && kIsBareTable<IClassFactory> && kIsBareTable<IDispatch>);
static_assert(kIsBareTable<ITypeInfo> && kIsBareTable<ITypeLib> && kIsBareTable<IErrorInfo>);
static_assert(kIsBareTable<ICreateErrorInfo> && kIsBareTable<ISupportErrorInfo>);

struct Code {
    HRESULT name;
    std::uint32_t value;
};
constexpr Code kCodes[] = {
    {S_OK, 0},
    {S_FALSE, 1},
    {E_NOTIMPL, 0x80004001},
    {E_NOINTERFACE, 0x80004002},
    {E_POINTER, 0x80004003},
    {E_FAIL, 0x80004005},
    {E_UNEXPECTED, 0x8000FFFF},
    {E_OUTOFMEMORY, 0x8007000E},
    {E_INVALIDARG, 0x80070057},
    {DISP_E_UNKNOWNINTERFACE, 0x80020001},
    {DISP_E_MEMBERNOTFOUND, 0x80020003},
    {DISP_E_PARAMNOTFOUND, 0x80020004},
    {DISP_E_TYPEMISMATCH, 0x80020005},
    {DISP_E_UNKNOWNNAME, 0x80020006},
    {DISP_E_BADVARTYPE, 0x80020008},
    {DISP_E_EXCEPTION, 0x80020009},
    {DISP_E_OVERFLOW, 0x8002000A},
    {DISP_E_BADINDEX, 0x8002000B},
    {DISP_E_BADPARAMCOUNT, 0x8002000E},
    {TYPE_E_REGISTRYACCESS, 0x8002801C},
    {TYPE_E_ELEMENTNOTFOUND, 0x8002802B},
    {TYPE_E_CANTLOADLIBRARY, 0x80029C4A},
    {CLASS_E_NOAGGREGATION, 0x80040110},
    {CLASS_E_CLASSNOTAVAILABLE, 0x80040111},
    {REGDB_E_CLASSNOTREG, 0x80040154},
    {CO_E_NOTINITIALIZED, 0x800401F0},
    {CO_E_CLASSSTRING, 0x800401F3},
    {RPC_E_CHANGED_MODE, 0x80010106},
    {HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND), 0x80070002},
    {HRESULT_FROM_WIN32(0), 0},
};
constexpr bool AllCodesRight() {
    for (const Code& code : kCodes) {
        if (code.name != static_cast<HRESULT>(code.value)) return false;
    }
    return true;
}
static_assert(AllCodesRight());

struct NumberPair {
    long long name;
    long long value;
};
constexpr NumberPair kNumbers[] = {
    {ERROR_FILE_NOT_FOUND, 2},
    {ERROR_PATH_NOT_FOUND, 3},
    {ERROR_TOO_MANY_OPEN_FILES, 4},
    {ERROR_ACCESS_DENIED, 5},
    {ERROR_INVALID_HANDLE, 6},
    {ERROR_NOT_ENOUGH_MEMORY, 8},
    {ERROR_GEN_FAILURE, 31},
    {ERROR_SHARING_VIOLATION, 32},
    {ERROR_INVALID_PARAMETER, 87},
    {ERROR_BUFFER_OVERFLOW, 111},
    {ERROR_INSUFFICIENT_BUFFER, 122},
    {ERROR_INVALID_NAME, 123},
    {ERROR_FILENAME_EXCED_RANGE, 206},
    {ERROR_MORE_DATA, 234},
    {ERROR_INVALID_FLAGS, 1004},
    {ERROR_NO_UNICODE_TRANSLATION, 1113},
    {GENERIC_READ, 0x80000000},
    {FILE_SHARE_READ, 1},
    {OPEN_EXISTING, 3},
    {FILE_ATTRIBUTE_DIRECTORY, 0x10},
    {FILE_ATTRIBUTE_NORMAL, 0x80},
    {FILE_FLAG_SEQUENTIAL_SCAN, 0x08000000},
    {INVALID_FILE_ATTRIBUTES, 0xFFFFFFFF},
    {CP_ACP, 0},
    {CP_THREAD_ACP, 3},
    {CP_UTF8, 65001},
    {KEY_READ, 0x20019},
    {KEY_WRITE, 0x20006},
    {REG_SZ, 1},
    {REG_EXPAND_SZ, 2},
    {TIME_ZONE_ID_UNKNOWN, 0},
    {TIME_ZONE_ID_STANDARD, 1},
    {TIME_ZONE_ID_DAYLIGHT, 2},
    {MAX_COMPUTERNAME_LENGTH, 15},
    {MAX_PATH, 260},
    {CLSCTX_INPROC_SERVER, 1},
    {COINIT_MULTITHREADED, 0},
    {COINIT_APARTMENTTHREADED, 2},
    {REGKIND_REGISTER, 1},
    {REGKIND_NONE, 2},
    {SYS_WIN64, 3},
    {VT_EMPTY, 0},
    {VT_NULL, 1},
    {VT_I2, 2},
    {VT_I4, 3},
    {VT_R4, 4},
    {VT_R8, 5},
    {VT_DATE, 7},
    {VT_BSTR, 8},
    {VT_DISPATCH, 9},
    {VT_ERROR, 10},
    {VT_BOOL, 11},
    {VT_VARIANT, 12},
    {VT_UNKNOWN, 13},
    {VT_UI1, 17},
    {VT_UI4, 19},
    {VT_I8, 20},
    {VT_UI8, 21},
    {VT_PTR, 26},
    {VT_USERDEFINED, 29},
    {VT_BYREF, 0x4000},
    {DISPATCH_METHOD, 1},
    {DISPATCH_PROPERTYGET, 2},
    {DISPATCH_PROPERTYPUT, 4},
    {DISPID_PROPERTYPUT, -3},
    {DISPID_UNKNOWN, -1},
    {TKIND_ENUM, 0},
    {TKIND_INTERFACE, 3},
    {TKIND_DISPATCH, 4},
    {TKIND_COCLASS, 5},
    {TYPEFLAG_FDUAL, 0x40},
    {IMPLTYPEFLAG_FSOURCE, 2},
    {PARAMFLAG_FRETVAL, 8},
    {AF_INET, 2},
    {SOCK_STREAM, 1},
    {IPPROTO_TCP, 6},
    {SD_BOTH, 2},
    {SOCKET_ERROR, -1},
    {TCP_NODELAY, 1},
    {SOL_SOCKET, 0xFFFF},
    {SO_ERROR, 0x1007},
    {POLLIN, 0x300},
    {POLLOUT, 0x10},
    {POLLERR, 1},
    {POLLHUP, 2},
    {POLLNVAL, 4},
    {WSAEWOULDBLOCK, 10035},
    {WSAENOTSOCK, 10038},
    {WSAENETUNREACH, 10051},
    {WSAECONNABORTED, 10053},
    {WSAECONNRESET, 10054},
    {WSAENOTCONN, 10057},
    {WSAETIMEDOUT, 10060},
    {WSAECONNREFUSED, 10061},
    {WSAHOST_NOT_FOUND, 11001},
    {ERROR_MR_MID_NOT_FOUND, 317},
    {ERROR_TIMEOUT, 1460},
    {DNS_ERROR_RCODE_FORMAT_ERROR, 9001},
    {DNS_ERROR_RCODE_SERVER_FAILURE, 9002},
    {DNS_ERROR_RCODE_NAME_ERROR, 9003},
    {DNS_ERROR_RCODE_NOT_IMPLEMENTED, 9004},
    {DNS_ERROR_RCODE_REFUSED, 9005},
    {DNS_INFO_NO_RECORDS, 9501},
    {DNS_ERROR_BAD_PACKET, 9502},
    {DNS_ERROR_INVALID_NAME_CHAR, 9560},
    {DNS_TYPE_MX, 15},
    {DNS_QUERY_STANDARD, 0},
    {DNS_QUERY_BYPASS_CACHE, 8},
    {DnsFreeRecordList, 1},
    {FORMAT_MESSAGE_IGNORE_INSERTS, 0x200},
    {FORMAT_MESSAGE_FROM_SYSTEM, 0x1000},
    {MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), 0x400},
};
constexpr bool AllNumbersRight() {
    for (const NumberPair& number : kNumbers) {
        if (number.name != number.value) return false;
    }
    return true;
}
static_assert(AllNumbersRight());
static_assert(INVALID_SOCKET == static_cast<SOCKET>(-1));

}  // namespace

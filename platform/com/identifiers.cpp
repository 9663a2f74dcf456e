// Identifiers of the system's own interfaces.
#include <ole2.h>

extern "C" {
const GUID GUID_NULL = {};
const IID IID_IUnknown = __uuidof(IUnknown);
const IID IID_IClassFactory = __uuidof(IClassFactory);
const IID IID_IDispatch = __uuidof(IDispatch);
const IID IID_ITypeInfo = __uuidof(ITypeInfo);
const IID IID_ITypeLib = __uuidof(ITypeLib);
const IID IID_IErrorInfo = __uuidof(IErrorInfo);
const IID IID_ICreateErrorInfo = __uuidof(ICreateErrorInfo);
const IID IID_ISupportErrorInfo = __uuidof(ISupportErrorInfo);
}

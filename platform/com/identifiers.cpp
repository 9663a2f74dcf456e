// Identifiers of the system's own interfaces.
#include <ocidl.h>

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
const IID IID_IGlobalInterfaceTable = __uuidof(IGlobalInterfaceTable);
const CLSID CLSID_StdGlobalInterfaceTable = {
    0x00000323, 0x0000, 0x0000, {0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID IID_IEnumConnections = __uuidof(IEnumConnections);
const IID IID_IConnectionPoint = __uuidof(IConnectionPoint);
const IID IID_IEnumConnectionPoints = __uuidof(IEnumConnectionPoints);
const IID IID_IConnectionPointContainer = __uuidof(IConnectionPointContainer);
}

// Streams, storages and data between objects; and the table through which interface pointers go
// from one apartment to another.
#pragma once

#include "unknwn.h"

#ifdef __cplusplus

struct IStream;
struct IStorage;
struct IMoniker;
struct IEnumSTATSTG;
typedef struct tagSTATSTG STATSTG;
typedef LPOLESTR* SNB;
typedef WORD CLIPFORMAT;
typedef struct tagDVTARGETDEVICE DVTARGETDEVICE;

#define STGM_READ 0x00000000
#define STGM_WRITE 0x00000001
#define STGM_SHARE_EXCLUSIVE 0x00000010
#define STGM_CREATE 0x00001000

enum TYMED { TYMED_NULL = 0, TYMED_MFPICT = 32 };
enum DATADIR { DATADIR_GET = 1, DATADIR_SET = 2 };
enum ADVF { ADVF_NODATA = 1, ADVF_PRIMEFIRST = 2, ADVF_ONLYONCE = 4 };

typedef struct tagFORMATETC {
    CLIPFORMAT cfFormat;
    DVTARGETDEVICE* ptd;
    DWORD dwAspect;
    LONG lindex;
    DWORD tymed;
} FORMATETC;

__extension__ typedef struct tagSTGMEDIUM {
    DWORD tymed;
    __extension__ union {
        HGLOBAL hMetaFilePict;  // a METAFILEPICT
        IStream* pstm;
    };
    IUnknown* pUnkForRelease;
} STGMEDIUM;

struct IAdviseSink : public IUnknown {
    virtual void STDMETHODCALLTYPE OnDataChange(FORMATETC* format, STGMEDIUM* medium) = 0;
    virtual void STDMETHODCALLTYPE OnViewChange(DWORD aspect, LONG index) = 0;
    virtual void STDMETHODCALLTYPE OnRename(IMoniker* moniker) = 0;
    virtual void STDMETHODCALLTYPE OnSave() = 0;
    virtual void STDMETHODCALLTYPE OnClose() = 0;
};
__CRT_UUID_DECL(IAdviseSink, 0x0000010f, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x46)

typedef struct tagSTATDATA {
    FORMATETC formatetc;
    DWORD advf;
    IAdviseSink* pAdvSink;  // a reference of the receiver's
    DWORD dwConnection;
} STATDATA;

struct IEnumFORMATETC : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Next(ULONG count, FORMATETC* items, ULONG* fetched) = 0;
    virtual HRESULT STDMETHODCALLTYPE Skip(ULONG count) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
    virtual HRESULT STDMETHODCALLTYPE Clone(IEnumFORMATETC** copy) = 0;
};
__CRT_UUID_DECL(IEnumFORMATETC, 0x00000103, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x00, 0x46)

struct IEnumSTATDATA : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Next(ULONG count, STATDATA* items, ULONG* fetched) = 0;
    virtual HRESULT STDMETHODCALLTYPE Skip(ULONG count) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
    virtual HRESULT STDMETHODCALLTYPE Clone(IEnumSTATDATA** copy) = 0;
};
__CRT_UUID_DECL(IEnumSTATDATA, 0x00000105, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x46)

struct IDataObject : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetData(FORMATETC* format, STGMEDIUM* medium) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDataHere(FORMATETC* format, STGMEDIUM* medium) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryGetData(FORMATETC* format) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCanonicalFormatEtc(FORMATETC* format,
                                                            FORMATETC* canonical) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetData(FORMATETC* format, STGMEDIUM* medium,
                                              BOOL release) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFormatEtc(DWORD direction, IEnumFORMATETC** formats) = 0;
    virtual HRESULT STDMETHODCALLTYPE DAdvise(FORMATETC* format, DWORD flags, IAdviseSink* sink,
                                              DWORD* cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE DUnadvise(DWORD cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumDAdvise(IEnumSTATDATA** advices) = 0;
};
__CRT_UUID_DECL(IDataObject, 0x0000010e, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x46)

struct ISequentialStream : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG size, ULONG* read) = 0;
    virtual HRESULT STDMETHODCALLTYPE Write(const void* buffer, ULONG size, ULONG* written) = 0;
};
__CRT_UUID_DECL(ISequentialStream, 0x0c733a30, 0x2a1c, 0x11ce, 0xad, 0xe5, 0x00, 0xaa, 0x00, 0x44,
                0x77, 0x3d)

struct IStream : public ISequentialStream {
    virtual HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin,
                                           ULARGE_INTEGER* position) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER size) = 0;
    virtual HRESULT STDMETHODCALLTYPE CopyTo(IStream* stream, ULARGE_INTEGER size,
                                             ULARGE_INTEGER* read, ULARGE_INTEGER* written) = 0;
    virtual HRESULT STDMETHODCALLTYPE Commit(DWORD flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE Revert() = 0;
    virtual HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER size,
                                                 DWORD type) = 0;
    virtual HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER size,
                                                   DWORD type) = 0;
    virtual HRESULT STDMETHODCALLTYPE Stat(STATSTG* status, DWORD flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE Clone(IStream** copy) = 0;
};
__CRT_UUID_DECL(IStream, 0x0000000c, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46)

struct IStorage : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE CreateStream(LPCOLESTR name, DWORD mode, DWORD reserved1,
                                                   DWORD reserved2, IStream** stream) = 0;
    virtual HRESULT STDMETHODCALLTYPE OpenStream(LPCOLESTR name, void* reserved1, DWORD mode,
                                                 DWORD reserved2, IStream** stream) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateStorage(LPCOLESTR name, DWORD mode, DWORD reserved1,
                                                    DWORD reserved2, IStorage** storage) = 0;
    virtual HRESULT STDMETHODCALLTYPE OpenStorage(LPCOLESTR name, IStorage* priority, DWORD mode,
                                                  SNB exclude, DWORD reserved,
                                                  IStorage** storage) = 0;
    virtual HRESULT STDMETHODCALLTYPE CopyTo(DWORD excludeCount, const IID* excludedKinds,
                                             SNB excluded, IStorage* target) = 0;
    virtual HRESULT STDMETHODCALLTYPE MoveElementTo(LPCOLESTR name, IStorage* target,
                                                    LPCOLESTR newName, DWORD flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE Commit(DWORD flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE Revert() = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumElements(DWORD reserved1, void* reserved2,
                                                   DWORD reserved3, IEnumSTATSTG** elements) = 0;
    virtual HRESULT STDMETHODCALLTYPE DestroyElement(LPCOLESTR name) = 0;
    virtual HRESULT STDMETHODCALLTYPE RenameElement(LPCOLESTR name, LPCOLESTR newName) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetElementTimes(LPCOLESTR name, const FILETIME* made,
                                                      const FILETIME* read,
                                                      const FILETIME* written) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetClass(REFCLSID clsid) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetStateBits(DWORD bits, DWORD mask) = 0;
    virtual HRESULT STDMETHODCALLTYPE Stat(STATSTG* status, DWORD flags) = 0;
};
__CRT_UUID_DECL(IStorage, 0x0000000b, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x46)

struct IPersist : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetClassID(CLSID* clsid) = 0;
};
__CRT_UUID_DECL(IPersist, 0x0000010c, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x46)

struct IPersistStorage : public IPersist {
    virtual HRESULT STDMETHODCALLTYPE IsDirty() = 0;
    virtual HRESULT STDMETHODCALLTYPE InitNew(IStorage* storage) = 0;
    virtual HRESULT STDMETHODCALLTYPE Load(IStorage* storage) = 0;
    virtual HRESULT STDMETHODCALLTYPE Save(IStorage* storage, BOOL sameAsLoad) = 0;
    virtual HRESULT STDMETHODCALLTYPE SaveCompleted(IStorage* storage) = 0;
    virtual HRESULT STDMETHODCALLTYPE HandsOffStorage() = 0;
};
__CRT_UUID_DECL(IPersistStorage, 0x0000010a, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00,
                0x00, 0x46)

// One a process, CLSID_StdGlobalInterfaceTable of CoCreateInstance, for threads of all apartments.
//
// RegisterInterfaceInGlobal keeps a reference of an object of the calling thread's apartment under
// a number that is never 0. GetInterfaceFromGlobal gives the object itself in that apartment and a
// proxy in any other, for IUnknown or IDispatch. Calls of a proxy wait while the object's apartment
// carries them out; in a single-threaded one that is while its thread takes messages out of its
// queue and dispatches them, or waits for a call of its own. RPC_E_DISCONNECTED when that apartment
// has ended, which lets go of all that was registered in it.
struct IGlobalInterfaceTable : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE RegisterInterfaceInGlobal(IUnknown* object, REFIID riid,
                                                                DWORD* cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE RevokeInterfaceFromGlobal(DWORD cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetInterfaceFromGlobal(DWORD cookie, REFIID riid,
                                                             void** object) = 0;
};
__CRT_UUID_DECL(IGlobalInterfaceTable, 0x00000146, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00,
                0x00, 0x00, 0x46)

extern "C" {
extern QUORVANE_EXPORT const IID IID_IGlobalInterfaceTable;
extern QUORVANE_EXPORT const CLSID CLSID_StdGlobalInterfaceTable;
}

#endif

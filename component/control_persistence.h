// The control kept by its container: in a stream, in a storage or in a property bag.
#pragma once

#include <windows.h>
#include <ocidl.h>

#include "component/control_extent.h"
#include "component/control_part.h"

namespace quorvane {

// The size is kept and nothing else: settings come from the program that uses the object, and a
// password has no place in a form's file. What can't be loaded leaves the size as it was.
//
// In a stream: three little-endian numbers of 32 bits, which are the format's version (1), the
// width and the height. In a storage: such a stream with the name "Contents". In a property bag:
// "_cx" and "_cy".
class PersistencePart final
    : public ControlPart<IPersistStreamInit, IPersistStorage, IPersistPropertyBag> {
public:
    PersistencePart(IUnknown& owner, ControlExtent& extent) : ControlPart(owner), extent_(extent) {}

    STDMETHODIMP GetClassID(CLSID* clsid) override;
    STDMETHODIMP IsDirty() override;
    STDMETHODIMP InitNew() override;

    STDMETHODIMP Load(IStream* stream) override;
    STDMETHODIMP Save(IStream* stream, BOOL clearDirty) override;
    STDMETHODIMP GetSizeMax(ULARGE_INTEGER* size) override;

    STDMETHODIMP InitNew(IStorage* storage) override;
    STDMETHODIMP Load(IStorage* storage) override;
    STDMETHODIMP Save(IStorage* storage, BOOL sameAsLoad) override;
    STDMETHODIMP SaveCompleted(IStorage* storage) override;
    STDMETHODIMP HandsOffStorage() override;

    STDMETHODIMP Load(IPropertyBag* bag, IErrorLog* log) override;
    STDMETHODIMP Save(IPropertyBag* bag, BOOL clearDirty, BOOL saveAll) override;

private:
    // Takes over a size that was loaded.
    HRESULT Restore(ULONG width, ULONG height);

    ControlExtent& extent_;
};

}  // namespace quorvane

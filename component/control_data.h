// The control's picture as data: a metafile for containers that keep one.
#pragma once

#include <windows.h>
#include <ole2.h>

#include "component/control_advise.h"
#include "component/control_extent.h"
#include "component/control_part.h"

namespace quorvane {

class DataPart final : public ControlPart<IDataObject> {
public:
    DataPart(IUnknown& owner, const ControlExtent& extent, HICON icon)
        : ControlPart(owner), extent_(extent), icon_(icon) {}

    // Tells the data sinks that the picture has changed.
    void SendDataChange() noexcept;

    STDMETHODIMP GetData(FORMATETC* format, STGMEDIUM* medium) override;
    STDMETHODIMP GetDataHere(FORMATETC* format, STGMEDIUM* medium) override;
    STDMETHODIMP QueryGetData(FORMATETC* format) override;
    STDMETHODIMP GetCanonicalFormatEtc(FORMATETC* format, FORMATETC* canonical) override;
    STDMETHODIMP SetData(FORMATETC* format, STGMEDIUM* medium, BOOL release) override;
    STDMETHODIMP EnumFormatEtc(DWORD direction, IEnumFORMATETC** formats) override;
    STDMETHODIMP DAdvise(FORMATETC* format, DWORD flags, IAdviseSink* sink, DWORD* cookie) override;
    STDMETHODIMP DUnadvise(DWORD cookie) override;
    STDMETHODIMP EnumDAdvise(IEnumSTATDATA** advices) override;

private:
    void Tell(const Advice& advice) noexcept;

    const ControlExtent& extent_;
    const HICON icon_;
    AdviseList sinks_;
};

}  // namespace quorvane

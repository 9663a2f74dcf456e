// The control's size: all that it keeps between two sessions of its container.
#pragma once

#include <windows.h>
#include <ole2.h>

#include <functional>
#include <utility>

namespace quorvane {

class ControlExtent {
public:
    // `changed` is called after each change of the size.
    explicit ControlExtent(std::function<void()> changed) : changed_(std::move(changed)) {}

    // HIMETRIC: hundredths of a millimetre. Two inches at first.
    const SIZEL& Size() const { return size_; }

    // E_INVALIDARG and no change when a side is negative.
    HRESULT Resize(const SIZEL& size) {
        if (size.cx < 0 || size.cy < 0) return E_INVALIDARG;
        if (size.cx == size_.cx && size.cy == size_.cy) return S_OK;
        size_ = size;
        unsaved_ = true;
        changed_();
        return S_OK;
    }

    // Whether the size has changed since it was loaded or saved.
    bool IsUnsaved() const { return unsaved_; }
    void MarkSaved() { unsaved_ = false; }

private:
    SIZEL size_{5080, 5080};
    bool unsaved_ = false;
    std::function<void()> changed_;
};

}  // namespace quorvane

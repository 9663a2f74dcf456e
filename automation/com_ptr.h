// Owners of what COM hands out: interface references and automation strings.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <utility>

namespace quorvane {

// Owns one reference of an interface pointer.
template <class T>
class ComPtr {
public:
    ComPtr() = default;
    // Takes a reference of its own.
    explicit ComPtr(T* pointer) : pointer_(pointer) {
        if (pointer_) pointer_->AddRef();
    }
    ComPtr(const ComPtr& other) : ComPtr(other.pointer_) {}
    ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    ~ComPtr() { Reset(); }
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }

    T* Get() const { return pointer_; }
    T* operator->() const { return pointer_; }
    explicit operator bool() const { return pointer_ != nullptr; }

    void Reset() {
        if (T* pointer = std::exchange(pointer_, nullptr)) pointer->Release();
    }
    // Hands the reference to the caller.
    T* Detach() { return std::exchange(pointer_, nullptr); }
    // For functions that return a reference through an out-parameter.
    T** Receive() {
        Reset();
        return &pointer_;
    }
    void** ReceiveVoid() { return reinterpret_cast<void**>(Receive()); }

private:
    T* pointer_ = nullptr;
};

// Owns an automation string.
class BstrHolder {
public:
    BstrHolder() = default;
    ~BstrHolder() { SysFreeString(text_); }
    BstrHolder(const BstrHolder&) = delete;
    BstrHolder& operator=(const BstrHolder&) = delete;

    BSTR Get() const { return text_; }
    BSTR* Receive() {
        SysFreeString(std::exchange(text_, nullptr));
        return &text_;
    }

private:
    BSTR text_ = nullptr;
};

}  // namespace quorvane

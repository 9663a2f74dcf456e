#include "apartment.h"

#include <objbase.h>

#include <atomic>

namespace {

std::atomic<LONG> g_multithreaded{0};

class Apartment {
public:
    Apartment() = default;
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    // A thread that ends without leaving its apartment leaves it now.
    ~Apartment() {
        if (entries_ != 0 && model_ == COINIT_MULTITHREADED) --g_multithreaded;
    }

    HRESULT Enter(DWORD model) {
        if (entries_ != 0 && model_ != model) return RPC_E_CHANGED_MODE;
        if (entries_++ != 0) return S_FALSE;
        model_ = model;
        if (model == COINIT_MULTITHREADED) ++g_multithreaded;
        return S_OK;
    }

    void Leave() {
        if (entries_ == 0 || --entries_ != 0) return;
        if (model_ == COINIT_MULTITHREADED) --g_multithreaded;
    }

    bool entered() const { return entries_ != 0; }

private:
    DWORD model_ = 0;
    ULONG entries_ = 0;
};

thread_local Apartment t_apartment;

}  // namespace

namespace quorvane::platform {

bool InApartment() {
    return t_apartment.entered() || g_multithreaded != 0;
}

}  // namespace quorvane::platform

HRESULT CoInitializeEx(LPVOID reserved, DWORD model) {
    if (reserved) return E_INVALIDARG;
    return t_apartment.Enter(model & COINIT_APARTMENTTHREADED);
}

HRESULT CoInitialize(LPVOID reserved) {
    return CoInitializeEx(reserved, COINIT_APARTMENTTHREADED);
}

void CoUninitialize() {
    t_apartment.Leave();
}

#include <ole2.h>

HRESULT OleDraw(IUnknown* object, DWORD aspect, HDC dc, LPCRECT bounds) {
    if (!object || !bounds) return E_INVALIDARG;
    IViewObject* view = nullptr;
    if (FAILED(object->QueryInterface(&view))) return DV_E_NOIVIEWOBJECT;
    const RECTL place = {bounds->left, bounds->top, bounds->right, bounds->bottom};
    const HRESULT hr =
        view->Draw(aspect, -1, nullptr, nullptr, nullptr, dc, &place, nullptr, nullptr, 0);
    view->Release();
    return hr;
}

void ReleaseStgMedium(STGMEDIUM* medium) {
    *medium = {};
}

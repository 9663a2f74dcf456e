#include "component/control_advise.h"

#include <algorithm>

#include "automation/enumerator.h"

namespace quorvane {
namespace {

void GiveAdvice(const Advice& held, STATDATA& item) {
    item.formatetc = held.format;
    item.advf = held.flags;
    item.pAdvSink = ComPtr<IAdviseSink>(held.sink).Detach();
    item.dwConnection = held.cookie;
}

using AdviceEnumerator = Enumerator<IEnumSTATDATA, STATDATA, Advice, GiveAdvice>;

}  // namespace

HRESULT AdviseList::Add(const FORMATETC& format, DWORD flags, IAdviseSink* sink, DWORD* cookie) {
    if (!cookie) return E_POINTER;
    *cookie = 0;
    if (!sink) return E_POINTER;
    advices_.push_back({lastCookie_ + 1, flags, format, ComPtr<IAdviseSink>(sink)});
    advices_.back().format.ptd = nullptr;  // the caller's, and the picture doesn't depend on it
    *cookie = ++lastCookie_;
    return S_OK;
}

HRESULT AdviseList::Remove(DWORD cookie) {
    const auto found =
        std::find_if(advices_.begin(), advices_.end(),
                     [cookie](const Advice& advice) { return advice.cookie == cookie; });
    if (found == advices_.end()) return OLE_E_NOCONNECTION;
    const Advice removed = std::move(*found);  // its sink goes when the list is whole again
    advices_.erase(found);
    return S_OK;
}

HRESULT AdviseList::Enumerate(IEnumSTATDATA** out) const noexcept {
    return Guarded([&] { return AdviceEnumerator::Create(advices_, out); });
}

std::vector<Advice> AdviseList::TakeTurn() {
    std::vector<Advice> turn = advices_;
    std::erase_if(advices_, [](const Advice& advice) { return advice.flags & ADVF_ONLYONCE; });
    return turn;
}

}  // namespace quorvane

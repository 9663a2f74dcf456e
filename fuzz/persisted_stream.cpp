// The control's state as its container kept it: read from a stream or a property bag, and saved
// again.
#include <algorithm>
#include <climits>
#include <string>

#include "automation/com_ptr.h"
#include "component/control.h"
#include "fuzz/input.h"
#include "tests/component/control_stores.h"

namespace {

using namespace quorvane;
using fuzzing::Require;

constexpr std::size_t kSavedSize = 12;

// A control by itself: a whole SmtpMail would start threads for every input.
class LoneControl {
public:
    LoneControl() {
        SIZEL size = kSizeBefore;
        Require(As<IOleObject>()->SetExtent(DVASPECT_CONTENT, &size) == S_OK, "it can be resized");
    }

    template <class Interface>
    Interface* As() {
        void* found = nullptr;
        Require(m_control.QueryInterface(__uuidof(Interface), &found) == S_OK, "it has the part");
        m_owner.Release();  // it lives as long as this
        return static_cast<Interface*>(found);
    }

    SIZEL Size() {
        SIZEL size = {};
        Require(As<IOleObject>()->GetExtent(DVASPECT_CONTENT, &size) == S_OK, "it has a size");
        return size;
    }

    bool Has(SIZEL size) { return Size().cx == size.cx && Size().cy == size.cy; }
    bool IsUnsaved() { return As<IPersistStreamInit>()->IsDirty() == S_OK; }

    void CheckAfter(bool loaded) {
        Require(IsUnsaved() != loaded, "what was loaded is saved, and nothing else is");
        Require(loaded || Has(kSizeBefore), "what can't be loaded leaves the size");
        Require(Size().cx >= 0 && Size().cy >= 0, "no side is negative");
    }

private:
    static constexpr SIZEL kSizeBefore = {700, 800};
    OnStack<IUnknown> m_owner;
    Control m_control{m_owner};
};

std::uint64_t Number(std::string_view bytes, std::size_t at) {
    std::uint64_t number = 0;
    for (std::size_t i = 4; i-- > 0;) {
        number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
    }
    return number;
}

bool IsWhole(std::string_view bytes) {
    return bytes.size() >= kSavedSize && Number(bytes, 0) == 1 && Number(bytes, 4) <= INT_MAX &&
           Number(bytes, 8) <= INT_MAX;
}

std::string Saved(LoneControl& control) {
    MemoryStream stream;
    Require(control.As<IPersistStreamInit>()->Save(&stream, TRUE) == S_OK, "it can be saved");
    Require(!control.IsUnsaved(), "and then is");
    return stream.bytes;
}

// Another control with the same size, by the same bytes.
void CheckSaved(LoneControl& control) {
    MemoryStream stream;
    stream.bytes = Saved(control);
    Require(stream.bytes.size() == kSavedSize, "as many bytes as are always saved");
    LoneControl again;
    Require(again.As<IPersistStreamInit>()->Load(&stream) == S_OK, "what it saved can be loaded");
    Require(again.Has(control.Size()), "and gives the same size");
    Require(Saved(again) == stream.bytes, "and the same bytes");
}

void CheckStream(std::string_view bytes, ULONG piece) {
    MemoryStream stream;
    stream.bytes = bytes;
    stream.piece = piece;
    LoneControl control;
    const bool loaded = SUCCEEDED(control.As<IPersistStreamInit>()->Load(&stream));
    Require(loaded == IsWhole(bytes), "a whole record is loaded and nothing else is");
    Require(stream.position == std::min(bytes.size(), kSavedSize), "what follows is left alone");
    control.CheckAfter(loaded);
    if (loaded) {
        Require(Saved(control) == bytes.substr(0, kSavedSize), "it saves what it loaded");
    }
    CheckSaved(control);
}

void CheckBag(const WideString& width, const WideString& height) {
    PropertyBag bag;
    BstrHolder texts[2];
    const auto put = [&bag](LPCOLESTR name, const WideString& text, BstrHolder& holder) {
        BSTR& value = *holder.Receive();
        value = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
        bag.values[name].vt = VT_BSTR;
        bag.values[name].bstrVal = value;
    };
    put(OLESTR("_cx"), width, texts[0]);
    put(OLESTR("_cy"), height, texts[1]);
    LoneControl control;
    control.CheckAfter(SUCCEEDED(control.As<IPersistPropertyBag>()->Load(&bag, nullptr)));
    Require(control.As<IPersistPropertyBag>()->Save(&bag, TRUE, TRUE) == S_OK, "it can be saved");
    LoneControl again;
    Require(again.As<IPersistPropertyBag>()->Load(&bag, nullptr) == S_OK, "and loaded");
    Require(again.Has(control.Size()), "and gives the same size");
    CheckSaved(control);
}

}  // namespace

// The first byte says how much of the stream comes at a time.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::Input input(data, size);
    const ULONG piece = input.TakeByte() % kSavedSize + 1;
    CheckStream(input.rest(), piece);
    const WideString width = input.TakeWideText();
    CheckBag(width, input.TakeWideText());
    return 0;
}

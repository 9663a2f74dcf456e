// SmtpMail on a form: its picture, its size and what its container hears of them.
#include "tests/component/control_client.h"
#include "tests/component/picture.h"

#include <gmock/gmock.h>
#include <olectl.h>

#include "automation/module.h"
#include "tests/component/listener.h"

namespace quorvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The size that a new control has.
constexpr LONG kTwoInches = 5080;

// The resources of the test program are the library's for as long as this lives.
class WithIcon {
public:
    WithIcon() {
        HMODULE program = nullptr;
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                           reinterpret_cast<LPCWSTR>(&ReadPicture), &program);
        ModuleAttach(program);
    }
    ~WithIcon() {
        FreeLibrary(ModuleInstance());
        ModuleAttach(nullptr);
    }
    WithIcon(const WithIcon&) = delete;
    WithIcon& operator=(const WithIcon&) = delete;
};

ComPtr<IUnknown> NewControl() {
    return New<CSmtpMail, IUnknown>();
}

SIZEL Extent(IUnknown* control) {
    SIZEL size = {};
    EXPECT_EQ(Ask<IOleObject>(control)->GetExtent(DVASPECT_CONTENT, &size), S_OK);
    return size;
}

void Resize(IUnknown* control, LONG width, LONG height) {
    SIZEL size = {width, height};
    ASSERT_EQ(Ask<IOleObject>(control)->SetExtent(DVASPECT_CONTENT, &size), S_OK);
}

#define EXPECT_EXTENT(control, width, height)       \
    do {                                            \
        const SIZEL seen = Extent((control).Get()); \
        EXPECT_EQ(seen.cx, width) << "width";       \
        EXPECT_EQ(seen.cy, height) << "height";     \
    } while (false)

// The reviewed picture of this name. The picture of a failed test is kept in the folder that the
// test ran in.
void ExpectPicture(const Picture& drawn, const std::string& name) {
    const std::filesystem::path file =
        std::filesystem::path(QUORVANE_TEST_DATA "/component/pictures") / (name + ".bmp");
    if (drawn.LooksLike(ReadPicture(file))) return;
    WritePicture(drawn, name + ".bmp");
    FAIL() << "unlike " << file << "; what was drawn is now in " << name << ".bmp";
}

// The reviewed picture, but for the area of the letters, whose shapes are those of the fonts that a
// machine has.
void ExpectPictureBeside(const RECT& letters, Picture drawn, const std::string& name) {
    drawn.Erase(letters);
    ExpectPicture(drawn, name);
}

Picture DrawnBy(const ComPtr<IUnknown>& control, const RECT& bounds) {
    const Canvas canvas(130, 60);
    EXPECT_EQ(OleDraw(control.Get(), DVASPECT_CONTENT, canvas.Dc(), &bounds), S_OK);
    EXPECT_EQ(SetTextAlign(canvas.Dc(), 0), 0u) << "the context is as before";
    EXPECT_EQ(Rectangle(canvas.Dc(), 126, 56, 130, 60), TRUE) << "and draws everywhere again";
    return canvas.Look();
}

TEST(Control, DrawsItsIconOrABoxWithItsNameInsideTheBounds) {
    {
        const WithIcon icon;
        const ComPtr<IUnknown> control = NewControl();
        ExpectPicture(DrawnBy(control, {5, 6, 120, 54}), "icon");
        ExpectPicture(DrawnBy(control, {5, 6, 25, 24}), "icon-clipped");
        ExpectPicture(DrawnBy(control, {5, 6, 5, 6}), "nothing");
    }
    const ComPtr<IUnknown> control = NewControl();
    const Picture box = DrawnBy(control, {5, 6, 120, 54});
    ExpectPictureBeside({6, 7, 119, 53}, box, "box");
    const RECT word = box.DarkWithin({6, 7, 119, 53});
    EXPECT_NEAR(word.left + word.right, 5 + 120, 4) << "in the middle";
    EXPECT_GT(word.right - word.left, 40) << "all of the word";
    EXPECT_NEAR(word.bottom, 32, 3) << "the tail of the Q";
    const RECT end = box.DarkWithin({(word.left + word.right) / 2, 7, 119, 53});
    EXPECT_NEAR(end.bottom, (6 + 54) / 2, 1) << "on the line";

    const Picture small = DrawnBy(control, {5, 6, 45, 54});
    ExpectPictureBeside({5, 7, 45, 53}, small, "box-clipped");
    const RECT part = small.DarkWithin({6, 7, 44, 53});
    EXPECT_LT(part.left, 12);
    EXPECT_GT(part.right, 38);
    ExpectPicture(DrawnBy(control, {5, 6, 5, 6}), "nothing");
}

TEST(Control, RefusesToDrawWhatItCanNot) {
    const ComPtr<IUnknown> control = NewControl();
    const auto view = Ask<IViewObjectEx>(control.Get());
    const Canvas canvas(10, 10);
    const RECTL bounds = {0, 0, 10, 10};
    const auto draw = [&](DWORD aspect, HDC dc, LPCRECTL place) {
        return view->Draw(aspect, -1, nullptr, nullptr, nullptr, dc, place, nullptr, nullptr, 0);
    };
    EXPECT_EQ(draw(DVASPECT_ICON, canvas.Dc(), &bounds), DV_E_DVASPECT);
    EXPECT_EQ(draw(DVASPECT_CONTENT, nullptr, &bounds), E_INVALIDARG);
    EXPECT_EQ(draw(DVASPECT_CONTENT, canvas.Dc(), nullptr), E_INVALIDARG);
    EXPECT_EQ(draw(DVASPECT_CONTENT, canvas.Dc(), &bounds), S_OK);
}

TEST(Control, KeepsItsSizeInAStreamAndNothingElse) {
    const ComPtr<IUnknown> first = NewControl();
    EXPECT_EXTENT(first, kTwoInches, kTwoInches);
    const auto mail = Ask<ISmtpMail>(first.Get());
    mail->put_SmtpServer(Bstr(OLESTR("mail.example.com")));
    mail->put_SmtpPassword(Bstr(OLESTR("secret")));
    Resize(first.Get(), 1000, 0x01020304);
    const auto saver = Ask<IPersistStreamInit>(first.Get());
    EXPECT_EQ(saver->IsDirty(), S_OK);
    MemoryStream stream;
    ASSERT_EQ(saver->Save(&stream, FALSE), S_OK);
    EXPECT_EQ(saver->IsDirty(), S_OK);
    stream.bytes.clear();
    ASSERT_EQ(saver->Save(&stream, TRUE), S_OK);
    EXPECT_EQ(saver->IsDirty(), S_FALSE);
    EXPECT_EQ(stream.bytes, std::string("\1\0\0\0\xE8\3\0\0\4\3\2\1", 12));
    ULARGE_INTEGER size;
    ASSERT_EQ(saver->GetSizeMax(&size), S_OK);
    EXPECT_EQ(size.QuadPart, stream.bytes.size());

    const ComPtr<IUnknown> second = NewControl();
    stream.piece = 1;
    ASSERT_EQ(Ask<IPersistStreamInit>(second.Get())->Load(&stream), S_OK);
    EXPECT_EXTENT(second, 1000, 0x01020304);
    EXPECT_EQ(Ask<IPersistStreamInit>(second.Get())->IsDirty(), S_FALSE);
    EXPECT_EQ(GetString(Ask<ISmtpMail>(second.Get()).Get(), &ISmtpMail::get_SmtpServer),
              OLESTR(""));
    CLSID clsid = {};
    EXPECT_EQ(Ask<IPersist>(second.Get())->GetClassID(&clsid), S_OK);
    EXPECT_EQ(clsid, CLSID_SmtpMail);
}

TEST(Control, LeavesItsSizeWhenAStreamIsBad) {
    const ComPtr<IUnknown> control = NewControl();
    Resize(control.Get(), 700, 800);
    const auto loader = Ask<IPersistStreamInit>(control.Get());
    const std::string whole("\1\0\0\0\1\1\0\0\2\2\0\0", 12);
    const auto load = [&](const std::string& bytes) {
        MemoryStream stream;
        stream.bytes = bytes;
        return loader->Load(&stream);
    };
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(load(whole.substr(0, length)), STG_E_READFAULT) << length;
    }
    EXPECT_EQ(load("\2" + whole.substr(1)), E_FAIL) << "a version that isn't known";
    EXPECT_EQ(load(whole.substr(0, 11) + "\x80"), E_INVALIDARG) << "negative";
    EXPECT_EQ(loader->Load(nullptr), E_POINTER);
    EXPECT_EXTENT(control, 700, 800);
    EXPECT_EQ(loader->IsDirty(), S_OK);

    MemoryStream full;
    full.room = 7;
    EXPECT_EQ(loader->Save(&full, TRUE), STG_E_MEDIUMFULL);
    EXPECT_EQ(loader->IsDirty(), S_OK);
}

TEST(Control, KeepsItsSizeInAPropertyBag) {
    const ComPtr<IUnknown> first = NewControl();
    Resize(first.Get(), 1234, 5678);
    PropertyBag bag;
    ASSERT_EQ(Ask<IPersistPropertyBag>(first.Get())->Save(&bag, TRUE, TRUE), S_OK);
    ASSERT_EQ(bag.values.size(), 2u);
    EXPECT_EQ(bag.values[OLESTR("_cx")].vt, VT_UI4);
    EXPECT_EQ(bag.values[OLESTR("_cx")].ulVal, 1234u);
    EXPECT_EQ(bag.values[OLESTR("_cy")].ulVal, 5678u);

    const ComPtr<IUnknown> second = NewControl();
    const auto loader = Ask<IPersistPropertyBag>(second.Get());
    bag.values.erase(OLESTR("_cy"));
    ASSERT_EQ(loader->Load(&bag, nullptr), S_OK);
    EXPECT_EXTENT(second, 1234, kTwoInches);

    // Bags of text files give text.
    const Bstr number(OLESTR("4321"));
    const Bstr nonsense(OLESTR("wide"));
    VARIANT& width = bag.values[OLESTR("_cx")];
    width.vt = VT_BSTR;
    width.bstrVal = number;
    ASSERT_EQ(loader->Load(&bag, nullptr), S_OK);
    EXPECT_EXTENT(second, 4321, kTwoInches);
    width.bstrVal = nonsense;
    EXPECT_EQ(loader->Load(&bag, nullptr), DISP_E_TYPEMISMATCH);
    EXPECT_EXTENT(second, 4321, kTwoInches);
}

TEST(Control, TellsThoseWhoWantToKnowOfANewSize) {
    const ComPtr<IUnknown> control = NewControl();
    const auto data = Ask<IDataObject>(control.Get());
    const auto view = Ask<IViewObject2>(control.Get());
    FORMATETC format = {CF_METAFILEPICT, nullptr, DVASPECT_CONTENT, -1, TYMED_MFPICT};
    ViewSink viewer, always, once;
    DWORD cookie = 0, onceCookie = 0;
    ASSERT_EQ(view->SetAdvise(DVASPECT_CONTENT, 0, &viewer), S_OK);
    ASSERT_EQ(data->DAdvise(&format, ADVF_NODATA, &always, &cookie), S_OK);
    ASSERT_EQ(data->DAdvise(&format, ADVF_PRIMEFIRST, &once, &onceCookie), S_OK);
    EXPECT_THAT(always.heard, IsEmpty());
    EXPECT_THAT(once.heard, ElementsAre("data"));
    once.reaction = [&] { EXPECT_EQ(data->DUnadvise(onceCookie), S_OK); };

    Resize(control.Get(), 100, 200);
    Resize(control.Get(), 100, 200);  // no news
    Resize(control.Get(), 100, 300);
    EXPECT_THAT(viewer.heard, ElementsAre("view", "view"));
    EXPECT_THAT(always.heard, ElementsAre("data", "data"));
    EXPECT_THAT(once.heard, ElementsAre("data", "data"));

    EXPECT_EQ(data->DUnadvise(onceCookie), OLE_E_NOCONNECTION);
    EXPECT_EQ(data->DUnadvise(cookie), S_OK);
    EXPECT_EQ(view->SetAdvise(0, 0, nullptr), S_OK);
    format.cfFormat = 1;
    EXPECT_EQ(data->DAdvise(&format, 0, &always, &cookie), DV_E_FORMATETC);
    EXPECT_EQ(viewer.references + always.references + once.references, 0u);

    SIZEL negative = {-1, 5};
    EXPECT_EQ(Ask<IOleObject>(control.Get())->SetExtent(DVASPECT_CONTENT, &negative), E_INVALIDARG);
    EXPECT_EXTENT(control, 100, 300);
}

TEST(Control, IsInvisibleAtRunTimeAndSaysSo) {
    const ComPtr<IUnknown> control = NewControl();
    const auto object = Ask<IOleObject>(control.Get());
    DWORD status = 0;
    EXPECT_EQ(object->GetMiscStatus(DVASPECT_CONTENT, &status), S_OK);
    EXPECT_EQ(status, 0x20591u);
    EXPECT_EQ(object->GetMiscStatus(DVASPECT_ICON, &status), S_OK);
    EXPECT_EQ(status, 0u);
    LPOLESTR name = nullptr;
    ASSERT_EQ(object->GetUserType(1, &name), S_OK);
    EXPECT_EQ(WideString(name), OLESTR("Quorvane SmtpMail Class"));
    CoTaskMemFree(name);
}

TEST(Control, ConnectsItselfInOneCall) {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    Site site;
    Listener events;
    {
        const ComPtr<IUnknown> control = NewControl();
        QACONTAINER container = {};
        container.cbSize = sizeof container;
        container.pClientSite = &site;
        container.pUnkEventSink = &events;
        QACONTROL answer = {};
        answer.cbSize = sizeof answer;
        const auto quick = Ask<IQuickActivate>(control.Get());
        ASSERT_EQ(quick->QuickActivate(&container, &answer), S_OK);
        EXPECT_EQ(answer.dwMiscStatus, 0x20591u);
        EXPECT_NE(answer.dwEventCookie, 0u);
        ComPtr<IOleClientSite> taken;
        EXPECT_EQ(Ask<IOleObject>(control.Get())->GetClientSite(taken.Receive()), S_OK);
        EXPECT_EQ(taken.Get(), static_cast<IOleClientSite*>(&site));
        container.cbSize = 4;
        EXPECT_EQ(quick->QuickActivate(&container, &answer), E_INVALIDARG);
    }
    EXPECT_EQ(site.references, 0u);
    EXPECT_EQ(events.references, 0u);
    CoUninitialize();
}

TEST(Control, NamesItsEventsToScriptHosts) {
    const ComPtr<IUnknown> control = NewControl();
    const auto info = Ask<IProvideClassInfo2>(control.Get());
    GUID events = {};
    EXPECT_EQ(info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events), S_OK);
    EXPECT_EQ(events, DIID__ISmtpMailEvents);
    EXPECT_EQ(info->GetGUID(2, &events), E_INVALIDARG);
}

// No window can be made: there is none to put it into, and on Linux there are none at all.
TEST(Control, LeavesTheSiteAsItFindsItWhenItCanNotBeActive) {
    Site site;
    const ComPtr<IUnknown> control = NewControl();
    const auto object = Ask<IOleObject>(control.Get());
    EXPECT_EQ(Do(object.Get(), OLEIVERB_SHOW), E_UNEXPECTED) << "no site";
    ASSERT_EQ(object->SetClientSite(&site), S_OK);
    EXPECT_EQ(Do(object.Get(), OLEIVERB_PRIMARY), E_FAIL);
    EXPECT_THAT(site.heard, ElementsAre("active", "context", "inactive"));
    site.heard.clear();
    site.willing = false;
    EXPECT_EQ(Do(object.Get(), OLEIVERB_INPLACEACTIVATE), E_FAIL);
    EXPECT_THAT(site.heard, IsEmpty());
    EXPECT_EQ(Do(object.Get(), OLEIVERB_HIDE), S_OK);
    EXPECT_EQ(Do(object.Get(), -77), E_NOTIMPL);
    HWND window = nullptr;
    EXPECT_EQ(Ask<IOleWindow>(control.Get())->GetWindow(&window), E_FAIL);
    object->SetClientSite(nullptr);
    EXPECT_EQ(site.references, 0u);
}

TEST(Control, HasItselfSavedWhenItIsClosed) {
    Site site;
    ViewSink sink;
    const ComPtr<IUnknown> control = NewControl();
    const auto object = Ask<IOleObject>(control.Get());
    object->SetClientSite(&site);
    DWORD cookie = 0;
    ASSERT_EQ(object->Advise(&sink, &cookie), S_OK);
    EXPECT_EQ(object->Close(OLECLOSE_SAVEIFDIRTY), S_OK) << "nothing to save";
    EXPECT_THAT(site.heard, IsEmpty());
    Resize(control.Get(), 10, 10);
    EXPECT_EQ(object->Close(OLECLOSE_NOSAVE), S_OK);
    EXPECT_THAT(site.heard, IsEmpty());
    EXPECT_EQ(object->Close(OLECLOSE_SAVEIFDIRTY), S_OK);
    EXPECT_THAT(site.heard, ElementsAre("save"));
    EXPECT_THAT(sink.heard, ElementsAre("close", "close", "save", "close"));
    EXPECT_EQ(object->Unadvise(cookie), S_OK);
    object->SetClientSite(nullptr);
}

}  // namespace
}  // namespace quorvane

// The control active in windows of containers, and what Windows keeps of it.
#include "tests/component/control_client.h"
#include "tests/component/picture.h"

#include <gmock/gmock.h>

namespace quorvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class InPlace : public ::testing::Test {
protected:
    InPlace() {
        OleInitialize(nullptr);
        site.parent = NewParent();
        object->SetClientSite(&site);
    }
    ~InPlace() override {
        Release();
        DestroyWindow(site.parent);
        EXPECT_EQ(site.references, 0u);
        WNDCLASSW windowClass;
        EXPECT_FALSE(GetClassInfoW(GetModuleHandleW(nullptr), L"QuorvaneSmtpMail", &windowClass))
            << "the window class goes with the last window";
        OleUninitialize();
    }

    // Lets go of the control as its container does.
    void Release() {
        if (object) object->SetClientSite(nullptr);
        inPlace.Reset();
        object.Reset();
        control.Reset();
    }

    static HWND NewParent() {
        return CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 400, 300,
                               nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    }

    HWND Window() {
        HWND window = nullptr;
        inPlace->GetWindow(&window);
        return window;
    }

    // Place and size in the parent, as left, top, width and height.
    std::vector<LONG> Place() {
        RECT rect;
        GetWindowRect(Window(), &rect);
        MapWindowPoints(nullptr, site.parent, reinterpret_cast<POINT*>(&rect), 2);
        return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
    }

    // What may be seen of the window, from its own corner; empty when that is all of it.
    std::vector<LONG> Region() {
        RECT rect;
        if (GetWindowRgnBox(Window(), &rect) == ERROR) return {};
        return {rect.left, rect.top, rect.right, rect.bottom};
    }

    std::vector<std::string> Heard() { return std::exchange(site.heard, {}); }

    Site site;
    ComPtr<IUnknown> control = New<CSmtpMail, IUnknown>();
    ComPtr<IOleObject> object = Ask<IOleObject>(control.Get());
    ComPtr<IOleInPlaceObject> inPlace = Ask<IOleInPlaceObject>(control.Get());
};

TEST_F(InPlace, ComesAndGoesStepByStep) {
    ASSERT_EQ(Do(object.Get(), OLEIVERB_INPLACEACTIVATE), S_OK);
    EXPECT_THAT(Heard(), ElementsAre("active", "context", "show"));
    const HWND window = Window();
    ASSERT_TRUE(IsWindow(window));
    EXPECT_EQ(GetParent(window), site.parent);
    EXPECT_TRUE(IsWindowVisible(window));
    EXPECT_THAT(Place(), ElementsAre(10, 20, 100, 60));
    EXPECT_THAT(Region(), IsEmpty());
    UpdateWindow(window);
    EXPECT_FALSE(GetUpdateRect(window, nullptr, FALSE)) << "it paints itself";

    ASSERT_EQ(Do(object.Get(), OLEIVERB_UIACTIVATE), S_OK);
    EXPECT_THAT(Heard(), ElementsAre("context", "interface", "focus", "show"));
    EXPECT_EQ(GetFocus(), window);
    EXPECT_EQ(inPlace->UIDeactivate(), S_OK);
    EXPECT_EQ(inPlace->UIDeactivate(), S_OK) << "does nothing";
    EXPECT_THAT(Heard(), ElementsAre("no interface"));
    SendMessageW(window, WM_MOUSEACTIVATE, 0, 0);
    EXPECT_THAT(Heard(), ElementsAre("interface"));

    EXPECT_EQ(Do(object.Get(), OLEIVERB_HIDE), S_OK);
    EXPECT_FALSE(IsWindowVisible(window));
    EXPECT_EQ(Do(object.Get(), OLEIVERB_SHOW), S_OK);
    EXPECT_EQ(Window(), window);
    EXPECT_TRUE(IsWindowVisible(window));
    Heard();
    EXPECT_EQ(inPlace->InPlaceDeactivate(), S_OK);
    EXPECT_EQ(inPlace->InPlaceDeactivate(), S_OK) << "does nothing";
    EXPECT_THAT(Heard(), ElementsAre("inactive"));
    EXPECT_FALSE(IsWindow(window));
}

TEST_F(InPlace, MovesAndIsClipped) {
    ASSERT_EQ(Do(object.Get(), OLEIVERB_SHOW), S_OK);
    const RECT place = {50, 60, 150, 110};
    const struct {
        RECT clip;
        std::vector<LONG> seen;
    } cases[] = {
        {{0, 0, 400, 300}, {}},
        {{60, 0, 400, 100}, {10, 0, 100, 40}},
        {{0, 0, 60, 70}, {0, 0, 10, 10}},
        {{0, 0, 0, 0}, {}},  // a container that doesn't clip
    };
    for (const auto& c : cases) {
        ASSERT_EQ(inPlace->SetObjectRects(&place, &c.clip), S_OK);
        EXPECT_THAT(Place(), ElementsAre(50, 60, 100, 50));
        EXPECT_EQ(Region(), c.seen);
    }
    EXPECT_EQ(inPlace->SetObjectRects(nullptr, &place), E_POINTER);
    EXPECT_EQ(inPlace->SetObjectRects(&place, nullptr), E_POINTER);
}

// Whatever the container does while it is told something, in the end it has heard of an end for
// every beginning, and no window is left.
TEST_F(InPlace, BearsContainersThatActWhileTheyAreTold) {
    const auto count = [this](const char* what) {
        return std::count(site.heard.begin(), site.heard.end(), what);
    };
    for (const char* moment : {"active", "context", "interface", "focus", "show"}) {
        SCOPED_TRACE(moment);
        for (const HRESULT status : {S_OK, E_ACCESSDENIED}) {
            site.reaction = [&](const std::string& what) {
                if (what != moment) return S_OK;
                if (status == S_OK) inPlace->InPlaceDeactivate();
                return status;
            };
            Do(object.Get(), OLEIVERB_PRIMARY);
            site.reaction = nullptr;
            object->Close(OLECLOSE_NOSAVE);
            EXPECT_EQ(Window(), nullptr);
            const bool refused = moment == std::string("active") && status != S_OK;
            EXPECT_EQ(count("active"), count("inactive") + (refused ? 1 : 0));
            EXPECT_GE(count("interface"), count("no interface"));
            Heard();
        }
    }
}

TEST_F(InPlace, OutlivesItsParentWindowAndItsContainersReferences) {
    ASSERT_EQ(Do(object.Get(), OLEIVERB_PRIMARY), S_OK);
    DestroyWindow(site.parent);
    EXPECT_EQ(Window(), nullptr);
    Heard();
    EXPECT_EQ(object->Close(OLECLOSE_NOSAVE), S_OK);
    EXPECT_THAT(Heard(), ElementsAre("no interface", "inactive"));

    site.parent = NewParent();
    ASSERT_EQ(Do(object.Get(), OLEIVERB_SHOW), S_OK);
    const HWND window = Window();
    site.reaction = [this](const std::string& what) {
        if (what == "interface") Release();
        return S_OK;
    };
    SendMessageW(window, WM_MOUSEACTIVATE, 0, 0);
    EXPECT_FALSE(IsWindow(window)) << "the last reference takes the window along";
}

TEST_F(InPlace, SharesTheWindowClassWithOthers) {
    Site otherSite;
    otherSite.parent = site.parent;
    const auto other = New<CSmtpMail, IOleObject>();
    other->SetClientSite(&otherSite);
    ASSERT_EQ(Do(other.Get(), OLEIVERB_SHOW), S_OK);
    ASSERT_EQ(Do(object.Get(), OLEIVERB_SHOW), S_OK);
    EXPECT_EQ(other->Close(OLECLOSE_NOSAVE), S_OK);
    EXPECT_TRUE(IsWindow(Window()));
    EXPECT_EQ(Do(other.Get(), OLEIVERB_SHOW), S_OK);
    EXPECT_EQ(other->Close(OLECLOSE_NOSAVE), S_OK);
    other->SetClientSite(nullptr);
}

// The system's own container.
TEST_F(InPlace, LivesInTheAtlHostWindow) {
    const HMODULE atl = LoadLibraryW(L"atl.dll");
    ASSERT_NE(atl, nullptr);
    using Attach = HRESULT(WINAPI*)(IUnknown*, HWND, IUnknown**);
    const auto attach = reinterpret_cast<Attach>(
        reinterpret_cast<void*>(GetProcAddress(atl, "AtlAxAttachControl")));
    ASSERT_NE(attach, nullptr);
    const HWND box = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE, 20, 20, 200, 80,
                                     site.parent, nullptr, GetModuleHandleW(nullptr), nullptr);
    ComPtr<IUnknown> container;
    ASSERT_EQ(attach(control.Get(), box, container.Receive()), S_OK);
    EXPECT_THAT(Heard(), IsEmpty()) << "it has brought its own site";
    const HWND window = Window();
    ASSERT_TRUE(IsWindow(window));
    EXPECT_EQ(GetParent(window), box);
    EXPECT_TRUE(IsWindowVisible(window));
    RECT rect;
    GetClientRect(window, &rect);
    EXPECT_EQ(rect.right, 200);
    EXPECT_EQ(rect.bottom, 80);
    MoveWindow(box, 20, 20, 150, 90, TRUE);
    GetClientRect(window, &rect);
    EXPECT_EQ(rect.right, 150);
    EXPECT_EQ(rect.bottom, 90);
    DestroyWindow(box);
    container.Reset();
    EXPECT_EQ(Window(), nullptr);
}

TEST_F(InPlace, KeepsItsSizeInAStorage) {
    ComPtr<IStorage> storage;
    ASSERT_EQ(
        StgCreateDocfile(nullptr,
                         STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE | STGM_DELETEONRELEASE,
                         0, storage.Receive()),
        S_OK);
    const auto saver = Ask<IPersistStorage>(control.Get());
    EXPECT_EQ(saver->Load(storage.Get()), STG_E_FILENOTFOUND);
    SIZEL size = {321, 654};
    object->SetExtent(DVASPECT_CONTENT, &size);
    ASSERT_EQ(saver->Save(storage.Get(), TRUE), S_OK);
    EXPECT_EQ(saver->IsDirty(), S_FALSE);
    const auto other = New<CSmtpMail, IPersistStorage>();
    ASSERT_EQ(other->Load(storage.Get()), S_OK);
    EXPECT_EQ(Ask<IViewObject2>(other.Get())->GetExtent(DVASPECT_CONTENT, -1, nullptr, &size),
              S_OK);
    EXPECT_EQ(size.cx, 321);
    EXPECT_EQ(size.cy, 654);
}

// A metafile of the control, played, is what the control draws.
TEST_F(InPlace, DrawsItselfIntoAMetafile) {
    constexpr LONG kSide = 5080 * 96 / 2540;
    const auto data = Ask<IDataObject>(control.Get());
    FORMATETC format = {CF_METAFILEPICT, nullptr, DVASPECT_CONTENT, -1, TYMED_MFPICT};
    STGMEDIUM medium = {};
    ASSERT_EQ(data->GetData(&format, &medium), S_OK);
    const auto* picture = static_cast<METAFILEPICT*>(GlobalLock(medium.hMetaFilePict));
    EXPECT_EQ(picture->mm, MM_ANISOTROPIC);
    EXPECT_EQ(picture->xExt, 5080);
    EXPECT_EQ(picture->yExt, 5080);
    const Canvas played(kSide, kSide);
    SetMapMode(played.Dc(), MM_ANISOTROPIC);
    SetViewportExtEx(played.Dc(), kSide, kSide, nullptr);
    EXPECT_TRUE(PlayMetaFile(played.Dc(), picture->hMF));
    GlobalUnlock(medium.hMetaFilePict);
    ReleaseStgMedium(&medium);

    const Canvas direct(kSide, kSide);
    const RECT bounds = {0, 0, kSide, kSide};
    ASSERT_EQ(OleDraw(control.Get(), DVASPECT_CONTENT, direct.Dc(), &bounds), S_OK);
    EXPECT_TRUE(played.Look().LooksLike(direct.Look()));

    const HDC own = CreateMetaFileW(nullptr);
    EXPECT_EQ(OleDraw(control.Get(), DVASPECT_CONTENT, own, &bounds), S_OK);
    DeleteMetaFile(CloseMetaFile(own));
}

// Units of a hundredth of a millimetre, the vertical axis up: what is drawn is upright and in
// pixels all the same.
TEST_F(InPlace, DrawsUprightWhateverTheUnits) {
    const Canvas pixels(80, 40), hundredths(80, 40);
    const RECT bounds = {4, 8, 76, 36};
    ASSERT_EQ(OleDraw(control.Get(), DVASPECT_CONTENT, pixels.Dc(), &bounds), S_OK);
    SetMapMode(hundredths.Dc(), MM_HIMETRIC);
    POINT corners[] = {{bounds.left, bounds.top}, {bounds.right, bounds.bottom}};
    DPtoLP(hundredths.Dc(), corners, 2);
    const RECT metric = {corners[0].x, corners[0].y, corners[1].x, corners[1].y};
    ASSERT_EQ(OleDraw(control.Get(), DVASPECT_CONTENT, hundredths.Dc(), &metric), S_OK);
    EXPECT_TRUE(hundredths.Look().LooksLike(pixels.Look()));
    EXPECT_EQ(GetMapMode(hundredths.Dc()), MM_HIMETRIC);
}

}  // namespace
}  // namespace quorvane

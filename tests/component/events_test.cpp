// Events: what listeners hear, in which order, and what they may do to the object meanwhile.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <olectl.h>

#include <atomic>
#include <thread>

#include "tests/component/async_client.h"
#include "tests/component/listener.h"
#include "tests/servers/mail_peer.h"

namespace quorvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::MailPeer;

// The calling thread's single-threaded apartment.
class Apartment {
public:
    Apartment() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    ~Apartment() { CoUninitialize(); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
};

VARIANT Handler(IDispatch* listener) {
    VARIANT handler;
    VariantInit(&handler);
    handler.vt = VT_DISPATCH;
    handler.pdispVal = listener;
    return handler;
}

// The listeners that a test makes go before the apartment does, but after the object.
class Events : public ::testing::Test {
protected:
    Apartment apartment;
    MailPeer peer;
    Listener sink;
    Listener other;
    Listener function{Listener::Function};
    AsyncClient client{peer.port()};

    // As a program should before it leaves its apartment: the event thread may still have a
    // listener of it in its hands, and letting that go takes this thread's help.
    void TearDown() override {
        client.mail.Reset();
        EXPECT_TRUE(PumpUntil([&] {
            return ModuleCanUnload() &&
                   sink.references + other.references + function.references == 0;
        }));
    }

    ComPtr<IConnectionPoint> Point() {
        ComPtr<IConnectionPointContainer> container;
        ComPtr<IConnectionPoint> point;
        EXPECT_EQ(
            client.mail->QueryInterface(IID_IConnectionPointContainer, container.ReceiveVoid()),
            S_OK);
        EXPECT_EQ(container->FindConnectionPoint(DIID__ISmtpMailEvents, point.Receive()), S_OK);
        return point;
    }
    DWORD Advise(Listener& listener) {
        DWORD cookie = 77;
        EXPECT_EQ(Point()->Advise(&listener, &cookie), S_OK);
        return cookie;
    }
    bool PumpForStatus(LONG number, LONG status) {
        return PumpUntil([&] { return Heard(sink, StatusEvent(number, status)); });
    }
    // Of a call that has just ended a reference may still be on its way back.
    static bool LetGo(const Listener& listener) {
        return PumpUntil([&] { return listener.references == 0; });
    }
    static bool Heard(const Listener& listener, const Event& event) {
        return std::find(listener.events.begin(), listener.events.end(), event) !=
               listener.events.end();
    }
};

TEST_F(Events, ArriveExactlyAndInOrder) {
    Listener progress;
    client.mail->put_OnStatusChangeHandler(Handler(&function));
    client.mail->put_OnProgressHandler(Handler(&progress));
    Advise(sink);
    client.Send(OLESTR("ok@x"));
    ASSERT_TRUE(PumpForStatus(1, MailStatusSent));
    EXPECT_THAT(sink.events, ElementsAre(StatusEvent(1, 1), StatusEvent(1, 2)))
        << "no progress of a small message";
    ASSERT_TRUE(PumpUntil([&] { return function.events.size() == 2; }));
    EXPECT_THAT(function.events, ElementsAre(Event{0, {1, 1}}, Event{0, {1, 2}}))
        << "by its default member";

    sink.events.clear();
    client.Send(OLESTR("ok@x"), 20000);
    ASSERT_TRUE(PumpForStatus(2, MailStatusSent));
    ASSERT_EQ(sink.events.size(), 5u);
    const LONG total = sink.events[1].values[2];
    EXPECT_GT(total, 20000);
    const Event first{2, {2, 8192, total}}, second{2, {2, 16384, total}},
        third{2, {2, total, total}};
    EXPECT_THAT(sink.events,
                ElementsAre(StatusEvent(2, 1), first, second, third, StatusEvent(2, 2)));
    EXPECT_THAT(progress.events, ElementsAre(first, second, third));
    client.mail.Reset();
    for (const Listener* listener : {&sink, &function, &progress}) EXPECT_TRUE(LetGo(*listener));
}

TEST_F(Events, TellOfWhatIsCancelledInTheOrderOfTheNumbers) {
    client.mail->put_MaxThreads(1);
    Advise(sink);
    client.Send(OLESTR("hold-1@x"));
    ASSERT_TRUE(peer.WaitForStuck(1));
    for (int message = 2; message <= 5; ++message) client.Send(OLESTR("ok@x"));
    client.mail->Cancel(3);
    client.mail->CancelAll();
    ASSERT_TRUE(PumpForStatus(1, MailStatusCanceled));
    EXPECT_THAT(sink.events, ElementsAre(StatusEvent(1, 1), StatusEvent(3, 4), StatusEvent(2, 4),
                                         StatusEvent(4, 4), StatusEvent(5, 4), StatusEvent(1, 4)));
}

// What is cancelled between two pieces of a message has the session's code, unless the look of
// every half second came first.
TEST_F(Events, TellWhenATransferCanBeCancelled) {
    constexpr std::size_t kMoreThanSocketsHold = 12 << 20;
    Advise(sink);
    client.mail->put_MaxThreads(1);
    LONG code = -2;
    for (int tries = 0; tries < 5 && code == -2; ++tries) {
        MailPeer stalled;
        client.mail->put_SmtpPort(stalled.port());
        sink.events.clear();
        const LONG number = client.Send(OLESTR("stall@x"), kMoreThanSocketsHold);
        ASSERT_TRUE(PumpUntil([&] { return sink.events.size() > 1; })) << "pieces under way";
        client.mail->Cancel(number);
        stalled.Open();
        ASSERT_TRUE(PumpForStatus(number, MailStatusCanceled));
        code = client.Code(number);
        EXPECT_EQ(client.Text(number), "");
        EXPECT_THAT(stalled.accepted(), IsEmpty());
    }
    EXPECT_EQ(code, -1);
}

TEST_F(Events, ReachEverySinkInItsSlot) {
    EXPECT_EQ(Advise(sink), 1u);
    EXPECT_EQ(Advise(other), 2u);
    for (DWORD slot = 3; slot <= 9; ++slot) EXPECT_EQ(Advise(other), slot);
    const auto point = Point();
    EXPECT_EQ(point->Unadvise(2), S_OK);
    EXPECT_EQ(point->Unadvise(5), S_OK);
    for (const DWORD wrong : {0u, 2u, 5u, 10u, 17u, 0xFFFFFFFFu}) {
        EXPECT_EQ(point->Unadvise(wrong), CONNECT_E_NOCONNECTION);
    }
    EXPECT_EQ(Advise(other), 2u) << "the lowest free slot";
    for (DWORD slot = 3; slot <= 9; ++slot) point->Unadvise(slot);
    client.Send(OLESTR("ok@x"));
    ASSERT_TRUE(PumpForStatus(1, MailStatusSent));
    ASSERT_TRUE(PumpUntil([&] { return other.events.size() == 2; }));
    EXPECT_EQ(other.events, sink.events);

    EXPECT_EQ(point->Unadvise(1), S_OK);
    client.Send(OLESTR("ok@x"));
    ASSERT_TRUE(PumpUntil([&] { return other.events.size() == 4; }));
    EXPECT_EQ(sink.events.size(), 2u);
    EXPECT_TRUE(LetGo(sink));
}

// An object with a dual interface of its own, which its event interface is not.
class TwoFaced final : public IDispatch {
public:
    explicit TwoFaced(Listener& events) : events_(events) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        const bool own = iid == IID_IUnknown || iid == IID_IDispatch;
        *out = own                            ? this
               : iid == DIID__ISmtpMailEvents ? static_cast<IDispatch*>(&events_)
                                              : nullptr;
        if (own) AddRef();
        if (*out && !own) events_.AddRef();
        return *out ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override { return --references; }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                        UINT*) override {
        ++wrongCalls;
        return S_OK;
    }

    std::atomic<ULONG> references{0};
    int wrongCalls = 0;

private:
    Listener& events_;
};

TEST_F(Events, ReachTheEventInterfaceOfObjectsWithAnother) {
    TwoFaced object(sink);
    DWORD cookie = 0;
    ASSERT_EQ(Point()->Advise(&object, &cookie), S_OK);
    client.Send(OLESTR("ok@x"));
    EXPECT_TRUE(PumpForStatus(1, MailStatusSent));
    EXPECT_EQ(object.wrongCalls, 0);
    EXPECT_EQ(Point()->Unadvise(cookie), S_OK);
    EXPECT_TRUE(LetGo(sink));
    EXPECT_TRUE(PumpUntil([&] { return object.references == 0; }));
}

TEST_F(Events, ConnectionPointKeepsItsContract) {
    const auto point = Point();
    DWORD cookie = 77;
    EXPECT_EQ(point->Advise(nullptr, &cookie), E_POINTER);
    EXPECT_EQ(cookie, 0u);
    cookie = 77;
    EXPECT_EQ(point->Advise(&sink, nullptr), E_POINTER);
    EXPECT_EQ(point->Advise(&function, &cookie), CONNECT_E_CANNOTCONNECT);
    EXPECT_EQ(cookie, 0u);
    EXPECT_EQ(function.references, 0u);

    IID iid{};
    EXPECT_EQ(point->GetConnectionInterface(nullptr), E_POINTER);
    EXPECT_EQ(point->GetConnectionInterface(&iid), S_OK);
    EXPECT_EQ(iid, DIID__ISmtpMailEvents);
    void* unknown = &unknown;
    EXPECT_EQ(point->QueryInterface(IID_IDispatch, &unknown), E_NOINTERFACE);
    EXPECT_EQ(unknown, nullptr);
    ComPtr<IConnectionPointContainer> container;
    EXPECT_EQ(point->GetConnectionPointContainer(nullptr), E_POINTER);
    ASSERT_EQ(point->GetConnectionPointContainer(container.Receive()), S_OK);
    ComPtr<IConnectionPoint> missing;
    EXPECT_EQ(container->FindConnectionPoint(IID_IDispatch, missing.Receive()),
              CONNECT_E_NOCONNECTION);
    EXPECT_EQ(container->FindConnectionPoint(DIID__ISmtpMailEvents, nullptr), E_POINTER);

    ComPtr<IEnumConnectionPoints> points, copy;
    ASSERT_EQ(container->EnumConnectionPoints(points.Receive()), S_OK);
    ASSERT_EQ(points->Clone(copy.Receive()), S_OK);
    IConnectionPoint* found[2] = {};
    ULONG fetched = 77;
    EXPECT_EQ(points->Next(2, found, nullptr), E_POINTER);
    EXPECT_EQ(points->Next(2, found, &fetched), S_FALSE);
    EXPECT_EQ(fetched, 1u);
    EXPECT_EQ(found[0], point.Get());
    found[0]->Release();
    EXPECT_EQ(points->Next(1, found, nullptr), S_FALSE);
    EXPECT_EQ(points->Reset(), S_OK);
    EXPECT_EQ(points->Skip(1), S_OK);
    EXPECT_EQ(points->Skip(1), S_FALSE);
    EXPECT_EQ(copy->Next(1, found, nullptr), S_OK) << "a copy has a place of its own";
    found[0]->Release();

    Advise(sink);
    Advise(other);
    Advise(sink);
    point->Unadvise(2);
    ComPtr<IEnumConnections> connections;
    ASSERT_EQ(point->EnumConnections(connections.Receive()), S_OK);
    CONNECTDATA data[3] = {};
    EXPECT_EQ(connections->Next(3, data, &fetched), S_FALSE);
    ASSERT_EQ(fetched, 2u);
    EXPECT_EQ(data[0].pUnk, &sink);
    EXPECT_EQ(data[0].dwCookie, 1u);
    EXPECT_EQ(data[1].dwCookie, 3u);
    data[0].pUnk->Release();
    data[1].pUnk->Release();
}

TEST_F(Events, HandlersAreReplacedByObjectsOnly) {
    client.mail->put_OnStatusChangeHandler(Handler(&sink));
    VARIANT text;
    VariantInit(&text);
    text.vt = VT_BSTR;
    text.bstrVal = nullptr;
    EXPECT_EQ(client.mail->put_OnStatusChangeHandler(text), E_INVALIDARG);
    EXPECT_EQ(client.mail->put_OnProgressHandler(text), E_INVALIDARG);
    client.Send(OLESTR("ok@x"));
    EXPECT_TRUE(PumpForStatus(1, MailStatusSent)) << "the handler stays";
    EXPECT_EQ(client.mail->put_OnStatusChangeHandler(Handler(&other)), S_OK);
    EXPECT_TRUE(LetGo(sink));
    client.Send(OLESTR("ok@x"));
    ASSERT_TRUE(PumpUntil([&] { return Heard(other, StatusEvent(2, 2)); }));
    EXPECT_EQ(sink.events.size(), 2u);
    EXPECT_EQ(client.mail->put_OnStatusChangeHandler(Handler(nullptr)), E_INVALIDARG);
    EXPECT_TRUE(LetGo(other)) << "nobody hears any more";
}

TEST_F(Events, ListenersMayFailSendUnadviseAndReplaceThemselves) {
    sink.reaction = [](const Event&) { return E_FAIL; };
    Advise(sink);
    const DWORD cookie = Advise(other);
    LONG second = 0;
    other.reaction = [&](const Event& event) {
        if (event != StatusEvent(1, MailStatusSent)) return S_OK;
        second = client.Send(OLESTR("ok@x"));
        client.mail->put_OnStatusChangeHandler(Handler(nullptr));
        return Point()->Unadvise(cookie);
    };
    client.mail->put_OnStatusChangeHandler(Handler(&function));
    client.Send(OLESTR("ok@x"));
    ASSERT_TRUE(PumpForStatus(2, MailStatusSent));
    EXPECT_EQ(second, 2);
    EXPECT_THAT(other.events, ElementsAre(StatusEvent(1, 1), StatusEvent(1, 2)));
    EXPECT_THAT(function.events, ElementsAre(Event{0, {1, 1}})) << "gone when its turn came";
    EXPECT_EQ(sink.events.size(), 4u);
}

TEST_F(Events, ListenersMayReleaseTheObject) {
    Advise(sink);
    client.mail->put_OnStatusChangeHandler(Handler(&function));
    sink.reaction = [&](const Event& event) {
        if (event == StatusEvent(2, MailStatusSent)) client.mail.Reset();
        return S_OK;
    };
    client.Send(OLESTR("ok@x"));
    client.Send(OLESTR("ok@x"));
    ASSERT_TRUE(PumpForStatus(2, MailStatusSent));
    EXPECT_TRUE(PumpUntil(ModuleCanUnload));
    EXPECT_TRUE(LetGo(sink));
    EXPECT_TRUE(LetGo(function));
}

// The events thread is then in the call of a thread that takes no messages.
TEST_F(Events, ReleaseDoesNotWaitForAListenerThatIsBusy) {
    std::atomic<bool> end = false;
    std::atomic<bool> listening = false;
    std::thread busy([&] {
        const Apartment own;
        Listener deaf;
        client.mail->put_OnStatusChangeHandler(Handler(&deaf));
        listening = true;
        EXPECT_TRUE(Eventually([&] { return end.load(); })) << "the release waits";
        EXPECT_THAT(deaf.events, IsEmpty());
        EXPECT_TRUE(PumpUntil([&] { return ModuleCanUnload() && deaf.references == 0; }))
            << "the thread ends once its call is taken";
    });
    ASSERT_TRUE(Eventually([&] { return listening.load(); }));
    Advise(sink);
    client.Send(OLESTR("ok@x"));
    ASSERT_TRUE(PumpForStatus(1, MailStatusSending)) << "behind it comes the busy one";
    client.mail.Reset();
    EXPECT_TRUE(LetGo(sink));
    end = true;
    busy.join();
}

TEST_F(Events, SkipListenersWhoseApartmentIsGone) {
    std::thread([&] {
        Listener mortal;  // to its apartment's very end
        const Apartment own;
        DWORD cookie = 0;
        EXPECT_EQ(Point()->Advise(&mortal, &cookie), S_OK);
        client.mail->put_OnStatusChangeHandler(Handler(&mortal));
    }).join();
    Advise(sink);
    client.Send(OLESTR("ok@x"));
    EXPECT_TRUE(PumpForStatus(1, MailStatusSent));
}

// What belongs to no apartment has no table to listen through.
TEST(EventsWithoutCom, CannotBeListenedTo) {
    MailPeer peer;
    AsyncClient client(peer.port());
    Listener listener;
    EXPECT_EQ(client.mail->put_OnStatusChangeHandler(Handler(&listener)), E_POINTER);
    ComPtr<IConnectionPointContainer> container;
    ComPtr<IConnectionPoint> point;
    client.mail->QueryInterface(IID_IConnectionPointContainer, container.ReceiveVoid());
    ASSERT_EQ(container->FindConnectionPoint(DIID__ISmtpMailEvents, point.Receive()), S_OK);
    DWORD cookie = 77;
    EXPECT_EQ(point->Advise(&listener, &cookie), E_POINTER);
    EXPECT_EQ(cookie, 0u);
    client.Send(OLESTR("ok@x"));
    EXPECT_TRUE(client.WaitForStatus(1, MailStatusSent));
}

}  // namespace
}  // namespace quorvane

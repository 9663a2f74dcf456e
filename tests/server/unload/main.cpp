// unload LIBRARY: lets go of an object while a worker of it sends, and of the library with it.
//
// The library must stay until the worker has left it, then go. Exit status 0 when it does.
#include <windows.h>
#include <oleauto.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "Quorvane.h"
#include "automation/com_ptr.h"
#include "automation/wide_string.h"
#include "tests/server/unload/library.h"
#include "tests/servers/mail_peer.h"

namespace quorvane::testing {
namespace {

class Text {
public:
    explicit Text(WideView text) { ToBstr(text, text_.Receive()); }
    operator BSTR() const { return text_.Get(); }

private:
    BstrHolder text_;
};

bool Check(bool good, const char* what) {
    if (!good) std::printf("FAILED: %s\n", what);
    return good;
}

template <class Interface>
ComPtr<Interface> Create(const char* library, REFCLSID clsid) {
    ComPtr<Interface> object;
    if (IUnknown* const made = CreateObject(library, clsid, __uuidof(Interface))) {
        *object.Receive() = static_cast<Interface*>(made);
    }
    return object;
}

// True when the message is queued. Nothing but the queue holds the library then.
bool QueueAndLetGo(const char* library, int port) {
    const auto mail = Create<ISmtpMail>(library, CLSID_SmtpMail);
    const auto message = Create<IMailMessage>(library, CLSID_MailMessage);
    const auto address = Create<IMailAddress>(library, CLSID_MailAddress);
    if (!mail || !message || !address) return false;
    address->put_Address(Text(OLESTR("hold@x")));
    message->put_Sender(address.Get());
    message->AddRecipient(address.Get());
    mail->put_SmtpServer(Text(OLESTR("127.0.0.1")));
    mail->put_SmtpPort(port);
    LONG number = 0;
    // Without an event the worker may not have come to it when the object goes.
    if (mail->SendAsync(message.Get(), VARIANT_TRUE, &number) != S_OK) return false;
    MailStatus status = MailStatusQueued;
    for (int waited = 0; status == MailStatusQueued && waited < 10000; ++waited) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        mail->GetStatus(number, &status);
    }
    return status == MailStatusSending;
}

bool Goes() {
    for (int waited = 0; IsLoaded() && waited < 10000; ++waited) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        UnloadIfUnused();
    }
    return !IsLoaded();
}

bool Run(const char* library) {
    MailPeer peer;
    bool good = true;
    std::thread([&] {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        good &= Check(QueueAndLetGo(library, peer.port()), "a message is being sent");
        good &= Check(peer.WaitForStuck(1), "it waits for the peer");
        good &= Check(CanUnloadNow() == S_FALSE, "the library says that it is in use");
        UnloadIfUnused();
        good &= Check(IsLoaded(), "it stays while the worker runs");
        peer.Open();
        good &= Check(peer.WaitForAccepted(1), "the message arrives");
        if (!kGoesAfterItsThread) good &= Check(Goes(), "the library goes with the worker");
        CoUninitialize();
    }).join();
    if (kGoesAfterItsThread) good &= Check(Goes(), "the library goes with the worker");
    return good;
}

}  // namespace
}  // namespace quorvane::testing

int main(int count, char** arguments) {
    if (count != 2) return 2;
    return quorvane::testing::Run(arguments[1]) ? 0 : 1;
}

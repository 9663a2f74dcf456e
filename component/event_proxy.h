// The listeners of an SmtpMail object, and the calls to them.
#pragma once

#include <windows.h>
#include <ocidl.h>
#include <ole2.h>

#include <mutex>
#include <span>
#include <vector>

#include "automation/com_ptr.h"

namespace quorvane {

struct Connection {
    ComPtr<IUnknown> sink;
    DWORD cookie;
};

// Two kinds of listeners: sinks of the connection point, in numbered slots, and one script function
// for each event. All are kept in the process's global interface table, so that each call is
// carried into the listener's own apartment: it runs on the listener's thread, while that takes
// messages, and the caller waits for it.
//
// Any thread. No lock is held while a listener or the table is called.
class CProxy_ISmtpMailEvents {
public:
    // Without the table, as on a thread that has not initialized COM, nobody can listen.
    CProxy_ISmtpMailEvents();
    CProxy_ISmtpMailEvents(const CProxy_ISmtpMailEvents&) = delete;
    CProxy_ISmtpMailEvents& operator=(const CProxy_ISmtpMailEvents&) = delete;

    // Connect and disconnect a sink; the cookie is its slot, counted from 1, and the lowest free
    // slot is taken. E_POINTER also without the table; CONNECT_E_CANNOTCONNECT for a sink without
    // _ISmtpMailEvents; CONNECT_E_ADVISELIMIT when there is no memory for a slot;
    // CONNECT_E_NOCONNECTION for a cookie that is not in use.
    HRESULT Advise(IUnknown* sink, DWORD* cookie);
    HRESULT Unadvise(DWORD cookie);
    // The connected sinks as the calling thread may use them; those that are gone are left out.
    std::vector<Connection> Connections();

    // Replace the script function. E_INVALIDARG for anything but an object, which leaves the one
    // that is there; a null object removes it and gives what the table answers to it.
    HRESULT PutStatusHandler(const VARIANT& handler) {
        return PutHandler(m_statusHandlerCookie, handler);
    }
    HRESULT PutProgressHandler(const VARIANT& handler) {
        return PutHandler(m_progressHandlerCookie, handler);
    }

    // Call all sinks in the order of their slots, then the script function. Listeners that fail
    // or are gone don't keep the others from being called.
    void FireStatusChange(LONG messageNumber, LONG newStatus);
    void FireProgress(LONG messageNumber, LONG bytesSent, LONG bytesTotal);

    void RevokeHandlers();
    void RevokeSinks();

private:
    HRESULT Register(IUnknown* object, DWORD& registration);
    void Revoke(DWORD registration);
    bool TakeSlot(DWORD registration, DWORD* cookie);
    DWORD Slot(std::size_t index, std::size_t& slots);
    HRESULT PutHandler(DWORD& member, const VARIANT& handler);
    void Fire(DISPID id, std::span<const LONG> values, const DWORD& handler);
    HRESULT Call(DWORD registration, DISPID id, std::span<const LONG> values);

    ComPtr<IGlobalInterfaceTable> table_;
    std::mutex mutex_;
    std::vector<DWORD> slots_;        // registrations in the table; 0 is a free slot
    DWORD m_statusHandlerCookie = 0;  // 0 for none
    DWORD m_progressHandlerCookie = 0;
};

}  // namespace quorvane

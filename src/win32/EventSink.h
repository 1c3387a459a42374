#pragma once
// Events of an ActiveX control: an IDispatch that hands them to a function, and its connection.

#include <oaidl.h>
#include <ocidl.h>

#include <functional>

#include "win32/ComPtr.h"

namespace win32 {

// The arguments of one event, in the order of its parameters.
class EventArguments {
public:
    explicit EventArguments(const DISPPARAMS& parameters) : m_parameters(parameters) {}

    UINT Count() const { return m_parameters.cArgs; }
    // Throws DISP_E_BADPARAMCOUNT.
    void RequireCount(size_t count) const;
    // Any integer kind, also by reference or in a VARIANT; a sender that is not ours may use VT_I2. Throws
    // DISP_E_TYPEMISMATCH.
    LONG Integer(size_t position) const;

private:
    const DISPPARAMS& m_parameters;
};

// Called for each event; an exception goes back to the control as its status.
using EventHandler = std::function<void(DISPID event, const EventArguments& arguments)>;

class EventSink;

// While it lives, events of `source` go to the handler, on the thread that fires them.
class EventConnection {
public:
    // A control without such events is thrown as its failing status.
    EventConnection(IUnknown* source, REFIID events, EventHandler handler);
    ~EventConnection();
    EventConnection(const EventConnection&) = delete;
    EventConnection& operator=(const EventConnection&) = delete;

private:
    ComPtr<IConnectionPoint> m_point;
    EventSink* m_sink;
    DWORD m_cookie = 0;
};

}  // namespace win32

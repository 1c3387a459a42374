#pragma once
// Tables that say which member function of a dialog handles what:
//
//     static constexpr win32::MessageEntry kMap[] = {
//         win32::OnClick<&CMyDlg::OnAdd>(IDC_ADD),                        // void OnAdd()
//         win32::OnNotify<&CMyDlg::OnKeyDown>(IDC_LIST, LVN_KEYDOWN),     // LRESULT OnKeyDown(NMHDR*)
//         win32::OnMessage<&CMyDlg::OnDestroy>(WM_DESTROY),               // LRESULT OnDestroy(WPARAM, LPARAM)
//     };

#include <windows.h>

#include <cstddef>
#include <utility>

#include "win32/EventSink.h"

class CDialog;

namespace win32 {

struct MessageEntry {
    UINT message;  // WM_COMMAND, WM_NOTIFY or any other
    UINT first;    // controls or commands of the first two, from first to last
    UINT last;
    UINT code;  // their notification
    LRESULT (*handle)(CDialog& dialog, WPARAM wParam, LPARAM lParam);
};

struct EventEntry {
    UINT control;
    DISPID event;
    void (*handle)(CDialog& dialog, const EventArguments& arguments);
    bool followsPointer;
};

template <auto Method>
struct Handler;

template <class Dialog, void (Dialog::*Method)()>
struct Handler<Method> {
    static LRESULT Call(CDialog& dialog, WPARAM, LPARAM) {
        (static_cast<Dialog&>(dialog).*Method)();
        return 0;
    }
};

template <class Dialog, void (Dialog::*Method)(UINT)>
struct Handler<Method> {
    static LRESULT Call(CDialog& dialog, WPARAM wParam, LPARAM) {
        (static_cast<Dialog&>(dialog).*Method)(LOWORD(wParam));
        return 0;
    }
};

template <class Dialog, LRESULT (Dialog::*Method)(NMHDR*)>
struct Handler<Method> {
    static LRESULT Call(CDialog& dialog, WPARAM, LPARAM lParam) {
        return (static_cast<Dialog&>(dialog).*Method)(reinterpret_cast<NMHDR*>(lParam));
    }
};

template <class Dialog, LRESULT (Dialog::*Method)(WPARAM, LPARAM)>
struct Handler<Method> {
    static LRESULT Call(CDialog& dialog, WPARAM wParam, LPARAM lParam) {
        return (static_cast<Dialog&>(dialog).*Method)(wParam, lParam);
    }
};

// Events have integer parameters only.
template <auto Method>
struct EventHandlerOf;

template <class Dialog, class... Integers, void (Dialog::*Method)(Integers...)>
struct EventHandlerOf<Method> {
    static void Call(CDialog& dialog, const EventArguments& arguments) {
        Spread(static_cast<Dialog&>(dialog), arguments, std::index_sequence_for<Integers...>());
    }

private:
    template <size_t... Position>
    static void Spread(Dialog& dialog, const EventArguments& arguments, std::index_sequence<Position...>) {
        arguments.RequireCount(sizeof...(Integers));
        (dialog.*Method)(arguments.Integer(Position)...);
    }
};

// A click on a button.
template <auto Method>
constexpr MessageEntry OnClick(UINT control) {
    return {WM_COMMAND, control, control, BN_CLICKED, &Handler<Method>::Call};
}

// Menu commands, all of a range.
template <auto Method>
constexpr MessageEntry OnCommandRange(UINT first, UINT last) {
    return {WM_COMMAND, first, last, 0, &Handler<Method>::Call};
}

// Another notification of a plain control, as EN_CHANGE.
template <auto Method>
constexpr MessageEntry OnControl(UINT control, UINT code) {
    return {WM_COMMAND, control, control, code, &Handler<Method>::Call};
}

template <auto Method>
constexpr MessageEntry OnNotify(UINT control, UINT code) {
    return {WM_NOTIFY, control, control, code, &Handler<Method>::Call};
}

template <auto Method>
constexpr MessageEntry OnMessage(UINT message) {
    return {message, 0, 0, 0, &Handler<Method>::Call};
}

// An event of an ActiveX control.
template <auto Method>
constexpr EventEntry OnEvent(UINT control, DISPID event) {
    return {control, event, &EventHandlerOf<Method>::Call, false};
}

// One that comes with each move of the pointer.
template <auto Method>
constexpr EventEntry OnPointerEvent(UINT control, DISPID event) {
    return {control, event, &EventHandlerOf<Method>::Call, true};
}

}  // namespace win32

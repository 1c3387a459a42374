#include "win32/Dialog.h"

#include <commctrl.h>
#include <olectl.h>

#include <algorithm>
#include <utility>

#include "host/Controls.h"
#include "resource.h"
#include "win32/Failure.h"
#include "win32/Resources.h"

namespace {

constexpr DWORD kHelpBase = 0x20000;
constexpr INT_PTR kNotCreated = -1;

// The dialogs open in the module, the innermost last. Used on the window thread.
std::vector<HWND>& OpenDialogs() {
    static std::vector<HWND> dialogs;
    return dialogs;
}

class ScopedFlag {
public:
    explicit ScopedFlag(bool& flag) : m_flag(flag) { m_flag = true; }
    ~ScopedFlag() { m_flag = false; }
    ScopedFlag(const ScopedFlag&) = delete;
    ScopedFlag& operator=(const ScopedFlag&) = delete;

private:
    bool& m_flag;
};

bool IsReflected(UINT message) {
    return message == WM_DRAWITEM || message == WM_MEASUREITEM || message == WM_DELETEITEM || message == WM_COMPAREITEM;
}

// Messages that come once for each thing that the user does; a selection comes with every row that it passes.
bool IsOfUser(UINT message, LPARAM lParam) {
    if (message == WM_NOTIFY) return reinterpret_cast<const NMHDR*>(lParam)->code != LVN_ITEMCHANGED;
    return message == WM_COMMAND;
}

// What the user gives as a command. What a command itself ends, as the editing of a label, goes on.
bool IsCommand(UINT message, UINT id, UINT code) {
    if (message == WM_COMMAND) return id == IDOK || id == IDCANCEL || code <= 1;
    return message == WM_NOTIFY && (code == LVN_KEYDOWN || code == NM_DBLCLK);
}

}  // namespace

CDialog::~CDialog() = default;

HWND CDialog::FindOwner() const {
    if (m_parent != nullptr && IsWindow(m_parent->GetSafeHwnd())) return m_parent->GetSafeHwnd();
    // A dialog run without an owner would leave the one beneath it enabled.
    const std::vector<HWND>& open = OpenDialogs();
    if (!open.empty() && GetWindowThreadProcessId(open.back(), nullptr) == GetCurrentThreadId()) return open.back();
    return GetActiveWindow();
}

INT_PTR CDialog::DoModal() {
    const win32::ResourceScope scope;
    m_state = State::kOpening;
    m_controlMissing = false;
    m_failure = nullptr;
    m_reported.clear();
    if (!GetHostedControls().empty() && !win32::EnableControlHosting()) return kNotCreated;

    const HINSTANCE instance = win32::FindResourceInstance(RT_DIALOG, m_templateId);
    const HRSRC resource = FindResourceW(instance, MAKEINTRESOURCEW(m_templateId), RT_DIALOG);
    const HGLOBAL data = resource == nullptr ? nullptr : LoadResource(instance, resource);
    if (data == nullptr) return kNotCreated;
    const INT_PTR result = DialogBoxIndirectParamW(instance, static_cast<LPCDLGTEMPLATEW>(LockResource(data)),
                                                   FindOwner(), DialogProc, reinterpret_cast<LPARAM>(this));
    if (m_failure != nullptr) std::rethrow_exception(std::exchange(m_failure, nullptr));
    return m_controlMissing ? kNotCreated : result;
}

INT_PTR CALLBACK CDialog::DialogProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(hWnd, DWLP_USER, lParam);
        return reinterpret_cast<CDialog*>(lParam)->Initialise(hWnd);
    }
    auto* dialog = reinterpret_cast<CDialog*>(GetWindowLongPtrW(hWnd, DWLP_USER));
    if (dialog == nullptr) return FALSE;
    if (message == WM_DESTROY) dialog->m_state = State::kClosing;
    const INT_PTR handled = dialog->Dispatch(message, wParam, lParam);
    if (message == WM_DESTROY) {
        // Before the controls go.
        dialog->m_connections.clear();
        std::erase(OpenDialogs(), hWnd);
    }
    if (message == WM_NCDESTROY) {
        SetWindowLongPtrW(hWnd, DWLP_USER, 0);
        dialog->Detach();
    }
    return handled;
}

INT_PTR CDialog::Initialise(HWND hWnd) noexcept {
    Attach(hWnd);
    bool focus = true;
    try {
        OpenDialogs().push_back(hWnd);
        m_controlMissing = !std::ranges::all_of(
            GetHostedControls(), [this](const win32::HostedControl& control) { return CreateHostedControl(control); });
        if (!m_controlMissing) focus = OnInitDialog();
    } catch (...) {
        if (m_failure == nullptr) m_failure = std::current_exception();
    }
    if (m_controlMissing || m_failure != nullptr) EndDialog(kNotCreated);
    m_state = State::kOpen;
    return focus;
}

bool CDialog::CreateHostedControl(const win32::HostedControl& control) {
    const HWND host = GetDlgItem(control.id);
    const HRESULT status = win32::CreateControlIn(host, *control.classId);
    if (FAILED(status)) {
        win32::TraceFailure(std::make_exception_ptr(_com_error(status)), GetTraceSource(), __LINE__, GetName());
        return false;
    }
    if (control.events == nullptr) return true;
    const win32::ComPtr<IUnknown> source = win32::GetControlUnknown(host);
    m_connections.push_back(std::make_unique<win32::EventConnection>(
        source.GetInterfacePtr(), *control.events,
        [this, id = control.id](DISPID event, const win32::EventArguments& arguments) {
            HandleEvent(id, event, arguments);
        }));
    return true;
}

INT_PTR CDialog::Dispatch(UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    const void* handler = nullptr;
    LRESULT result = 0;
    bool handled = true;
    try {
        handled = Route(message, wParam, lParam, result, handler);
    } catch (...) {
        HandlerFailed(std::current_exception(), handler, !IsOfUser(message, lParam));
    }
    if (handled) SetWindowLongPtrW(GetSafeHwnd(), DWLP_MSGRESULT, result);
    return handled;
}

bool CDialog::Route(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result, const void*& handler) {
    UINT id = 0;
    UINT code = 0;
    if (message == WM_COMMAND) {
        id = LOWORD(wParam);
        code = lParam == 0 ? 0 : HIWORD(wParam);
    } else if (message == WM_NOTIFY) {
        const auto* header = reinterpret_cast<const NMHDR*>(lParam);
        id = static_cast<UINT>(header->idFrom);
        code = header->code;
    }
    if ((m_ending || IsBusy()) && IsCommand(message, id, code)) return true;
    for (const win32::MessageEntry& entry : GetMessageMap()) {
        if (entry.message != message || id < entry.first || id > entry.last || entry.code != code) continue;
        handler = &entry;
        result = entry.handle(*this, wParam, lParam);
        return true;
    }
    if (message == WM_COMMAND && code == BN_CLICKED && (id == IDOK || id == IDCANCEL)) {
        handler = this;
        const ScopedFlag ending(m_ending);
        id == IDOK ? OnOK() : OnCancel();
        return true;
    }
    // An owner-drawn control of a class of its own draws itself.
    if (IsReflected(message) && wParam != 0) {
        const HWND control = GetDlgItem(static_cast<UINT>(wParam));
        result = ::SendMessageW(control, OCM__BASE + message, wParam, lParam);
        return result != 0;
    }
    return false;
}

void CDialog::HandleEvent(UINT control, DISPID event, const win32::EventArguments& arguments) {
    for (const win32::EventEntry& entry : GetEventMap()) {
        if (entry.control != control || entry.event != event) continue;
        try {
            entry.handle(*this, arguments);
        } catch (...) {
            HandlerFailed(std::current_exception(), &entry, entry.followsPointer);
            throw;
        }
        return;
    }
}

void CDialog::HandlerFailed(const std::exception_ptr& failure, const void* handler, bool once) noexcept {
    if (m_state == State::kOpening) {
        if (m_failure == nullptr) m_failure = failure;
        return;
    }
    const UINT outcome = std::exchange(m_takenBack, 0U);
    try {
        const win32::FailureReport report = win32::DescribeFailure(failure, outcome != 0 ? outcome : IDS_KEPT);
        const Reported cause = {handler, report.status};
        if (once) {
            if (std::find(m_reported.begin(), m_reported.end(), cause) != m_reported.end()) return;
            m_reported.push_back(cause);
        }
        win32::TraceFailure(failure, GetTraceSource(), __LINE__, GetName());
        // A closing window has nothing to hang a box on, and a box shows one failure at a time.
        if (m_state == State::kClosing || m_reporting) return;
        const ScopedFlag reporting(m_reporting);
        HostMessageBox(GetSafeHwnd(), report.text.c_str(), MB_OK | MB_ICONERROR);
    } catch (...) {
        win32::TraceFailure(std::current_exception(), GetTraceSource(), __LINE__, GetName());
    }
}

void CDialog::DoDataExchange(CDataExchange&) {}

bool CDialog::OnInitDialog() {
    UpdateData(false);
    return true;
}

void CDialog::OnOK() {
    if (UpdateData(true)) EndDialog(IDOK);
}

void CDialog::OnCancel() {
    EndDialog(IDCANCEL);
}

void CDialog::OnDataRefused(UINT) {}

bool CDialog::UpdateData(bool save) {
    CDataExchange exchange(*this, save);
    try {
        DoDataExchange(exchange);
        return true;
    } catch (const DataRefused& refused) {
        OnDataRefused(refused.id);
        HostMessageBox(GetSafeHwnd(), refused.text.c_str(), MB_OK | MB_ICONEXCLAMATION);
        const HWND control = GetDlgItem(refused.id);
        SendMessage(WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
        ::SendMessageW(control, EM_SETSEL, 0, -1);
        return false;
    }
}

void CDialog::OnHelp() {
    HostHelp(GetSafeHwnd(), kHelpBase + m_templateId, 0);
}

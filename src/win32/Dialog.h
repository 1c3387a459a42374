#pragma once
// A modal dialog from a resource template.

#include <exception>
#include <memory>
#include <span>
#include <vector>

#include "win32/ControlHost.h"
#include "win32/DataExchange.h"
#include "win32/MessageMap.h"
#include "win32/Wnd.h"

// The object stands on its caller's stack and lives longer than its window. Messages that arrive before the dialog is
// initialised are not handled.
//
// No exception passes through the system's message dispatch. One that leaves the initialisation ends the dialog and
// comes out of DoModal. One that leaves a later handler is traced and told in a message box, and the dialog stays open:
// each time, but for what follows the pointer or the selection, or paints, once for each handler and status.
//
// A host may handle messages within a call of its own. While OK or Cancel runs, or the dialog is busy, the user's
// commands are dropped, OK and Cancel among them.
class CDialog : public CWnd {
public:
    explicit CDialog(UINT templateId, CWnd* parent = nullptr) : m_templateId(templateId), m_parent(parent) {}
    ~CDialog() override;

    // IDOK or IDCANCEL; -1 when the dialog or a control of it could not be made. Without a parent the dialog open on
    // this thread becomes the owner, or else the thread's active window.
    INT_PTR DoModal();

protected:
    // Its name in traces, and the source that they carry.
    virtual const wchar_t* GetName() const = 0;
    virtual const char* GetTraceSource() const { return "Zonwick"; }

    virtual std::span<const win32::MessageEntry> GetMessageMap() const { return {}; }
    virtual std::span<const win32::EventEntry> GetEventMap() const { return {}; }
    virtual std::span<const win32::HostedControl> GetHostedControls() const { return {}; }
    virtual void DoDataExchange(CDataExchange& exchange);

    // False: the focus was set by the dialog itself.
    virtual bool OnInitDialog();
    virtual void OnOK();
    virtual void OnCancel();
    // For a handler that fails: the string that tells what of the user's it has taken back.
    void TellTakenBack(UINT text) { m_takenBack = text; }
    // Whether something runs that no command must come into.
    virtual bool IsBusy() const { return false; }
    // What stands in the control was refused: the place to make it reachable before it gets the focus.
    virtual void OnDataRefused(UINT id);

    // Runs DoDataExchange; false when a value was refused, of which the user was told.
    bool UpdateData(bool save);
    void EndDialog(INT_PTR result) { ::EndDialog(GetSafeHwnd(), result); }
    // The chapter of this dialog.
    void OnHelp();

private:
    static INT_PTR CALLBACK DialogProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    HWND FindOwner() const;
    INT_PTR Initialise(HWND hWnd) noexcept;
    bool CreateHostedControl(const win32::HostedControl& control);
    INT_PTR Dispatch(UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    bool Route(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result, const void*& handler);
    void HandleEvent(UINT control, DISPID event, const win32::EventArguments& arguments);
    void HandlerFailed(const std::exception_ptr& failure, const void* handler, bool once) noexcept;

    struct Reported {
        const void* handler;
        HRESULT status;
        bool operator==(const Reported&) const = default;
    };

    enum class State { kOpening, kOpen, kClosing };

    UINT m_templateId;
    CWnd* m_parent;
    State m_state = State::kOpening;
    bool m_controlMissing = false;
    bool m_reporting = false;
    UINT m_takenBack = 0;
    bool m_ending = false;         // OK or Cancel runs
    std::exception_ptr m_failure;  // of the initialisation
    std::vector<Reported> m_reported;
    std::vector<std::unique_ptr<win32::EventConnection>> m_connections;
};

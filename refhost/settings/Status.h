#pragma once
// From failures inside of the store to what callers get: a status, and a text for people.

#include <windows.h>

#include <oleauto.h>

#include <stdexcept>
#include <string>

namespace settings {

// A failure with its status and message.
class StatusError : public std::exception {
public:
    StatusError(HRESULT status, std::wstring message) : m_status(status), m_message(std::move(message)) {}
    HRESULT Status() const noexcept { return m_status; }
    const std::wstring& Message() const noexcept { return m_message; }

private:
    HRESULT m_status;
    std::wstring m_message;
};

// The failure of an operation on a file: what could not be done, why in the system's words, and what to do.
[[noreturn]] void ThrowFileError(const std::wstring& what, DWORD error, const std::wstring& remedy = {});

// The exception being handled as a status error.
StatusError CurrentError() noexcept;

// Traces at severity 6 that something takes long.
void TraceWait(const std::wstring& message) noexcept;

// Remembers a failure as the last one and gives its status.
HRESULT Report(const StatusError& error) noexcept;
// Idem, and traces it at severity 2.
HRESULT ReportToUser(const StatusError& error) noexcept;
HRESULT LastMessage(BSTR* text) noexcept;
// When the module is unloaded: nothing else of it runs any more.
void ForgetMessage() noexcept;

// The translator at the edge of the DLL.
template <class Body>
HRESULT Edge(Body&& body) noexcept {
    try {
        body();
        return S_OK;
    } catch (...) {
        return Report(CurrentError());
    }
}

}  // namespace settings

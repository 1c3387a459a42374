#include "refhost/settings/Status.h"

#include <comdef.h>

#include <cstdarg>
#include <new>
#include <utility>

#include "host/Support.h"
#include "refhost/settings/HostSettings.h"
#include "refhost/settings/StoreError.h"
#include "refhost/settings/WideText.h"

namespace settings {

namespace {

SRWLOCK g_lock = SRWLOCK_INIT;
// Null: none yet. No static object: a failure may be reported while a process that ends lets go of its modules.
std::wstring* g_message = nullptr;

void Remember(const std::wstring& message) noexcept {
    AcquireSRWLockExclusive(&g_lock);
    try {
        if (g_message == nullptr) g_message = new std::wstring;
        *g_message = message;
    } catch (...) {
        if (g_message != nullptr) g_message->clear();
    }
    ReleaseSRWLockExclusive(&g_lock);
}

HRESULT StatusOf(Failure failure) {
    switch (failure) {
        case Failure::kMissing:
            return kSettingsMissing;
        case Failure::kWrongKind:
            return kSettingsWrongKind;
        case Failure::kBadName:
            return kSettingsBadName;
        case Failure::kTooDeep:
            return kSettingsTooDeep;
        case Failure::kTooLarge:
            return HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE);
        case Failure::kDamaged:
            return kSettingsDamaged;
    }
    return E_FAIL;
}

std::wstring SystemText(DWORD error) {
    wchar_t text[512];
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text,
                                  static_cast<DWORD>(std::size(text)), nullptr);
    while (length > 0 && (text[length - 1] <= L' ' || text[length - 1] == L'.')) --length;
    return std::wstring(text, length) + L" (error " + std::to_wstring(error) + L").";
}

void Trace(int severity, const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    CLogBase::TraceImpl(severity, nullptr, "HostSettings", 0, format, arguments);
    va_end(arguments);
}

}  // namespace

void ThrowFileError(const std::wstring& what, DWORD error, const std::wstring& remedy) {
    std::wstring message = what + L": " + SystemText(error);
    if (!remedy.empty()) message += L" " + remedy;
    throw StatusError(error == ERROR_SUCCESS ? E_FAIL : HRESULT_FROM_WIN32(error), message);
}

StatusError CurrentError() noexcept {
    // Short enough for a message to be made even when memory has run out.
    try {
        try {
            throw;
        } catch (const StatusError& error) {
            return error;
        } catch (const StoreError& error) {
            return {StatusOf(error.What()), WideFrom(error.what())};
        } catch (const _com_error& error) {
            return {FAILED(error.Error()) ? error.Error() : E_FAIL, L"A node of another store failed."};
        } catch (const std::bad_alloc&) {
            return {E_OUTOFMEMORY, L"Out of memory."};
        } catch (const std::exception& error) {
            return {E_FAIL, WideFrom(error.what())};
        }
    } catch (...) {
        return {E_OUTOFMEMORY, {}};
    }
}

void TraceWait(const std::wstring& message) noexcept {
    Trace(Log::kDiagnostic, L"%ls", message.c_str());
}

HRESULT Report(const StatusError& error) noexcept {
    Remember(error.Message());
    return error.Status();
}

HRESULT ReportToUser(const StatusError& error) noexcept {
    Trace(Log::kError, L"%ls", error.Message().c_str());
    return Report(error);
}

void ForgetMessage() noexcept {
    delete std::exchange(g_message, nullptr);
}

HRESULT LastMessage(BSTR* text) noexcept {
    if (text == nullptr) return E_POINTER;
    AcquireSRWLockShared(&g_lock);
    *text = g_message == nullptr ? SysAllocString(L"")
                                 : SysAllocStringLen(g_message->data(), static_cast<UINT>(g_message->size()));
    ReleaseSRWLockShared(&g_lock);
    return *text == nullptr ? E_OUTOFMEMORY : S_OK;
}

}  // namespace settings

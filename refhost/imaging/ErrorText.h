#pragma once
// The exports' translator: what is thrown becomes a text of the calling thread.

#include <windows.h>

#include <comdef.h>

#include <new>
#include <string_view>

#include "refhost/reader/Bitmap.h"

namespace imaging {

enum class Doing { kReading, kWriting };

// The text of the thread's last failure; "subject: text".
const wchar_t* ErrorText() noexcept;
void SetErrorText(std::wstring_view subject, std::wstring_view text);
void SetErrorStatus(std::wstring_view subject, HRESULT status, Doing doing);
// For when nothing more can be allocated.
void SetPlainErrorText(const wchar_t* text) noexcept;

// Runs the body of an export: 1 when it comes to its end, else 0 with the failure's text.
template <class Body>
int Guard(std::wstring_view subject, Body body, Doing doing = Doing::kReading) noexcept {
    try {
        try {
            body();
            return 1;
        } catch (const reader::ImageError& error) {
            SetErrorText(subject, error.text);
        } catch (const _com_error& error) {
            SetErrorStatus(subject, error.Error(), doing);
        } catch (const std::bad_alloc&) {
            SetErrorStatus(subject, E_OUTOFMEMORY, doing);
        }
    } catch (...) {
        SetPlainErrorText(L"not enough memory");
    }
    return 0;
}

}  // namespace imaging

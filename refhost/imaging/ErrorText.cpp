#include "refhost/imaging/ErrorText.h"

#include <wincodec.h>

#include <algorithm>
#include <array>
#include <cwchar>
#include <string>

namespace imaging {

namespace {

thread_local std::array<wchar_t, 1024> t_errorText;

// What the user can do about a status that files and codecs give.
const wchar_t* TextOf(HRESULT status) {
    switch (status) {
        case HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND):
        case HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND):
            return L"there is no such file; check its name and folder";
        case HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED):
            return L"access is denied; check the permissions, and that it is a file";
        case HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION):
            return L"another program uses the file; close it there";
        case HRESULT_FROM_WIN32(ERROR_DISK_FULL):
            return L"the disk is full; free some space";
        case HRESULT_FROM_WIN32(ERROR_FILE_EXISTS):
        case HRESULT_FROM_WIN32(ERROR_ALREADY_EXISTS):
            return L"there is a file of this name already; choose another name";
        case WINCODEC_ERR_COMPONENTNOTFOUND:
        case WINCODEC_ERR_UNKNOWNIMAGEFORMAT:
            return L"this is no image of a known format; use PNG, JPEG, BMP or TIFF";
        case WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT:
        case WINCODEC_ERR_UNSUPPORTEDOPERATION:
        case E_NOTIMPL:
            return L"the image's colour format is not supported; save it with 24 bits of colour";
        case E_OUTOFMEMORY:
            return L"not enough memory; close other programs or use a lower resolution";
        default:
            return nullptr;
    }
}

}  // namespace

const wchar_t* ErrorText() noexcept {
    return t_errorText.data();
}

void SetErrorText(std::wstring_view subject, std::wstring_view text) {
    std::wstring whole(subject);
    if (!whole.empty()) whole += L": ";
    whole += text;
    const size_t length = std::min(whole.size(), t_errorText.size() - 1);
    whole.copy(t_errorText.data(), length);
    t_errorText[length] = L'\0';
}

void SetErrorStatus(std::wstring_view subject, HRESULT status, Doing doing) {
    if (const wchar_t* text = TextOf(status)) return SetErrorText(subject, text);
    const wchar_t* format =
        doing == Doing::kReading
            ? L"the image is damaged or cannot be read (status %08lX); scan or export the page again"
            : L"the file cannot be written (status %08lX); check its folder, the permissions and the free space";
    wchar_t text[160];
    std::swprintf(text, std::size(text), format, static_cast<unsigned long>(status));
    SetErrorText(subject, text);
}

void SetPlainErrorText(const wchar_t* text) noexcept {
    std::wcsncpy(t_errorText.data(), text, t_errorText.size() - 1);
}

}  // namespace imaging

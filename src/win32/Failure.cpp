#include "win32/Failure.h"

#include <comdef.h>

#include <cwchar>
#include <new>

#include "resource.h"
#include "trace/Trace.h"
#include "win32/Resources.h"

namespace win32 {
namespace {

std::wstring Hexadecimal(HRESULT status) {
    wchar_t text[16];
    std::swprintf(text, std::size(text), L"0x%08lx", static_cast<unsigned long>(status));
    return text;
}

}  // namespace

HRESULT StatusOf(const std::exception_ptr& failure) noexcept {
    try {
        std::rethrow_exception(failure);
    } catch (const _com_error& error) {
        return error.Error();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

void TraceFailure(const std::exception_ptr& failure, const char* source, int line, const wchar_t* name) noexcept {
    try {
        std::rethrow_exception(failure);
    } catch (const _com_error& error) {
        trace::TraceText(trace::kError, source, line, L"%ls: a host object failed with status 0x%08lx.", name,
                         static_cast<unsigned long>(error.Error()));
    } catch (const std::bad_alloc&) {
        trace::TraceText(trace::kError, source, line, L"%ls: out of memory.", name);
    } catch (...) {
        trace::TraceText(trace::kError, source, line, L"%ls: unexpected failure.", name);
    }
}

FailureReport DescribeFailure(const std::exception_ptr& failure, UINT outcome) {
    const HRESULT status = StatusOf(failure);
    const std::wstring kept = LoadText(outcome);
    switch (status) {
        case E_OUTOFMEMORY:
            return {status, FormatText(IDS_FAILED_MEMORY, {kept})};
        case E_UNEXPECTED:
            return {status, FormatText(IDS_FAILED_UNEXPECTED, {kept})};
        case REGDB_E_CLASSNOTREG:
            return {status, FormatText(IDS_FAILED_NOT_REGISTERED, {Hexadecimal(status), kept})};
        default:
            return {status, FormatText(IDS_FAILED_HOST_OBJECT, {Hexadecimal(status), kept})};
    }
}

}  // namespace win32

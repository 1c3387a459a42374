#pragma once
// What a failed handler leaves behind: a trace for the log and a text for the user.

#include <windows.h>

#include <exception>
#include <string>

namespace win32 {

// The status of a host call; E_OUTOFMEMORY, E_UNEXPECTED for the rest.
HRESULT StatusOf(const std::exception_ptr& failure) noexcept;

struct FailureReport {
    HRESULT status;
    std::wstring text;  // for the user: what happened and what to do
};

// Traces the failure at severity 2 as "<name>: ...", in the words of its kind.
void TraceFailure(const std::exception_ptr& failure, const char* source, int line, const wchar_t* name) noexcept;
// `outcome` is the string that tells what became of what the user entered.
FailureReport DescribeFailure(const std::exception_ptr& failure, UINT outcome);

}  // namespace win32

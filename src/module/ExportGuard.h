#pragma once
// Keeps exceptions inside: every export runs its body through Contain.

#include <exception>

#include "win32/Failure.h"

namespace module {

// The body's result, or `failure` when it throws; then the exception was traced.
template <class Result, class Body>
Result Contain(const char* source, int line, const wchar_t* name, Result failure, Body body) noexcept {
    try {
        return body();
    } catch (...) {
        win32::TraceFailure(std::current_exception(), source, line, name);
        return failure;
    }
}

}  // namespace module

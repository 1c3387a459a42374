#pragma once
// Keeps exceptions inside: every export runs its body through Contain.

#include <comdef.h>

#include <exception>
#include <new>

#include "trace/Trace.h"

namespace module {

// Traces what is being handled, at severity 2: "<name>: ..." in the words of its kind.
void TraceCurrentException(const char* source, int line, const wchar_t* name) noexcept;

// The body's result, or `failure` when it throws; then the exception was traced.
template <class Result, class Body>
Result Contain(const char* source, int line, const wchar_t* name, Result failure, Body body) noexcept {
    try {
        return body();
    } catch (...) {
        TraceCurrentException(source, line, name);
        return failure;
    }
}

}  // namespace module

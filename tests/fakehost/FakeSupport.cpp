#include <cstdio>
#include <iterator>
#include <string>

#include "fakehost/FakeHost.h"
#include "host/Support.h"

namespace {

void* g_context = nullptr;
FakeTraceSink g_traceSink = nullptr;
FakeBoxSink g_boxSink = nullptr;

}  // namespace

void CLogBase::InitImpl(const wchar_t*, HINSTANCE, HINSTANCE) {}

void CLogBase::TraceImpl(int severity, HINSTANCE instance, const char* source, int line, const wchar_t* format,
                         va_list arguments) {
    wchar_t text[512];
    std::vswprintf(text, std::size(text), format, arguments);
    if (g_traceSink != nullptr) g_traceSink(g_context, severity, instance, source, line, text);
}

void CLogBase::TraceImpl(int severity, HINSTANCE instance, const char* source, int line, unsigned int stringId,
                         va_list) {
    const std::wstring text = L"#" + std::to_wstring(stringId);
    if (g_traceSink != nullptr) g_traceSink(g_context, severity, instance, source, line, text.c_str());
}

void CLogBase::TraceImpl(int severity, HINSTANCE instance, const char* source, int line, Log::Message message,
                         va_list arguments) {
    const std::wstring text =
        L"!" + std::to_wstring(static_cast<unsigned int>(message)) + L" " + va_arg(arguments, const wchar_t*);
    if (g_traceSink != nullptr) g_traceSink(g_context, severity, instance, source, line, text.c_str());
}

extern "C" int QWMessageBoxExW(HWND parent, LPCWSTR text, LPCWSTR, UINT style, UINT_PTR, UINT_PTR, UINT_PTR,
                               HINSTANCE instance) {
    if (g_boxSink != nullptr) g_boxSink(g_context, parent, text, style, instance);
    return IDOK;
}

extern "C" void FakeSetSinks(void* context, FakeTraceSink traceSink, FakeBoxSink boxSink) {
    g_context = context;
    g_traceSink = traceSink;
    g_boxSink = boxSink;
}

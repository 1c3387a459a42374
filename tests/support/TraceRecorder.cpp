#include "support/TraceRecorder.h"

#include <cstdarg>
#include <cwchar>
#include <utility>

#include "trace/Trace.h"

namespace {

std::vector<test::TraceLine> g_lines;

void Record(int severity, const char* source, std::wstring text) {
    g_lines.push_back({severity, source, std::move(text)});
}

}  // namespace

namespace test {

std::vector<TraceLine> TakeTraces() {
    return std::exchange(g_lines, {});
}

std::vector<std::wstring> TakeTraceTexts() {
    std::vector<std::wstring> texts;
    for (auto& line : TakeTraces()) texts.push_back(std::move(line.text));
    return texts;
}

}  // namespace test

namespace trace {

void TraceText(int severity, const char* source, int, const wchar_t* format, ...) {
    wchar_t text[512];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vswprintf(text, std::size(text), format, arguments);
    va_end(arguments);
    Record(severity, source, length < 0 ? std::wstring(L"?") : std::wstring(text));
}

void TraceStringId(int severity, const char* source, int, uint32_t stringId) {
    Record(severity, source, L"#" + std::to_wstring(stringId));
}

void TraceMessage(int severity, const char* source, int, HostMessage message, ...) {
    Record(severity, source, L"!" + std::to_wstring(static_cast<uint32_t>(message)));
}

}  // namespace trace

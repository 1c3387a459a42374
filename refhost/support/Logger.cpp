#include "refhost/support/Logger.h"

#include <algorithm>
#include <utility>

#include "host/Support.h"
#include "refhost/support/TraceText.h"

namespace support {

namespace {

constexpr size_t kFailuresKept = 4;

std::wstring LoadFrom(HINSTANCE resources, unsigned int stringId) {
    // With a size of 0 the text itself is handed out, as it lies in the module.
    const wchar_t* text = nullptr;
    const int length = LoadStringW(resources, stringId, reinterpret_cast<wchar_t*>(&text), 0);
    return length <= 0 || text == nullptr ? std::wstring() : std::wstring(text, static_cast<size_t>(length));
}

std::wstring LogLine(const HostTrace& trace) {
    const SYSTEMTIME& time = trace.time;
    wchar_t start[96];
    const int length =
        swprintf(start, std::size(start), L"%04u-%02u-%02u %02u:%02u:%02u.%03u %d %.40hs(%d): ", unsigned{time.wYear},
                 unsigned{time.wMonth}, unsigned{time.wDay}, unsigned{time.wHour}, unsigned{time.wMinute},
                 unsigned{time.wSecond}, unsigned{time.wMilliseconds}, trace.severity, trace.source, trace.line);
    return (length < 0 ? std::wstring() : std::wstring(start)) + trace.text;
}

}  // namespace

Logger& Logger::Get() {
    // No static object: modules trace while a process that ends lets go of them. DllMain deletes it otherwise.
    static Logger& logger = *new Logger;
    return logger;
}

void Logger::AddComponent(const wchar_t* component, HINSTANCE instance, HINSTANCE resources) {
    const SharedLock lock(m_lock);
    std::erase_if(m_components, [&](const Component& known) { return known.instance == instance; });
    m_components.push_back({instance, resources, component == nullptr ? L"" : component});
}

Logger::Component Logger::Find(HINSTANCE instance) {
    const SharedLock lock(m_lock);
    const auto found = std::ranges::find(m_components, instance, &Component::instance);
    return found == m_components.end() ? Component{instance, instance, L""} : *found;
}

std::wstring Logger::LoadText(HINSTANCE instance, unsigned int stringId) {
    const Component component = Find(instance);
    std::wstring text = LoadFrom(component.resources, stringId);
    if (text.empty()) text = LoadFrom(instance, stringId);
    if (text.empty()) text = L"(text " + std::to_wstring(stringId) + L" of an unknown module)";
    return text;
}

void Logger::Write(int severity, HINSTANCE instance, const char* source, int line, std::wstring text,
                   unsigned int stringId) {
    if (m_writingThread == GetCurrentThreadId()) return;
    text = OneLine(std::move(text));
    const Component component = Find(instance);
    HostTrace trace{{},           severity, source == nullptr ? "" : source, line,
                    text.c_str(), stringId, component.name.c_str(),          instance};
    GetLocalTime(&trace.time);
    if (severity <= Log::kError) {
        const SharedLock lock(m_lock);
        if (m_failures.size() == kFailuresKept) m_failures.erase(m_failures.begin());
        m_failures.push_back({text, stringId, GetTickCount64()});
    }
    const std::wstring logLine = LogLine(trace);
    const SharedLock lock(m_outputLock);
    m_writingThread = GetCurrentThreadId();
    m_file.Append(logLine);
    if (m_observer != nullptr) m_observer(&trace, m_context);
    m_writingThread = 0;
}

bool Logger::SetFile(const wchar_t* path) {
    const SharedLock lock(m_outputLock);
    return m_file.Open(path);
}

void Logger::SetObserver(HostTraceObserver observer, void* context) {
    const SharedLock lock(m_outputLock);
    m_observer = observer;
    m_context = context;
}

std::vector<Failure> Logger::Failures() {
    const SharedLock lock(m_lock);
    return m_failures;
}

void Logger::ForgetFailures() {
    const SharedLock lock(m_lock);
    m_failures.clear();
}

}  // namespace support

// The exports of HostSupport.dll. Nothing here throws: a trace or box that cannot be made is left out.
#include "refhost/support/HostSupport.h"

#include <algorithm>
#include <cwchar>
#include <utility>

#include "host/Support.h"
#include "refhost/support/ApplicationName.h"
#include "refhost/support/Logger.h"
#include "refhost/support/TraceText.h"

using support::Logger;

namespace {

template <class Body>
void Quietly(Body&& body) noexcept {
    try {
        body();
    } catch (...) {
    }
}

struct Answerer {
    HostBoxAnswerer function;
    void* context;
};
SRWLOCK g_answererLock = SRWLOCK_INIT;
Answerer g_answerer{};

Answerer CurrentAnswerer() {
    const support::SharedLock lock(g_answererLock);
    return g_answerer;
}

constexpr unsigned int kObjectNotCreated = 0;

std::wstring MessageText(Log::Message message, va_list arguments) {
    if (static_cast<unsigned int>(message) != kObjectNotCreated) {
        return L"Message " + std::to_wstring(static_cast<unsigned int>(message)) + L" of the host.";
    }
    const wchar_t* classId = arguments == nullptr ? nullptr : va_arg(arguments, const wchar_t*);
    return std::wstring(L"The part ") + (classId == nullptr ? L"(unknown)" : classId) +
           L" of the program could not be started. Install the program again.";
}

// The last failure in the user's words. What was traced together with it says more about the cause.
std::wstring FailureText() {
    constexpr ULONGLONG kTogether = 3000;
    const std::vector<support::Failure> failures = Logger::Get().Failures();
    if (failures.empty()) {
        return std::wstring(L"Something went wrong, and no reason was given.\n\n") + support::UserTextOf(0).remedy;
    }
    const ULONGLONG last = failures.back().ticks;
    auto shown = std::find_if(failures.rbegin(), failures.rend(), [&](const auto& failure) {
        return failure.stringId != 0 && last - failure.ticks <= kTogether;
    });
    if (shown == failures.rend()) shown = failures.rbegin();
    const support::UserText user = support::UserTextOf(shown->stringId);
    std::wstring text = user.what == nullptr ? shown->text : user.what;
    for (const auto& failure : failures) {
        if (&failure == &*shown || failure.text == shown->text || last - failure.ticks > kTogether) continue;
        if (text.find(failure.text) == std::wstring::npos) text += L"\n\n" + failure.text;
    }
    return text + L"\n\n" + user.remedy;
}

}  // namespace

void CLogBase::InitImpl(const wchar_t* component, HINSTANCE instance, HINSTANCE resources) {
    Quietly([&] { Logger::Get().AddComponent(component, instance, resources); });
}

void CLogBase::TraceImpl(int severity, HINSTANCE instance, const char* source, int line, const wchar_t* format,
                         va_list arguments) {
    Quietly([&] { Logger::Get().Write(severity, instance, source, line, support::FormatText(format, arguments), 0); });
}

void CLogBase::TraceImpl(int severity, HINSTANCE instance, const char* source, int line, unsigned int stringId,
                         va_list arguments) {
    Quietly([&] {
        const std::wstring format = Logger::Get().LoadText(instance, stringId);
        Logger::Get().Write(severity, instance, source, line, support::FormatText(format.c_str(), arguments), stringId);
    });
}

void CLogBase::TraceImpl(int severity, HINSTANCE instance, const char* source, int line, Log::Message message,
                         va_list arguments) {
    Quietly([&] { Logger::Get().Write(severity, instance, source, line, MessageText(message, arguments), 0); });
}

extern "C" {

int QWMessageBoxExW(HWND parent, LPCWSTR text, LPCWSTR caption, UINT style, UINT_PTR, UINT_PTR, UINT_PTR, HINSTANCE) {
    int answer = 0;
    Quietly([&] {
        const std::wstring shown = text != nullptr && *text != L'\0' ? std::wstring(text) : FailureText();
        answer = HostSupportShowBox(parent, shown.c_str(), caption, style);
    });
    return answer;
}

BOOL HostSupportSetLogFile(const wchar_t* path) {
    BOOL done = FALSE;
    Quietly([&] { done = Logger::Get().SetFile(path); });
    return done;
}

void HostSupportSetTraceObserver(HostTraceObserver observer, void* context) {
    Quietly([&] { Logger::Get().SetObserver(observer, context); });
}

size_t HostSupportLastFailure(wchar_t* text, size_t size) {
    size_t length = 0;
    Quietly([&] {
        const auto failures = Logger::Get().Failures();
        const std::wstring last = failures.empty() ? std::wstring() : failures.back().text;
        if (text != nullptr && size > 0) {
            const size_t copied = last.copy(text, size - 1);
            text[copied] = L'\0';
        }
        length = last.size();
    });
    return length;
}

void HostSupportForgetFailures(void) {
    Quietly([] { Logger::Get().ForgetFailures(); });
}

void HostSupportSetBoxAnswerer(HostBoxAnswerer answerer, void* context) {
    const support::SharedLock lock(g_answererLock);
    g_answerer = {answerer, context};
}

int HostSupportShowBox(HWND parent, const wchar_t* text, const wchar_t* caption, UINT style) {
    const HostBox box{parent, text == nullptr ? L"" : text, caption == nullptr ? support::kApplicationName : caption,
                      style};
    const Answerer answerer = CurrentAnswerer();
    if (answerer.function != nullptr) {
        const int answer = answerer.function(&box, answerer.context);
        if (answer != 0) return answer;
    }
    const HWND owner = IsWindow(parent) ? parent : nullptr;
    return MessageBoxW(owner, box.text, box.caption, owner == nullptr ? style | MB_TASKMODAL : style);
}

const wchar_t* HostSupportApplicationName(void) {
    return support::kApplicationName;
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
    // Every module that traces is gone by then; at the end of the process it may be there still.
    if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) delete &Logger::Get();
    return TRUE;
}
}

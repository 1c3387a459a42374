#include "win32/Resources.h"

namespace win32 {
namespace {

HINSTANCE g_module = nullptr;
HINSTANCE g_resources = nullptr;

bool HasString(HINSTANCE instance, UINT id) noexcept {
    const wchar_t* text = nullptr;
    return LoadStringW(instance, id, reinterpret_cast<LPWSTR>(&text), 0) > 0;
}

}  // namespace

void SetInstances(HINSTANCE module, HINSTANCE resources) noexcept {
    g_module = module;
    g_resources = resources;
}

HINSTANCE ModuleInstance() noexcept {
    return g_module == nullptr ? GetModuleHandleW(nullptr) : g_module;
}

HINSTANCE FindResourceInstance(const wchar_t* type, UINT id) noexcept {
    if (g_resources == nullptr) return ModuleInstance();
    const bool there = type == RT_STRING ? HasString(g_resources, id)
                                         : FindResourceW(g_resources, MAKEINTRESOURCEW(id), type) != nullptr;
    return there ? g_resources : ModuleInstance();
}

bool IsLocalised(UINT id) noexcept {
    return g_resources != nullptr && HasString(g_resources, id);
}

std::wstring LoadText(UINT id) {
    const wchar_t* text = nullptr;
    const int length = LoadStringW(FindResourceInstance(RT_STRING, id), id, reinterpret_cast<LPWSTR>(&text), 0);
    return length > 0 ? std::wstring(text, static_cast<size_t>(length)) : std::wstring();
}

std::wstring FormatText(UINT id, std::initializer_list<std::wstring> arguments) {
    std::wstring result;
    const std::wstring format = LoadText(id);
    for (size_t i = 0; i < format.size(); ++i) {
        const size_t argument = format[i] == L'%' && i + 1 < format.size() ? size_t{format[i + 1]} - L'1' : SIZE_MAX;
        if (argument < arguments.size()) {
            result += arguments.begin()[argument];
            ++i;
        } else {
            result += format[i];
        }
    }
    return result;
}

ResourceScope::ResourceScope() noexcept {
    ACTCTXW context = {};
    context.cbSize = sizeof(context);
    context.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    context.hModule = ModuleInstance();
    context.lpResourceName = MAKEINTRESOURCEW(2);
    m_context = CreateActCtxW(&context);
    // Without a context of its own the module's windows look like the host's.
    if (m_context == INVALID_HANDLE_VALUE) return;
    if (!ActivateActCtx(m_context, &m_cookie)) {
        ReleaseActCtx(m_context);
        m_context = INVALID_HANDLE_VALUE;
    }
}

ResourceScope::~ResourceScope() {
    if (m_context == INVALID_HANDLE_VALUE) return;
    DeactivateActCtx(0, m_cookie);
    ReleaseActCtx(m_context);
}

}  // namespace win32

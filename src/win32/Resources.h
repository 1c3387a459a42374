#pragma once
// Where dialogs, menus and texts come from.

#include <windows.h>

#include <initializer_list>
#include <string>

namespace win32 {

// Set once at start-up: the module's own instance, and the one that its localised resources are loaded from (the same
// one when there is no other). Until then both are those of the program.
void SetInstances(HINSTANCE module, HINSTANCE resources) noexcept;
HINSTANCE ModuleInstance() noexcept;

// The instance that has the resource: the localised one, or the module's own for what a translation lacks.
HINSTANCE FindResourceInstance(const wchar_t* type, UINT id) noexcept;

// Whether the localised resources have the string, for components that look nowhere else.
bool IsLocalised(UINT id) noexcept;

// A string of the module; empty when there is none.
std::wstring LoadText(UINT id);
// The same with %1, %2, ... replaced.
std::wstring FormatText(UINT id, std::initializer_list<std::wstring> arguments);

// While it lives, windows are created with the module's own manifest (resource 2 of the module: visual styles),
// whatever the host program has. One around every dialog and every control made by the module.
class ResourceScope {
public:
    ResourceScope() noexcept;
    ~ResourceScope();
    ResourceScope(const ResourceScope&) = delete;
    ResourceScope& operator=(const ResourceScope&) = delete;

private:
    HANDLE m_context = INVALID_HANDLE_VALUE;
    ULONG_PTR m_cookie = 0;
};

}  // namespace win32

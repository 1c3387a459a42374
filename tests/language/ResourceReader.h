#pragma once
// The resources of a module that is mapped as data: dialog templates, menus and strings.

#include <windows.h>

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace test {

struct TemplateItem {
    DWORD style, extendedStyle, helpId;
    uint32_t id;
    std::wstring className, title;
};

struct DialogTemplate {
    DWORD style, extendedStyle;
    std::wstring menu, className, caption, font;
    WORD pointSize;
    std::vector<TemplateItem> items;
};

struct MenuEntry {
    std::wstring text;
    UINT command;  // of a submenu its number of entries
    int depth;
    bool submenu;
};

class ResourceReader {
public:
    explicit ResourceReader(const wchar_t* module);
    ~ResourceReader() { FreeLibrary(m_module); }
    ResourceReader(const ResourceReader&) = delete;
    ResourceReader& operator=(const ResourceReader&) = delete;

    // "5/27784" for each: type and identifier.
    std::set<std::wstring> All() const;
    std::vector<WORD> IdsOf(const wchar_t* type) const;
    const void* Data(const wchar_t* type, WORD id, size_t* size = nullptr) const;
    DialogTemplate Dialog(WORD id) const;
    std::vector<MenuEntry> Menu(WORD id) const;
    std::map<unsigned, std::wstring> Strings() const;

private:
    HMODULE m_module;
};

}  // namespace test

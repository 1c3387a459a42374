#include "language/ResourceReader.h"

#include <cstring>
#include <stdexcept>

namespace test {

namespace {

std::wstring NameOf(const wchar_t* name) {
    return IS_INTRESOURCE(name) ? std::to_wstring(reinterpret_cast<ULONG_PTR>(name)) : name;
}

// Reads a template from its start; reading beyond its end throws.
class Cursor {
public:
    Cursor(const void* data, size_t size) : m_data(static_cast<const BYTE*>(data)), m_size(size) {}

    template <class Value>
    Value Read() {
        Value value;
        if (m_size - m_place < sizeof value) throw std::out_of_range("template");
        std::memcpy(&value, m_data + m_place, sizeof value);
        m_place += sizeof value;
        return value;
    }
    std::wstring Text() {
        std::wstring text;
        while (const auto character = Read<wchar_t>()) text += character;
        return text;
    }
    // A text, nothing, or "#128" for a number.
    std::wstring TextOrNumber() {
        const size_t start = m_place;
        if (Read<WORD>() == 0xFFFF) return L"#" + std::to_wstring(Read<WORD>());
        m_place = start;
        return Text();
    }
    void Align() { m_place = (m_place + 3) & ~size_t{3}; }
    void Skip(size_t bytes) { m_place += bytes; }

private:
    const BYTE* m_data;
    size_t m_size, m_place = 0;
};

void AddEntries(HMENU menu, int depth, std::vector<MenuEntry>& entries) {
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        wchar_t text[256] = {};
        GetMenuStringW(menu, static_cast<UINT>(i), text, 256, MF_BYPOSITION);
        const HMENU below = GetSubMenu(menu, i);
        const UINT command = below != nullptr ? static_cast<UINT>(GetMenuItemCount(below)) : GetMenuItemID(menu, i);
        entries.push_back({text, command, depth, below != nullptr});
        if (below != nullptr) AddEntries(below, depth + 1, entries);
    }
}

}  // namespace

ResourceReader::ResourceReader(const wchar_t* module)
    : m_module(LoadLibraryExW(module, nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE)) {
    if (m_module == nullptr) throw std::runtime_error("the module cannot be loaded");
}

std::set<std::wstring> ResourceReader::All() const {
    std::set<std::wstring> all;
    EnumResourceTypesW(
        m_module,
        [](HMODULE module, wchar_t* type, LONG_PTR out) -> BOOL {
            return EnumResourceNamesW(
                module, type,
                [](HMODULE, const wchar_t* of, wchar_t* name, LONG_PTR names) -> BOOL {
                    reinterpret_cast<std::set<std::wstring>*>(names)->insert(NameOf(of) + L"/" + NameOf(name));
                    return TRUE;
                },
                out);
        },
        reinterpret_cast<LONG_PTR>(&all));
    return all;
}

std::vector<WORD> ResourceReader::IdsOf(const wchar_t* type) const {
    std::vector<WORD> ids;
    EnumResourceNamesW(
        m_module, type,
        [](HMODULE, const wchar_t*, wchar_t* name, LONG_PTR out) -> BOOL {
            reinterpret_cast<std::vector<WORD>*>(out)->push_back(static_cast<WORD>(reinterpret_cast<ULONG_PTR>(name)));
            return TRUE;
        },
        reinterpret_cast<LONG_PTR>(&ids));
    return ids;
}

const void* ResourceReader::Data(const wchar_t* type, WORD id, size_t* size) const {
    const HRSRC found = FindResourceW(m_module, MAKEINTRESOURCEW(id), type);
    if (found == nullptr) throw std::runtime_error("no such resource");
    if (size != nullptr) *size = SizeofResource(m_module, found);
    return LockResource(LoadResource(m_module, found));
}

DialogTemplate ResourceReader::Dialog(WORD id) const {
    size_t size = 0;
    const void* data = Data(RT_DIALOG, id, &size);
    Cursor cursor(data, size);
    if (cursor.Read<DWORD>() != 0xFFFF0001) throw std::runtime_error("not an extended dialog template");
    cursor.Skip(4);  // help identifier
    DialogTemplate dialog = {};
    dialog.extendedStyle = cursor.Read<DWORD>();
    dialog.style = cursor.Read<DWORD>();
    const WORD count = cursor.Read<WORD>();
    cursor.Skip(8);  // place
    dialog.menu = cursor.TextOrNumber();
    dialog.className = cursor.TextOrNumber();
    dialog.caption = cursor.Text();
    dialog.pointSize = cursor.Read<WORD>();
    cursor.Skip(4);  // weight, italic, character set
    dialog.font = cursor.Text();
    for (WORD i = 0; i < count; ++i) {
        cursor.Align();
        TemplateItem item = {};
        item.helpId = cursor.Read<DWORD>();
        item.extendedStyle = cursor.Read<DWORD>();
        item.style = cursor.Read<DWORD>();
        cursor.Skip(8);
        item.id = cursor.Read<uint32_t>();
        item.className = cursor.TextOrNumber();
        item.title = cursor.TextOrNumber();
        cursor.Skip(cursor.Read<WORD>());
        dialog.items.push_back(std::move(item));
    }
    return dialog;
}

std::vector<MenuEntry> ResourceReader::Menu(WORD id) const {
    std::vector<MenuEntry> entries;
    const HMENU menu = LoadMenuIndirectW(Data(RT_MENU, id));
    AddEntries(menu, 0, entries);
    DestroyMenu(menu);
    return entries;
}

std::map<unsigned, std::wstring> ResourceReader::Strings() const {
    std::map<unsigned, std::wstring> strings;
    for (const WORD block : IdsOf(RT_STRING)) {
        size_t size = 0;
        const void* data = Data(RT_STRING, block, &size);
        Cursor cursor(data, size);
        for (unsigned i = 0; i < 16; ++i) {
            std::wstring text(cursor.Read<WORD>(), L'\0');
            for (wchar_t& character : text) character = cursor.Read<wchar_t>();
            if (!text.empty()) strings[(block - 1u) * 16 + i] = std::move(text);
        }
    }
    return strings;
}

}  // namespace test

#include "refhost/language/LanguageName.h"

#include <algorithm>

namespace language {

bool IsLanguageName(const std::wstring& name) {
    constexpr size_t kLongest = 84;
    const auto allowed = [](wchar_t unit) {
        return (unit >= L'a' && unit <= L'z') || (unit >= L'A' && unit <= L'Z') || (unit >= L'0' && unit <= L'9') ||
               unit == L'-';
    };
    return !name.empty() && name.size() <= kLongest && name.front() != L'-' && name.back() != L'-' &&
           std::ranges::all_of(name, allowed);
}

std::vector<std::wstring> ModulePaths(const std::wstring& module, const std::wstring& language) {
    std::vector<std::wstring> paths;
    if (!IsLanguageName(language)) return paths;
    const size_t folder = module.find_last_of(L"\\/");
    const size_t dot = module.find_last_of(L'.');
    const bool hasExtension = dot != std::wstring::npos && (folder == std::wstring::npos || dot > folder);
    const std::wstring stem = module.substr(0, hasExtension ? dot : module.size());
    std::wstring name = language;
    for (;;) {
        paths.push_back(stem + L"." + name + L".dll");
        const size_t hyphen = name.find_last_of(L'-');
        if (hyphen == std::wstring::npos) return paths;
        name.resize(hyphen);
    }
}

}  // namespace language

#include <vector>

#include "refhost/files/PartFile.h"

namespace files {

namespace {

bool IsNumber(const std::wstring& text) {
    return !text.empty() && text.find_first_not_of(L"0123456789") == std::wstring::npos;
}

// PREFIX, process, number: a user's own file that is only called alike stays.
bool IsPartOfThisMachine(const std::wstring& name) {
    const std::wstring& prefix = PartPrefix();
    const std::wstring extension = kPartExtension;
    if (name.size() <= prefix.size() + extension.size() || !name.starts_with(prefix) || !name.ends_with(extension)) {
        return false;
    }
    const std::wstring numbers = name.substr(prefix.size(), name.size() - prefix.size() - extension.size());
    const size_t dash = numbers.find(L'-');
    return dash != std::wstring::npos && IsNumber(numbers.substr(0, dash)) && IsNumber(numbers.substr(dash + 1));
}

void RemoveIfLeft(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;  // its writer holds it
    if (LockPart(file)) {
        FILE_DISPOSITION_INFO disposition{TRUE};
        SetFileInformationByHandle(file, FileDispositionInfo, &disposition, sizeof disposition);
    }
    CloseHandle(file);
}

}  // namespace

void SweepParts(const std::wstring& folder) {
    const std::wstring start = folder.empty() || folder.ends_with(L'\\') ? folder : folder + L"\\";
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW((start + PartPrefix() + L"*" + kPartExtension).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return;
    std::vector<std::wstring> names;
    do {
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) names.emplace_back(found.cFileName);
    } while (FindNextFileW(search, &found));
    FindClose(search);
    for (const std::wstring& name : names) {
        if (IsPartOfThisMachine(name)) RemoveIfLeft(start + name);
    }
}

}  // namespace files

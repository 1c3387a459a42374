// Who may use the files of the store.
#include <aclapi.h>
#include <sddl.h>

#include <vector>

#include "refhost/settings/DiskFile.h"

namespace settings {

namespace {

LocalBlock AccessOf(const std::wstring& path) {
    DWORD size = 0;
    GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    if (size == 0) return nullptr;
    LocalBlock descriptor(LocalAlloc(LPTR, size));
    if (descriptor == nullptr ||
        !GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor.get(), size, &size)) {
        return nullptr;
    }
    return descriptor;
}

std::wstring CurrentUser() {
    HANDLE opened = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened)) return {};
    const FileHandle token(opened);
    DWORD size = 0;
    GetTokenInformation(token.get(), TokenUser, nullptr, 0, &size);
    std::vector<BYTE> buffer(size);
    if (size == 0 || !GetTokenInformation(token.get(), TokenUser, buffer.data(), size, &size)) return {};
    wchar_t* text = nullptr;
    if (!ConvertSidToStringSidW(reinterpret_cast<const TOKEN_USER*>(buffer.data())->User.Sid, &text)) return {};
    const LocalBlock owner(text);
    return text;
}

// Where access cannot be limited, the folder decides.
LocalBlock OwnerAlone() {
    const std::wstring user = CurrentUser();
    if (user.empty()) return nullptr;
    const std::wstring rights = L"D:P(A;;FA;;;" + user + L")(A;;FA;;;SY)(A;;FA;;;BA)";
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(rights.c_str(), SDDL_REVISION_1, &descriptor, nullptr)) {
        return nullptr;
    }
    return LocalBlock(descriptor);
}

}  // namespace

LocalBlock AccessLike(const std::wstring& model) {
    return GetFileAttributesW(model.c_str()) == INVALID_FILE_ATTRIBUTES ? OwnerAlone() : AccessOf(model);
}

}  // namespace settings

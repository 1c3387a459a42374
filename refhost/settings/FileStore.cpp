#include "refhost/settings/FileStore.h"

#include <utility>

#include "refhost/settings/Status.h"
#include "refhost/settings/StoreError.h"
#include "refhost/settings/TreeText.h"
#include "refhost/settings/WideText.h"

namespace settings {

namespace {

struct Step {
    HostSettingsStep function = nullptr;
    void* context = nullptr;
};
Step g_step;

DWORD RunStep(int id) {
    return g_step.function == nullptr ? ERROR_SUCCESS : g_step.function(id, g_step.context);
}

void PassStep(int id) {
    const DWORD error = RunStep(id);
    if (error != ERROR_SUCCESS) ThrowFileError(L"The settings could not be stored", error);
}

}  // namespace

void SetStep(HostSettingsStep step, void* context) noexcept {
    g_step = {step, context};
}

FileStore::FileStore(const wchar_t* path)
    : m_given(FullPath(path)), m_path(RealPath(m_given)), m_bytes(ReadFileBytes(m_path, kMaxFileSize)) {
    try {
        m_root = m_bytes ? ReadTree(*m_bytes) : std::make_shared<Node>();
    } catch (const DamageError& error) {
        throw StatusError(kSettingsDamaged, m_path + L": line " + std::to_wstring(error.Line()) + L": " +
                                                WideFrom(error.what()) +
                                                L". The file was left as it is. Mend it in a text editor, or put its "
                                                L"last version \"" +
                                                Beside(L".bak") + L"\" in its place.");
    }
    m_text = WriteTree(*m_root);
}

void FileStore::BeginReplace() {
    if (m_before == nullptr) {
        auto before = std::make_shared<Node>();
        before->SwapMembers(*m_root);
        m_before = std::move(before);
    } else {
        m_root->Clear();
    }
}

void FileStore::CancelReplace() noexcept {
    if (m_before == nullptr) return;
    m_root->SwapMembers(*m_before);
    m_before = nullptr;
}

void FileStore::Replace(Node& content) {
    if (m_before == nullptr) {
        const NodePtr merged = m_root->Clone();
        BeginReplace();
        m_root->SwapMembers(*merged);
    }
    try {
        m_root->Merge(content);
        Commit();
    } catch (...) {
        CancelReplace();
        throw;
    }
}

void FileStore::Commit() {
    const std::string text = WriteTree(*m_root);
    if (text != m_text) WriteFileOrKeep(text);
    m_before = nullptr;
}

void FileStore::WriteFileOrKeep(const std::string& text) {
    try {
        WriteOver(text);
    } catch (...) {
        const StatusError error = CurrentError();
        throw StatusError(error.Status(), error.Message() + L" " + KeepRefused(text));
    }
}

void FileStore::WriteOver(const std::string& text) {
    const LocalBlock access = AccessLike(m_path);
    const FileLock lock(Beside(L".lock"), access.get());
    PassStep(kHostStepLocked);
    if (ReadFileBytes(m_path, kMaxFileSize) != m_bytes) {
        throw StatusError(kSettingsChanged, L"\"" + m_path +
                                                L"\" was changed by another program since it was read, so it was not "
                                                L"overwritten. Open the settings again and repeat the change.");
    }
    CheckNames();
    PassStep(kHostStepCompared);
    const DWORD attributes = GetFileAttributesW(m_path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        ThrowFileError(L"\"" + m_path + L"\" is write-protected", ERROR_ACCESS_DENIED,
                       L"Take off the file's write protection and try again.");
    }
    TemporaryFile fresh(Beside(L".commit"), access.get());
    fresh.Write(text, [](int part) { PassStep(kHostStepHalfWritten + part); });
    if (m_bytes) {
        TemporaryFile backup(Beside(L".bak.commit"), access.get());
        backup.Write(*m_bytes);
        backup.MoveOver(Beside(L".bak"));
    } else {
        RequireFreeName(m_path);
    }
    PassStep(kHostStepBackedUp);
    // From the swap on nothing may fail any more.
    std::string bytes = text;
    std::string canonical = text;
    fresh.MoveOver(m_path);
    m_bytes = std::move(bytes);
    m_text = std::move(canonical);
    m_refused.clear();
    RunStep(kHostStepSwapped);
}

// The swap puts a new file under one name: any other name would go on showing the old content.
void FileStore::CheckNames() const {
    if (RealPath(m_given) != m_path && m_bytes) {
        throw StatusError(kSettingsChanged, L"\"" + m_given + L"\" leads to another file than \"" + m_path +
                                                L"\", which was read, so nothing was written. Open the settings "
                                                L"again and repeat the change.");
    }
    if (m_bytes && CountNames(m_path) > 1) {
        ThrowFileError(L"\"" + m_path + L"\" has other names (hard links), which would go on showing the old content",
                       ERROR_NOT_SUPPORTED, L"Put a copy of the file in its place and try again.");
    }
}

std::wstring FileStore::KeepRefused(const std::string& text) noexcept {
    try {
        if (m_refusedText != text || !IsRefusedKept()) WriteRefused(text);
        return L"The settings that could not be stored are kept in \"" + m_refused + L"\".";
    } catch (...) {
        return L"The settings that could not be stored could not be kept in a file either.";
    }
}

// Whether the file is there as this store wrote it: somebody may have made it their own.
bool FileStore::IsRefusedKept() const {
    return !m_refused.empty() && RealPath(m_refused) == m_refused &&
           ReadFileBytes(m_refused, kMaxFileSize) == m_refusedText;
}

// In place of the file that this store wrote before, if it is still as it was written; else under the next free name.
void FileStore::WriteRefused(const std::string& text) {
    constexpr int kMostKept = 999;
    const LocalBlock access = AccessLike(m_path);
    std::string kept = text;
    if (IsRefusedKept()) {
        TemporaryFile fresh(m_refused + L".commit", access.get());
        fresh.Write(text);
        fresh.MoveOver(m_refused);
        m_refusedText = std::move(kept);
        return;
    }
    for (int i = 1; i <= kMostKept; ++i) {
        std::wstring path = Beside(L".refused-") + std::to_wstring(i);
        try {
            WriteNewFile(path, text, access.get());
        } catch (const StatusError& error) {
            if (error.Status() != HRESULT_FROM_WIN32(ERROR_FILE_EXISTS) || i == kMostKept) throw;
            continue;
        }
        m_refused = std::move(path);
        m_refusedText = std::move(kept);
        return;
    }
}

}  // namespace settings

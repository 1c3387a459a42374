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

// Removes what an ended process left of a commit.
void RemoveRemains(const std::wstring& path) {
    if (DeleteFileW(path.c_str())) return;
    const DWORD error = GetLastError();
    if (error != ERROR_FILE_NOT_FOUND) {
        ThrowFileError(L"\"" + path + L"\" is in the way", error, L"Remove it and try again.");
    }
}

}  // namespace

void SetStep(HostSettingsStep step, void* context) noexcept {
    g_step = {step, context};
}

FileStore::FileStore(const wchar_t* path) : m_path(FullPath(path)), m_bytes(ReadFileBytes(m_path, kMaxFileSize)) {
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
    PassStep(kHostStepCompared);
    const DWORD attributes = GetFileAttributesW(m_path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        ThrowFileError(L"\"" + m_path + L"\" is write-protected", ERROR_ACCESS_DENIED,
                       L"Take off the file's write protection and try again.");
    }
    const std::wstring fresh = Beside(L".commit");
    const std::wstring backup = Beside(L".bak.commit");
    RemoveRemains(fresh);
    WriteNewFile(fresh, text, access.get(), [](int part) { PassStep(kHostStepHalfWritten + part); });
    try {
        if (m_bytes) {
            RemoveRemains(backup);
            WriteNewFile(backup, *m_bytes, access.get());
            MoveOver(backup, Beside(L".bak"));
        }
        PassStep(kHostStepBackedUp);
        // From the swap on nothing may fail any more.
        std::string bytes = text;
        std::string canonical = text;
        MoveOver(fresh, m_path);
        m_bytes = std::move(bytes);
        m_text = std::move(canonical);
    } catch (...) {
        DeleteFileW(backup.c_str());
        DeleteFileW(fresh.c_str());
        throw;
    }
    RunStep(kHostStepSwapped);
}

std::wstring FileStore::KeepRefused(const std::string& text) noexcept {
    constexpr int kMostKept = 999;
    try {
        const LocalBlock access = AccessLike(m_path);
        for (int i = 1; i <= kMostKept; ++i) {
            const std::wstring path = Beside(L".refused-") + std::to_wstring(i);
            try {
                WriteNewFile(path, text, access.get());
            } catch (const StatusError& error) {
                if (error.Status() == HRESULT_FROM_WIN32(ERROR_FILE_EXISTS)) continue;
                throw;
            }
            return L"The settings that could not be stored are kept in \"" + path + L"\".";
        }
    } catch (...) {
        // The message below is all that is left to say.
    }
    return L"The settings that could not be stored could not be kept in a file either.";
}

}  // namespace settings

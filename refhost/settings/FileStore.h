#pragma once
// A tree and the file it was read from.

#include <optional>
#include <string>

#include "refhost/settings/DiskFile.h"
#include "refhost/settings/HostSettings.h"
#include "refhost/settings/Tree.h"

namespace settings {

// What is called at each step of a commit of this process.
void SetStep(HostSettingsStep step, void* context) noexcept;

class FileStore {
public:
    // Reads the file; throws StatusError.
    explicit FileStore(const wchar_t* path);

    const NodePtr& Root() const { return m_root; }
    // Empties the tree, as the first half of a commit.
    void BeginReplace();
    // Ends a replacement that cannot be carried out: the tree is again what it was before BeginReplace.
    void CancelReplace() noexcept;
    // Adds `content`, which nobody else may hold, to the tree and commits. On failure the tree is again what it was
    // before BeginReplace, or before this call.
    void Replace(Node& content);
    void Commit();

private:
    void WriteFileOrKeep(const std::string& text);
    void WriteOver(const std::string& text);
    void CheckNames() const;
    bool IsRefusedKept() const;
    void WriteRefused(const std::string& text);
    // Keeps a tree that did not get into the file and says where.
    std::wstring KeepRefused(const std::string& text) noexcept;
    std::wstring Beside(const wchar_t* ending) const { return m_path + ending; }

    std::wstring m_given;                // as the file was named
    std::wstring m_path;                 // its own, where that is a link to it
    std::optional<std::string> m_bytes;  // of the file as read or written last; nothing: there was none
    std::string m_text;                  // the tree as read or written last
    std::wstring m_refused;              // the file of the last tree that did not get into this one, and that tree
    std::string m_refusedText;
    NodePtr m_root;
    NodePtr m_before;  // holds the members of the tree from BeginReplace to the commit
};

}  // namespace settings

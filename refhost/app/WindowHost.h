#pragma once
// What the commands with windows need beside a session: the COM classes behind the dialogs, an owner window, and the
// pages as a document stack.

#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/DocumentStack.h"
#include "refhost/app/Options.h"
#include "refhost/app/OutputFile.h"
#include "refhost/com/ClassRegistration.h"

namespace zonhost {

// The files that a command with windows reads.
FilesInUse FilesOfWindow(const CommonOptions& common, const WindowOptions& options);

class WindowHost {
public:
    // COM has to be initialised. Throws com::PartError for a missing part, CommandError (kUsage) for bad options.
    explicit WindowHost(const WindowOptions& options);
    ~WindowHost();
    WindowHost(const WindowHost&) = delete;
    WindowHost& operator=(const WindowHost&) = delete;

    // An invisible window of this thread, for dialogs to belong to.
    HWND Owner() const { return m_owner; }
    // The pages of the command line; never null, without documents when there are none. Throws CommandError.
    IQuire* Quire() const { return m_quire; }

private:
    void OpenPages(const std::vector<std::filesystem::path>& pages);

    const com::ClassRegistration m_documents;
    const com::ClassRegistration m_units;
    const com::ClassRegistration m_folium;
    HWND m_owner = nullptr;
    IQuire* m_quire = nullptr;
};

}  // namespace zonhost

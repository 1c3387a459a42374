#pragma once
// The module object: the one instance that holds what the module keeps between calls of the host.

#include <windows.h>

#include "host/DocumentStack.h"
#include "host/PageImage.h"
#include "store/AreaSetManager.h"
#include "store/ComSettingsNode.h"

_COM_SMARTPTR_TYPEDEF(IQuire, __uuidof(IQuire));
_COM_SMARTPTR_TYPEDEF(IPageImage, __uuidof(IPageImage));

// Where a page lies in the document stack: which ways on are closed.
enum NavigationFlag : uint32_t {
    NAV_NO_PREV_PAGE = 1,
    NAV_NO_NEXT_PAGE = 2,
    NAV_NO_PREV_DOC = 4,
    NAV_NO_NEXT_DOC = 8,
};

// Used on the host's window thread, without a lock.
class CZonwickApp {
public:
    CZonwickApp() = default;
    ~CZonwickApp();
    CZonwickApp(const CZonwickApp&) = delete;
    CZonwickApp& operator=(const CZonwickApp&) = delete;

    // Called when the DLL is attached, under the loader lock: logger, resources, application name.
    void InitInstance(HINSTANCE instance);
    // Called when the process ends with the DLL still loaded: the host's libraries may be gone already, so its objects
    // are left alone, and so is the manager.
    void Abandon() noexcept;

    // The module's settings nodes. The host's node is written by CommitToHost alone; the working node is a copy of it
    // in which the sets and all settings of the dialogs live.
    //
    // The working node with a reference for the caller; null when there is none.
    ISettingsNodePtr GetSettingsNode() const { return m_pWorkingNode; }
    // Keeps the host's node (null lets go of it), makes a fresh working node and fills it.
    void SetHostSettings(ISettingsNode* node);
    // Makes the working node a copy of the host's and loads the sets anew; nothing when either is missing. When a host
    // call fails it is thrown, the working node is dropped and the sets are forgotten: what is half filled is never
    // used.
    void RefreshFromHost();
    // Makes the host's node a copy of the working node; nothing when either is missing. A failing host call is thrown.
    void CommitToHost();

    // The document stack whose pages the dialogs show, null when there is none; the module adds its own reference.
    void SetQuire(IQuire* quire);
    IQuirePtr GetQuire() const { return m_pQuire; }
    // Where page display starts; negative values become 0.
    void SetStartPosition(int32_t document, int32_t page);
    int32_t GetDocumentCount();
    // The page at a position, as an image of its own. A position outside the stack is first replaced by the start
    // position; `flags` gets its four navigation bits. False when there is no such page or no image of it could be made
    // (the flags may have been set then). Throws _com_error for a missing stack, a failing host call, a bad byte array.
    bool GetPage(int32_t& document, int32_t& page, IPageImagePtr& image, uint32_t& flags);

    // Exports that have a dialog open.
    void DialogOpened() { ++m_openDialogs; }
    void DialogClosed() { --m_openDialogs; }
    bool IsDialogOpen() const { return m_openDialogs > 0; }

    const std::wstring& GetApplicationName() const { return m_applicationName; }

private:
    static bool CopyPageImage(IQuirePage* page, IPageImage* image);
    // A new object of a host class with one reference for the caller; null, and its class traced, when there is none.
    static void* CreateHostObject(REFCLSID classId, REFIID iid);

    ISettingsNodePtr m_pWorkingNode;
    ISettingsNodePtr m_pHostNode;
    IQuirePtr m_pQuire;
    int32_t m_nDefaultDoc = 0;
    int32_t m_nDefaultPage = 0;

    int m_openDialogs = 0;
    std::wstring m_applicationName;
};

// The module object and the manager of all area sets. The manager is the older and lives longer.
CZonwickApp& GetApp();
CAreaSetManager* GetAreaSetManager();

// The colours of areas in dialogs to be opened.
struct AreaColors {
    COLORREF first = 0x00FFFFFF;
    COLORREF second = 0x00FFFFFF;
    COLORREF third = 0x00000000;
};
AreaColors& GetAreaColors();

#pragma once
// The one collection of all area sets: identifiers, look-up, changes and persistence, serialised among all copies of
// the module in the Windows session by the named mutex "SASyncMutex".

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "model/AreaSet.h"
#include "store/SettingsNode.h"
#include "store/SystemMutex.h"

// Every operation holds the lock for its whole length. It guards the collection, not a set's content: that is for the
// host's window thread alone. Set pointers stay the manager's and are valid until the set is removed or the sets are
// loaded anew.
class CAreaSetManager {
public:
    // Gives the working settings node, null when there is none.
    using NodeSource = SettingsNodePtr (*)();

    explicit CAreaSetManager(NodeSource nodeSource, const wchar_t* mutexName = L"SASyncMutex");
    ~CAreaSetManager();
    CAreaSetManager(const CAreaSetManager&) = delete;
    CAreaSetManager& operator=(const CAreaSetManager&) = delete;

    // Adds a set with the identifier, or with the next free one for 0. Its position, or -1 when the identifier is in
    // use or no set could be made.
    int32_t AddSet(const std::wstring& name, uint32_t dwID);
    int32_t AppendSet(std::unique_ptr<CAreaSet> set);
    // A copy of an existing set under a fresh identifier; 0 when there is no such set or no copy could be made.
    uint32_t CopySet(uint32_t dwID);
    CAreaSet* GetAreaSet(int32_t iIndex);
    // pIndex receives the position, -1 when there is no such set.
    CAreaSet* GetAreaSet(uint32_t dwID, int32_t* pIndex = nullptr);
    int32_t GetCount();
    bool RemoveSet(uint32_t dwID);
    void RemoveAllSets();
    void SetAreaSetName(uint32_t dwID, const std::wstring& name);
    // Copies a detached set over the managed one with the same identifier.
    bool UpdateSet(const CAreaSet& set);

    // Reads all sets once per load cycle. False only from the call whose reading failed; what was read until then
    // stays, but no set of which a part was lost (SettingsLost, or no memory).
    bool LoadSettings();
    bool ReloadSettings();
    // Writes all sets in place of those in the node, or one. A failure in the node is traced and still gives true.
    bool StoreSettings();
    bool StoreAreaSet(CAreaSet* set);
    bool StoreAreaSet(uint32_t dwID);

    // Drops the sets and the fact that they were loaded: the next load starts afresh.
    void Forget();
    // Whether the last load went through all sub-nodes to its end (values that a set lacks have their defaults), and
    // the last store wrote everything. After a load that stopped, a store would lose the sets behind that place.
    bool WasLastLoadComplete() const { return m_bLoadComplete; }
    bool WasLastStoreComplete() const { return m_bStoreComplete; }

    // While one lives, the sets belong to whoever made it: a call that comes from within a host's call finds them as
    // they are, a load does nothing and gives true, and what would change or store them is refused with a trace.
    class Exclusive {
    public:
        explicit Exclusive(CAreaSetManager& manager) : m_manager(manager) { ++m_manager.m_exclusive; }
        ~Exclusive() { --m_manager.m_exclusive; }
        Exclusive(const Exclusive&) = delete;
        Exclusive& operator=(const Exclusive&) = delete;

    private:
        CAreaSetManager& m_manager;
    };
    // Whether the sets are being loaded or stored, or the settings copied.
    bool IsExclusive() const { return m_exclusive > 0; }

    // Holds the lock over several operations.
    [[nodiscard]] CSystemLock Lock() { return CSystemLock(m_mutex); }

private:
    SettingsNodePtr GetRoot() const;
    bool Load();
    void LoadSets();
    void LoadSet(SettingsNode& root, const std::wstring& key);
    void TakeSet(std::unique_ptr<CAreaSet> set);
    bool WriteSet(const CAreaSet& set);
    CAreaSet* FindSet(uint32_t dwID, int32_t* pIndex);
    void TakeOut(int32_t position);
    void Clear();
    bool MayChange() const;

    uint32_t m_dwLastID = 0;
    std::vector<std::unique_ptr<CAreaSet>> m_arrSets;
    std::atomic<bool> m_bLoaded = false;
    CSystemMutex m_mutex;

    std::unordered_map<uint32_t, int32_t> m_positions;  // first position of each identifier
    NodeSource m_nodeSource;
    std::atomic<int> m_exclusive = 0;
    std::atomic<bool> m_bLoadComplete = false;
    std::atomic<bool> m_bStoreComplete = false;
};

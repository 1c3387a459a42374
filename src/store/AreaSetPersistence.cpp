// How the area sets stand in the settings node: one sub-node per set, named after its identifier.
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "store/AreaSetManager.h"
#include "store/SettingsKeys.h"
#include "trace/Trace.h"

namespace {

constexpr const char* kSource = "AreaSetManager";

// The order in which the four coordinates are visited, reading and writing.
struct Coordinate {
    const wchar_t* key;
    int32_t PageRect::*member;
};
constexpr Coordinate kCoordinates[] = {{kKeyBottom, &PageRect::bottom},
                                       {kKeyLeft, &PageRect::left},
                                       {kKeyRight, &PageRect::right},
                                       {kKeyTop, &PageRect::top}};

// An unreadable rectangle is empty as a whole. When it was lost nothing was found out about it: it is not taken for
// empty and stored as such later.
PageRect ReadRect(SettingsNode& node, const std::wstring& name) {
    try {
        PageRect rect;
        const auto sub = node.GetSubNode(name);
        for (const auto& [key, member] : kCoordinates) rect.*member = static_cast<int32_t>(sub->GetInt64(key));
        return rect;
    } catch (const SettingsLost&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return {};
    }
}

// False when it was not written as a whole.
bool WriteRect(SettingsNode& node, const std::wstring& name, const PageRect& rect) {
    try {
        const auto sub = node.GetSubNode(name);
        for (const auto& [key, member] : kCoordinates) sub->SetInt64(key, rect.*member);
        return true;
    } catch (...) {
        return false;
    }
}

// Values of a set that cannot be read are left as they are.
template <class Read>
void ReadOptional(Read read) {
    try {
        read();
    } catch (const SettingsLost&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return;
    }
}

void ReadSet(SettingsNode& node, CAreaSet& set) {
    ReadOptional([&] { set.SetName(node.GetString(kKeyName)); });
    ReadOptional([&] { set.SetFlags(static_cast<uint32_t>(node.GetInt64(kKeyFlags))); });
    set.SetDisplayRect(ReadRect(node, kKeyDisplayRect));

    const auto rects = node.GetSubNode(kKeyRect);
    const SubNodeNames names = rects->GetSubNodeNames();
    for (int64_t i = 0; i < names.Count(); ++i) set.AddRect(ReadRect(*rects, names.At(i)));
}

}  // namespace

SettingsNodePtr CAreaSetManager::GetRoot() const {
    SettingsNodePtr root = m_nodeSource();
    if (root == nullptr) throw SettingsError();
    return root;
}

bool CAreaSetManager::LoadSettings() {
    if (m_bLoaded) return true;
    const CSystemLock lock(m_mutex);
    if (m_bLoaded || IsExclusive()) return true;  // another thread was faster, or this call comes from within the load
    return Load();
}

// Under the lock.
bool CAreaSetManager::Load() {
    const Exclusive exclusive(*this);
    Clear();
    m_bLoadComplete = false;
    try {
        LoadSets();
        m_bLoadComplete = true;
    } catch (...) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__, L"CAreaSetManager::LoadSettings failed");
    }
    m_bLoaded = true;
    return m_bLoadComplete;
}

void CAreaSetManager::LoadSets() {
    const auto root = GetRoot();
    const SubNodeNames keys = root->GetSubNodeNames();
    for (int64_t i = 0; i < keys.Count(); ++i) {
        const std::wstring& key = keys.At(i);
        if (ParseSetKey(key) != 0) {
            LoadSet(*root, key);
        } else {
            trace::TraceText(trace::kDiagnostic, kSource, __LINE__,
                             L"CAreaSetManager::LoadSettings: sub-node %d is not named after an identifier, skipped.",
                             static_cast<int>(i));
        }
    }
}

// The set is read apart from the others, because calls from within the host's find only those that were read whole. A
// failure keeps what was read of it, unless the host or the module could not tell what stands there: then a part of the
// set would mask, or be stored, as if it were all.
void CAreaSetManager::LoadSet(SettingsNode& root, const std::wstring& key) {
    const auto node = root.GetSubNode(key);
    const uint32_t dwID = ParseSetKey(key);
    int32_t position = -1;
    const CAreaSet* former = GetAreaSet(dwID, &position);
    if (dwID > m_dwLastID) m_dwLastID = dwID;
    auto set = std::make_unique<CAreaSet>(std::wstring(), dwID);
    try {
        if (former != nullptr) set->CopyFrom(*former);
        ReadSet(*node, *set);
    } catch (const SettingsLost&) {
        if (position >= 0) TakeOut(position);
        throw;
    } catch (const std::bad_alloc&) {
        if (position >= 0) TakeOut(position);
        throw;
    } catch (...) {
        TakeSet(std::move(set));
        throw;
    }
    TakeSet(std::move(set));
}

// In place of the one with its identifier, or behind all others.
void CAreaSetManager::TakeSet(std::unique_ptr<CAreaSet> set) {
    int32_t position = -1;
    if (FindSet(set->GetID(), &position) != nullptr) {
        m_arrSets[static_cast<size_t>(position)] = std::move(set);
    } else {
        AppendSet(std::move(set));
    }
}

bool CAreaSetManager::ReloadSettings() {
    const CSystemLock lock(m_mutex);
    m_bLoaded = false;
    m_dwLastID = 0;
    return Load();
}

bool CAreaSetManager::StoreAreaSet(CAreaSet* set) {
    if (set == nullptr) return false;
    const CSystemLock lock(m_mutex);
    if (!MayChange()) return false;
    const Exclusive exclusive(*this);
    m_bStoreComplete = WriteSet(*set);
    return true;
}

bool CAreaSetManager::StoreAreaSet(uint32_t dwID) {
    const CSystemLock lock(m_mutex);
    return StoreAreaSet(GetAreaSet(dwID));
}

// False when it was not written as a whole.
bool CAreaSetManager::WriteSet(const CAreaSet& set) {
    try {
        auto root = GetRoot();
        const auto node = root->GetSubNode(MakeSetKey(set.GetID()));
        root.reset();
        node->SetString(kKeyName, set.GetName());
        node->SetInt64(kKeyFlags, set.GetFlags());
        bool complete = WriteRect(*node, kKeyDisplayRect, set.GetDisplayRect());

        const auto rects = node->GetSubNode(kKeyRect);
        const SubNodeNames old = rects->GetSubNodeNames();
        for (int64_t i = 0; i < old.Count(); ++i) rects->DeleteSubNode(old.At(i));
        for (int32_t i = 0; i < set.GetRectCount(); ++i) {
            complete &= WriteRect(*rects, std::to_wstring(i), set.GetRect(i)->GetRectangle());
        }
        return complete;
    } catch (...) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__, L"CAreaSetManager::StoreAreaSet failed");
        return false;
    }
}

bool CAreaSetManager::StoreSettings() {
    const CSystemLock lock(m_mutex);
    if (!MayChange()) return false;
    const Exclusive exclusive(*this);
    m_bStoreComplete = false;
    try {
        const auto root = GetRoot();
        const SubNodeNames keys = root->GetSubNodeNames();
        for (int64_t i = 0; i < keys.Count(); ++i) root->DeleteSubNode(keys.At(i));
        bool complete = true;
        for (const auto& set : m_arrSets) complete &= WriteSet(*set);
        m_bStoreComplete = complete;
    } catch (...) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__, L"CAreaSetManager::StoreSettings failed");
    }
    return true;
}

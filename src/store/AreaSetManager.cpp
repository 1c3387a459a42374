#include "store/AreaSetManager.h"

#include <limits>
#include <new>
#include <utility>

#include "trace/Trace.h"

namespace {

constexpr const char* kSource = "AreaSetManager";

std::unique_ptr<CAreaSet> MakeSet(const std::wstring& name, uint32_t dwID) {
    try {
        return std::make_unique<CAreaSet>(name, dwID);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace

CAreaSetManager::CAreaSetManager(NodeSource nodeSource, const wchar_t* mutexName)
    : m_mutex(mutexName), m_nodeSource(nodeSource) {}

CAreaSetManager::~CAreaSetManager() {
    const CSystemLock lock(m_mutex);
    Clear();
}

// Under the lock. The sets are in use only by a call that this one comes from.
bool CAreaSetManager::MayChange() const {
    if (!IsExclusive()) return true;
    trace::TraceText(trace::kDiagnostic, kSource, __LINE__,
                     L"CAreaSetManager: the sets are being loaded or stored, nothing was changed.");
    return false;
}

int32_t CAreaSetManager::AddSet(const std::wstring& name, uint32_t dwID) {
    const CSystemLock lock(m_mutex);
    if (!MayChange()) return -1;
    std::unique_ptr<CAreaSet> set;
    if (dwID != 0) {
        if (GetAreaSet(dwID) != nullptr) return -1;
        if (dwID > m_dwLastID) m_dwLastID = dwID;
        set = MakeSet(name, dwID);
    } else if (m_dwLastID != std::numeric_limits<uint32_t>::max()) {
        set = MakeSet(name, m_dwLastID + 1);
        if (set != nullptr) ++m_dwLastID;
    }
    if (set != nullptr) {
        try {
            return AppendSet(std::move(set));
        } catch (const std::bad_alloc&) {
            set = nullptr;
        }
    }
    trace::TraceText(trace::kDiagnostic, kSource, __LINE__, L"CAreaSetManager::AddSet: Out of memory.");
    return -1;
}

int32_t CAreaSetManager::AppendSet(std::unique_ptr<CAreaSet> set) {
    const CSystemLock lock(m_mutex);
    const auto position = static_cast<int32_t>(m_arrSets.size());
    const uint32_t dwID = set->GetID();
    m_arrSets.push_back(std::move(set));
    try {
        m_positions.emplace(dwID, position);
    } catch (...) {
        m_arrSets.pop_back();
        throw;
    }
    return position;
}

uint32_t CAreaSetManager::CopySet(uint32_t dwID) {
    const CSystemLock lock(m_mutex);
    if (!MayChange()) return 0;
    const CAreaSet* source = GetAreaSet(dwID);
    if (source == nullptr) return 0;
    const int32_t position = AddSet({}, 0);
    if (position < 0) return 0;
    CAreaSet* copy = GetAreaSet(position);
    try {
        copy->CopyFrom(*source);
    } catch (...) {
        RemoveSet(copy->GetID());
        throw;
    }
    return copy->GetID();
}

CAreaSet* CAreaSetManager::GetAreaSet(int32_t iIndex) {
    const CSystemLock lock(m_mutex);
    if (iIndex < 0 || static_cast<size_t>(iIndex) >= m_arrSets.size()) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__,
                         L"CAreaSetManager::GetAreaSet: iIndex out of array bounds.");
        return nullptr;
    }
    return m_arrSets[static_cast<size_t>(iIndex)].get();
}

CAreaSet* CAreaSetManager::GetAreaSet(uint32_t dwID, int32_t* pIndex) {
    const CSystemLock lock(m_mutex);
    CAreaSet* set = FindSet(dwID, pIndex);
    if (set == nullptr) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__,
                         L"CAreaSetManager::GetAreaSet: wrong dwID was specified.");
    }
    return set;
}

CAreaSet* CAreaSetManager::FindSet(uint32_t dwID, int32_t* pIndex) {
    const auto found = m_positions.find(dwID);
    const int32_t position = found != m_positions.end() ? found->second : -1;
    if (pIndex != nullptr) *pIndex = position;
    return position >= 0 ? m_arrSets[static_cast<size_t>(position)].get() : nullptr;
}

int32_t CAreaSetManager::GetCount() {
    const CSystemLock lock(m_mutex);
    return static_cast<int32_t>(m_arrSets.size());
}

bool CAreaSetManager::RemoveSet(uint32_t dwID) {
    const CSystemLock lock(m_mutex);
    if (!MayChange()) return false;
    int32_t position = -1;
    if (GetAreaSet(dwID, &position) == nullptr) {
        trace::TraceText(trace::kDiagnostic, kSource, __LINE__,
                         L"CAreaSetManager::RemoveSet: wrong dwID was specified.");
        return false;
    }
    TakeOut(position);
    return true;
}

void CAreaSetManager::TakeOut(int32_t position) {
    m_positions.erase(m_arrSets[static_cast<size_t>(position)]->GetID());
    m_arrSets.erase(m_arrSets.begin() + position);
    for (auto& entry : m_positions) {
        if (entry.second > position) --entry.second;
    }
}

void CAreaSetManager::RemoveAllSets() {
    const CSystemLock lock(m_mutex);
    if (MayChange()) Clear();
}

void CAreaSetManager::Clear() {
    m_arrSets.clear();
    m_positions.clear();
}

void CAreaSetManager::SetAreaSetName(uint32_t dwID, const std::wstring& name) {
    if (!MayChange()) return;
    if (CAreaSet* set = GetAreaSet(dwID)) set->SetName(name);
}

bool CAreaSetManager::UpdateSet(const CAreaSet& set) {
    const CSystemLock lock(m_mutex);
    if (!MayChange()) return false;
    CAreaSet* managed = GetAreaSet(set.GetID());
    if (managed == nullptr) return false;
    *managed = set;
    return true;
}

void CAreaSetManager::Forget() {
    const CSystemLock lock(m_mutex);
    Clear();
    m_dwLastID = 0;
    m_bLoadComplete = false;
    m_bLoaded = false;
}

#include "refhost/app/ImportPlan.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <set>
#include <unordered_map>

#include "refhost/app/Text.h"

namespace zonhost {

namespace {

// Keys are read back as signed numbers: above this, two identifiers would be taken for one.
constexpr uint32_t kLastId = 0x7FFFFFFE;

class IdSource {
public:
    explicit IdSource(const std::vector<StoredSet>& stored) {
        for (const StoredSet& set : stored) m_used.insert(set.id);
        const uint32_t highest = m_used.empty() ? 0 : *m_used.rbegin();
        m_next = highest < kLastId ? highest + 1 : 1;
    }

    uint32_t Take() {
        while (m_next <= kLastId && m_used.contains(m_next)) ++m_next;
        if (m_next > kLastId) throw CommandError(ExitCode::kNothingDone, "no identifier is left for a new area set");
        m_used.insert(m_next);
        return m_next++;
    }

private:
    std::set<uint32_t> m_used;
    uint32_t m_next = 1;
};

}  // namespace

uint32_t IdOfKey(const std::string& key) {
    const long long value = std::strtoll(key.c_str(), nullptr, 16);
    constexpr long long kLow = std::numeric_limits<int32_t>::min();
    constexpr long long kHigh = std::numeric_limits<int32_t>::max();
    return static_cast<uint32_t>(std::clamp(value, kLow, kHigh));
}

std::string KeyOfId(uint32_t id) {
    char key[16];
    std::snprintf(key, sizeof key, "0x%08x", id);
    return key;
}

std::vector<PlannedSet> PlanImport(std::vector<AreaSetRecord> sets, const std::vector<StoredSet>& stored,
                                   bool replace) {
    IdSource ids(stored);
    std::set<std::string> names;
    std::vector<std::string> twice;
    std::vector<std::string> there;
    std::unordered_map<std::string, const StoredSet*> first;
    for (const StoredSet& set : stored) first.emplace(set.name, &set);
    std::vector<PlannedSet> planned;
    for (AreaSetRecord& set : sets) {
        if (!names.insert(set.name).second) twice.push_back("\"" + set.name + "\"");
        const auto same = first.find(set.name);
        const bool replaces = same != first.end();
        if (replaces && !replace) there.push_back("\"" + set.name + "\"");
        set.id = replaces ? same->second->id : ids.Take();
        std::string key = replaces ? same->second->key : KeyOfId(set.id);
        planned.push_back({std::move(set), std::move(key), replaces});
    }
    if (!twice.empty()) {
        throw CommandError(ExitCode::kNothingDone, "named twice in what is to be imported: " + Join(twice, ", "));
    }
    if (!there.empty()) {
        throw CommandError(ExitCode::kNothingDone, "there already: " + Join(there, ", ") +
                                                       "; use --replace to put the imported sets in their place");
    }
    return planned;
}

}  // namespace zonhost

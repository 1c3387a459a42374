#include "refhost/app/SetReader.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <string_view>

#include "refhost/app/Console.h"
#include "refhost/app/StoredLayout.h"
#include "refhost/app/Text.h"

namespace zonhost {

namespace {

enum class Place { kSet, kAreas, kArea, kPage, kOther };

template <class Number>
bool Fits(LONGLONG value) {
    return value >= std::numeric_limits<Number>::min() && value <= std::numeric_limits<Number>::max();
}

// The form in which the library writes keys. A value under such a name was a set.
bool IsWrittenKey(const std::string& name) {
    const uint32_t id = IdOfKey(name);
    return id != 0 && FoldCase(name) == KeyOfId(id);
}

std::string Quoted(std::wstring_view name) {
    return "\"" + Printable(Utf8FromWide(name)) + "\"";
}

// Reads one rectangle node.
struct RectReader {
    Rect rect;
    std::array<bool, std::size(kCoordinates)> seen{};
    std::string problem;

    void Take(std::wstring_view name, const HostSettingsMember& member) {
        for (size_t i = 0; i < std::size(kCoordinates); ++i) {
            if (kCoordinates[i].name != name) continue;
            seen[i] = true;
            if (member.kind == kHostSettingsNumber && Fits<int32_t>(member.number)) {
                rect.*kCoordinates[i].coordinate = static_cast<int32_t>(member.number);
            } else if (problem.empty()) {
                problem = Utf8FromWide(name) + " is no whole number of 32 bits";
            }
        }
    }
    void End() {
        for (size_t i = 0; i < std::size(kCoordinates) && problem.empty(); ++i) {
            if (!seen[i]) problem = Utf8FromWide(kCoordinates[i].name) + " is missing";
        }
    }
};

class TreeReader {
public:
    void Visit(const HostSettingsMember& member) {
        const std::wstring_view name(member.name, member.nameLength);
        if (member.kind == kHostSettingsEnd) {
            Leave(name);
        } else if (m_places.empty()) {
            AtRoot(name, member);
        } else {
            Inside(name, member);
        }
    }

    std::vector<TreeSet> Take() {
        std::map<uint32_t, TreeSet*> nodes;
        for (TreeSet& set : m_sets) {
            const auto [first, fresh] = nodes.emplace(set.record.id, &set);
            if (fresh) continue;
            Blame(set, "has the identifier of \"" + Printable(first->second->key) + "\"");
            Blame(*first->second, "has the identifier of \"" + Printable(set.key) + "\"");
        }
        return std::move(m_sets);
    }

    std::string failure;

private:
    static void Blame(TreeSet& set, const std::string& problem) {
        if (set.problem.empty()) set.problem = problem;
    }
    void Blame(const std::string& problem) { Blame(m_sets.back(), problem); }

    void AtRoot(std::wstring_view name, const HostSettingsMember& member) {
        std::string key = Utf8FromWide(name);
        const uint32_t id = IdOfKey(key);
        const bool node = member.kind == kHostSettingsNode;
        if (id != 0 && (node || IsWrittenKey(key))) {
            m_sets.push_back({});
            m_sets.back().record.id = id;
            m_sets.back().key = std::move(key);
            if (!node) Blame("is no group of values");
            m_named = m_flagged = m_listed = m_paged = false;
        }
        if (node) m_places.push_back(id != 0 ? Place::kSet : Place::kOther);
    }

    void Inside(std::wstring_view name, const HostSettingsMember& member) {
        Place next = Place::kOther;
        const bool node = member.kind == kHostSettingsNode;
        switch (m_places.back()) {
            case Place::kSet:
                next = InSet(name, member);
                break;
            case Place::kAreas:
                if (node) {
                    next = Place::kArea;
                    m_rect = {};
                } else {
                    Blame("area " + Quoted(name) + " is no group of coordinates");
                }
                break;
            case Place::kArea:
            case Place::kPage:
                m_rect.Take(name, member);
                break;
            case Place::kOther:
                break;
        }
        if (node) m_places.push_back(next);
    }

    Place InSet(std::wstring_view name, const HostSettingsMember& member) {
        TreeSet& set = m_sets.back();
        const bool node = member.kind == kHostSettingsNode;
        if (name == L"Name") {
            m_named = true;
            if (member.kind == kHostSettingsText) {
                set.record.name = Utf8FromWide({member.text, member.textLength});
            } else {
                Blame("Name is no text");
            }
        } else if (name == L"Flags") {
            m_flagged = true;
            if (member.kind == kHostSettingsNumber && Fits<uint32_t>(member.number)) {
                set.record.flags = static_cast<uint32_t>(member.number);
            } else {
                Blame("Flags is no whole number from 0 to 4294967295");
            }
        } else if (name == L"Rect") {
            m_listed = true;
            m_highest = -1;
            if (node) return Place::kAreas;
            Blame("Rect is no group of areas");
        } else if (name == L"DisplayRect") {
            m_paged = true;
            m_rect = {};
            if (node) return Place::kPage;
            set.pageProblem = "DisplayRect is no group of coordinates";
        }
        return Place::kOther;
    }

    void Leave(std::wstring_view name) {
        const Place place = m_places.back();
        m_places.pop_back();
        if (place == Place::kArea || place == Place::kPage) m_rect.End();
        if (place == Place::kArea) EndArea(name);
        if (place == Place::kAreas) EndAreas();
        if (place == Place::kPage) EndPage();
        if (place == Place::kSet) EndSet();
    }

    void EndArea(std::wstring_view name) {
        if (!m_rect.problem.empty()) Blame("area " + Quoted(name) + ": " + m_rect.problem);
        // As the library serves it.
        Rect& rect = m_rect.rect;
        if (rect.left > rect.right) std::swap(rect.left, rect.right);
        if (rect.top > rect.bottom) std::swap(rect.top, rect.bottom);
        m_sets.back().record.areas.push_back(rect);
        const auto isDigit = [](wchar_t c) { return c >= L'0' && c <= L'9'; };
        if (!name.empty() && name.size() < 10 && std::all_of(name.begin(), name.end(), isDigit)) {
            m_highest = std::max(m_highest, static_cast<int64_t>(std::stol(std::wstring(name))));
        }
    }

    // The library numbers areas from 0 on: a gap is an area that was lost.
    void EndAreas() {
        const auto count = static_cast<int64_t>(m_sets.back().record.areas.size());
        if (m_highest < count) return;
        Blame("an area is missing: the last one is \"" + std::to_string(m_highest) + "\", and there are " +
              std::to_string(count));
    }

    void EndPage() {
        TreeSet& set = m_sets.back();
        if (m_rect.problem.empty()) {
            set.record.page = m_rect.rect;
        } else {
            set.pageProblem = "DisplayRect: " + m_rect.problem;
        }
    }

    void EndSet() {
        if (!m_named) Blame("Name is missing");
        if (!m_flagged) Blame("Flags is missing");
        if (!m_listed) Blame("Rect is missing");
        if (!m_paged) m_sets.back().pageProblem = "DisplayRect is missing";
    }

    std::vector<TreeSet> m_sets;
    std::vector<Place> m_places;  // of the open nodes below the root
    bool m_named = false, m_flagged = false, m_listed = false, m_paged = false;
    RectReader m_rect;
    int64_t m_highest = -1;
};

// No exception may pass the store.
BOOL CALLBACK VisitMember(const HostSettingsMember* member, void* context) {
    TreeReader& reader = *static_cast<TreeReader*>(context);
    try {
        reader.Visit(*member);
        return TRUE;
    } catch (const std::exception& error) {
        reader.failure = error.what();
        return FALSE;
    }
}

}  // namespace

std::string TreeSet::Title() const {
    return "area set " + Printable(key) + (record.name.empty() ? "" : " \"" + Printable(record.name) + "\"");
}

std::vector<TreeSet> ReadTreeSets(ISettingsNode* root, decltype(&HostSettingsWalk) walk) {
    TreeReader reader;
    const HRESULT status = walk(root, VisitMember, &reader);
    if (FAILED(status)) {
        throw CommandError(ExitCode::kSettings,
                           "the area sets cannot be read: " + SystemMessage(static_cast<DWORD>(status)));
    }
    if (!reader.failure.empty())
        throw CommandError(ExitCode::kSettings, "the area sets cannot be read: " + reader.failure);
    return reader.Take();
}

std::vector<StoredSet> StoredSets(const std::vector<TreeSet>& sets) {
    std::vector<StoredSet> stored;
    for (const TreeSet& set : sets) stored.push_back({set.record.id, set.record.name, set.key});
    return stored;
}

const TreeSet* FindByName(const std::vector<TreeSet>& sets, const std::string& name, const std::string& file) {
    const TreeSet* found = nullptr;
    for (const TreeSet& set : sets) {
        if (set.record.name != name) continue;
        if (!set.Whole()) throw CommandError(ExitCode::kSettings, TellBroken({set}, file));
        if (found == nullptr) found = &set;
    }
    return found;
}

std::string TellBroken(const std::vector<TreeSet>& sets, const std::string& file) {
    std::string lines;
    size_t count = 0;
    for (const TreeSet& set : sets) {
        if (set.Whole()) continue;
        ++count;
        lines += "\n  " + set.Title() + ": " + set.problem;
    }
    if (count == 0) return {};
    return std::to_string(count) + (count == 1 ? " area set of " : " area sets of ") + file +
           " cannot be read whole. Mend the file in a text editor, or put a good version such as " + file +
           ".bak in its place:" + lines;
}

std::string TellPages(const std::vector<TreeSet>& sets) {
    std::string lines;
    for (const TreeSet& set : sets) {
        if (!set.pageProblem.empty()) {
            lines += "zonhost: " + set.Title() + " has no page for its preview: " + set.pageProblem + "\n";
        }
    }
    return lines;
}

}  // namespace zonhost

// Area sets and the trees that they are read from.
#include <algorithm>
#include <functional>
#include <set>
#include <utility>
#include <vector>

#include "fuzz/Targets.h"
#include "refhost/app/ImportPlan.h"
#include "refhost/settings/StoreError.h"
#include "refhost/settings/TreeText.h"
#include "store/AreaSetManager.h"
#include "store/SettingsKeys.h"
#include "support/MemoryNode.h"

namespace fuzz {
namespace {

constexpr uint32_t kLastReadableId = 0x7FFFFFFF;

std::function<SettingsNodePtr()> g_makeRoot;  // the tree that the manager works on

CAreaSetManager& Manager() {
    static CAreaSetManager manager([] { return g_makeRoot(); }, L"ZonwickFuzzMutex");
    return manager;
}

std::u16string Units(const std::wstring& text) {
    return {text.begin(), text.end()};
}

// A node of the settings file's tree, as the host's classes show it to the module.
class TreeNode final : public SettingsNode {
public:
    explicit TreeNode(settings::NodePtr node) : m_node(std::move(node)) {}

    SubNodeNames GetSubNodeNames() override {
        std::vector<std::wstring> names;
        for (const settings::Member& member : m_node->Members()) {
            const std::u16string_view name = member.name;
            if (member.SubNode() != nullptr) names.emplace_back(name.begin(), name.end());
        }
        const auto count = static_cast<int64_t>(names.size());
        return {std::move(names), count};
    }
    SettingsNodePtr GetSubNode(const std::wstring& name) override {
        return std::make_unique<TreeNode>(m_node->Child(Units(name)));
    }
    void DeleteSubNode(const std::wstring& name) override { m_node->RemoveChild(Units(name)); }
    std::wstring GetString(const wchar_t* name) override {
        const auto& value = m_node->Value<std::u16string>(Units(name));
        return {value.begin(), value.end()};
    }
    int64_t GetInt64(const wchar_t* name) override { return m_node->Value<int64_t>(Units(name)); }
    void SetString(const wchar_t* name, const std::wstring& value) override {
        m_node->SetValue(Units(name), Units(value));
    }
    void SetInt64(const wchar_t* name, int64_t value) override { m_node->SetValue(Units(name), value); }

private:
    settings::NodePtr m_node;
};

struct SetCopy {
    uint32_t id;
    std::wstring name;
    uint32_t flags;
    PageRect page;
    std::vector<PageRect> areas;
    bool operator==(const SetCopy&) const = default;
};

// The manager's sets, after checking what holds for any of them.
std::vector<SetCopy> CopySets() {
    std::vector<SetCopy> copies;
    std::set<uint32_t> ids;
    for (int32_t i = 0; i < Manager().GetCount(); ++i) {
        const CAreaSet* set = Manager().GetAreaSet(i);
        SetCopy copy{set->GetID(), set->GetName(), set->GetFlags(), set->GetDisplayRect(), {}};
        Require(copy.id != 0 && ids.insert(copy.id).second, "every set has an identifier of its own");
        int32_t position = -1;
        Require(Manager().GetAreaSet(copy.id, &position) == set && position == i, "sets are found at their position");
        for (int32_t area = 0; area < set->GetRectCount(); ++area) {
            const PageRect rect = set->GetRect(area)->GetRectangle();
            Require(rect.left <= rect.right && rect.top <= rect.bottom, "areas are normalised");
            copy.areas.push_back(rect);
        }
        copies.push_back(std::move(copy));
    }
    return copies;
}

std::vector<SetCopy> Reload() {
    const bool loaded = Manager().ReloadSettings();
    Require(loaded == Manager().WasLastLoadComplete(), "a load that stopped is told");
    return CopySets();
}

// False when the store did not take everything, which callers are told.
bool Store() {
    return Manager().StoreSettings() && Manager().WasLastStoreComplete();
}

bool IdsReadBack(const std::vector<SetCopy>& sets) {
    return std::ranges::all_of(sets, [](const SetCopy& set) { return set.id <= kLastReadableId; });
}

// Sets that were stored as a whole are the same when they are loaded again. Identifiers beyond the last one that the
// keys can tell become that one; from then on nothing changes any more.
void RequireStable(std::vector<SetCopy> stored) {
    std::vector<SetCopy> loaded = Reload();
    Require(Manager().WasLastLoadComplete(), "what was stored can be loaded");
    if (!IdsReadBack(stored)) {
        stored = loaded;
        Require(IdsReadBack(stored), "keys tell identifiers of 31 bits");
        Require(Store(), "what was loaded from a store of ours can be stored");
        loaded = Reload();
    }
    Require(loaded == stored, "load, store and load give the same sets");
}

void RequireSameTree(const settings::NodePtr& root) {
    try {
        const std::string text = settings::WriteTree(*root);
        Require(settings::WriteTree(*settings::ReadTree(text)) == text, "a written file reads back as it is");
    } catch (const settings::StoreError& error) {
        Require(error.What() == settings::Failure::kTooLarge, "a tree can be written and read");
    }
}

void AddValue(test::NodeData& node, uint8_t which, Input& input) {
    static constexpr const wchar_t* kNames[] = {kKeyBottom, kKeyLeft, kKeyRight, kKeyTop, kKeyFlags};
    if (which % 6 == 5) {
        node.strings[kKeyName] = input.Text();
    } else {
        const auto high = static_cast<int64_t>(input.Byte() < 8 ? input.Number() : 0) << 32;
        node.integers[kNames[which % 6]] = high ^ input.Coordinate();
    }
}

std::wstring SubNodeName(Input& input) {
    const uint8_t kind = input.Byte();
    if (kind < 64) return MakeSetKey(kind);
    if (kind < 128) return kind % 2 == 0 ? kKeyRect : kKeyDisplayRect;
    if (kind < 160) return std::to_wstring(kind - 128);
    return kind < 176 ? MakeSetKey(input.Number()) : input.Text();
}

// A tree written down as steps: into a sub-node, out of it, set a value.
std::shared_ptr<test::NodeData> ReadSteps(Input& input) {
    const auto root = std::make_shared<test::NodeData>();
    std::vector<std::shared_ptr<test::NodeData>> path = {root};
    constexpr size_t kDeepest = 20;
    while (!input.IsEmpty()) {
        const uint8_t step = input.Byte();
        if (step < 96) {
            AddValue(*path.back(), step, input);
        } else if (step < 176) {
            const auto child = path.back()->Child(SubNodeName(input));
            if (path.size() < kDeepest) path.push_back(child);
        } else if (step < 250) {
            if (path.size() > 1) path.pop_back();
        } else {
            path.back()->claimedExtra = step - 250;
        }
    }
    return root;
}

}  // namespace

void settings_file(Input input) {
    settings::NodePtr root;
    try {
        root = settings::ReadTree(input.Rest());
    } catch (const settings::DamageError& error) {
        Require(error.Line() >= 1 && error.what()[0] != '\0', "a damaged file is told with line and reason");
        return;
    }
    RequireSameTree(root);
    g_makeRoot = [&]() -> SettingsNodePtr { return std::make_unique<TreeNode>(root); };
    const std::vector<SetCopy> sets = Reload();
    if (Manager().WasLastLoadComplete() && Store()) RequireStable(sets);
    RequireSameTree(root);
    Manager().Forget();
}

void settings_tree(Input input) {
    test::NodeControl control;
    control.failAt = input.Byte();
    control.keepFailing = input.Byte() % 2 == 1;
    const uint8_t storeFails = input.Byte();
    const auto root = ReadSteps(input);
    g_makeRoot = [&]() -> SettingsNodePtr { return std::make_unique<test::MemoryNode>(root, control); };
    const std::vector<SetCopy> sets = Reload();

    control.failAt = storeFails;
    control.calls = 0;
    const bool stored = Store();
    control.failAt = 0;
    if (stored) RequireStable(sets);
    if (!stored) Require(CopySets() == sets, "a store that fails leaves the sets in memory alone");
    Manager().Forget();
}

void set_key(Input input) {
    const uint32_t id = input.Number();
    const std::wstring key = input.Text();
    std::string narrow;
    for (const wchar_t unit : key) narrow += unit < 0x80 ? static_cast<char>(unit) : '\x80';
    Require(ParseSetKey(key) == zonhost::IdOfKey(narrow), "module and program read a key alike");

    const std::wstring made = MakeSetKey(id);
    Require(std::string(made.begin(), made.end()) == zonhost::KeyOfId(id), "module and program write a key alike");
    Require(ParseSetKey(made) == std::min(id, kLastReadableId), "a key reads back as its identifier");
}

}  // namespace fuzz

// Area set files and settings files: what zonhost does with many areas, and with many sets.
#include <comdef.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "bench/Bench.h"
#include "bench/Library.h"
#include "refhost/app/AreaSetFile.h"
#include "refhost/app/SetReader.h"
#include "refhost/app/SetTable.h"
#include "refhost/app/StoredSets.h"
#include "refhost/settings/HostSettings.h"

namespace bench {

namespace {

constexpr uintmax_t kLongestFile = uintmax_t{64} << 20;

// One set of so many areas, on the disk as well; gone at its end.
class ExchangeFile {
public:
    explicit ExchangeFile(int areas) : m_path(PathOf(areas)) {
        m_text = R"({"sets":[{"name":"Bench","mode":"required","areas":[)";
        for (int i = 0; i < areas; ++i) {
            const std::string left = std::to_string(i % 40 * 50);
            const std::string top = std::to_string(i % 2900);
            m_text += i == 0 ? "" : ",";
            m_text += R"({"left":)" + left + R"(,"top":)" + top + R"(,"right":2050,"bottom":2970})";
        }
        m_text += "]}]}";
        std::ofstream(m_path, std::ios::binary) << m_text;
    }
    ~ExchangeFile() {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    ExchangeFile(const ExchangeFile&) = delete;
    ExchangeFile& operator=(const ExchangeFile&) = delete;

    void Import(ISettingsNode* root) const {
        const std::string text = zonhost::ReadTextFile(m_path, kLongestFile);
        Require(!zonhost::IsSettings(text), "the exchange file is taken for a settings file");
        auto sets = zonhost::ParseAreaSets(text, "bench");
        zonhost::ExpectRoom(sets);
        for (const auto& set : zonhost::PlanImport(std::move(sets), {}, false)) zonhost::WriteSet(root, set);
    }
    // Reading the file is part of both.
    void Parse() const {
        const std::string text = zonhost::ReadTextFile(m_path, kLongestFile);
        Require(nlohmann::json::parse(text).is_object(), "the exchange file is no JSON");
    }

private:
    static std::filesystem::path PathOf(int areas) {
        return std::filesystem::temp_directory_path() /
               ("bench" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(areas) + ".sets");
    }

    const std::filesystem::path m_path;
    std::string m_text;
};

class Store {
public:
    win32::ComPtr<ISettingsNode> Node() const {
        win32::ComPtr<ISettingsNode> node;
        const auto create = m_classes.Dll().Export<decltype(HostSettingsCreateNode)>("HostSettingsCreateNode");
        Require(SUCCEEDED(create(&node)), "no settings node can be made");
        return node;
    }
    decltype(&HostSettingsWalk) Walk() const {
        return m_classes.Dll().Export<decltype(HostSettingsWalk)>("HostSettingsWalk");
    }

private:
    com::ClassRegistration m_classes{L"HostSettings.dll", {host::kClsidSettingsNode, host::kClsidSettingsTransfer}};
};

}  // namespace

void Import() {
    const Store store;
    const auto import = [&](const ExchangeFile& file) { return Timed([&] { file.Import(store.Node()); }); };
    {
        const ExchangeFile file(400000);
        Compare("import", "400,000 areas", import(file), Timed([&] { file.Parse(); }), 5);
    }
    const ExchangeFile few(10000);
    const ExchangeFile many(100000);
    const auto once = import(few);
    const auto tenfold = import(many);
    for (int run = 0; run < 5; ++run) {
        const double small = (once() + once() + once()) / 3;
        Tell("import-growth", "exponent from 10,000 to 100,000 areas", std::log10(tenfold() / small));
    }
}

void ImportRefused() {
    const Store store;
    const ExchangeFile file(1000000);
    const auto refused = Timed([&] {
        try {
            file.Import(store.Node());
        } catch (const zonhost::CommandError&) {
            return;
        }
        Fail("more than a settings file can hold is imported");
    });
    Compare("import-refused", "1,000,000 areas", refused, Timed([&] { file.Parse(); }), 5);
}

void Listing() {
    constexpr int kSets = 50000;
    const Store store;
    const SettingsFile file(kSets, 1);
    const auto list = Timed([&] {
        zonhost::ExitCode code = zonhost::ExitCode::kDone;
        auto sets = zonhost::WholeSets(zonhost::ReadTreeSets(file.Node(), store.Walk()), "bench", code);
        Require(sets.size() == kSets && code == zonhost::ExitCode::kDone, "the sets cannot be listed");
        Require(zonhost::Printable(zonhost::SetTable(std::move(sets)), true).size() > kSets, "the list is empty");
    });
    const com::HostDll library{L"Zonwick.dll"};
    const auto init = library.Export<decltype(::SAInit)>("SAInit");
    const auto map = library.Export<decltype(::SAMapIndex2ID)>("SAMapIndex2ID");
    const auto serve = Timed([&] {
        DWORD id = 0;
        init(file.Node());
        Require(map(kSets - 1, &id), "the library has no sets");
    });
    Compare("list", "50,000 sets", list, serve, 7);
}

}  // namespace bench

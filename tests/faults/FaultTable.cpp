#include "faults/FaultTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>
#include <vector>

#include "refhost/com/ClassRegistration.h"

namespace test {

namespace {

using Counts = std::array<int, static_cast<size_t>(Fault::kCount)>;
std::vector<std::pair<std::string, Counts>> g_rows;

// Names that a library exports.
std::vector<std::string> ExportsOf(HMODULE module) {
    const auto* base = reinterpret_cast<const BYTE*>(module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const DWORD place = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress;
    const auto& directory = *reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(base + place);
    const auto* names = reinterpret_cast<const DWORD*>(base + directory.AddressOfNames);
    std::vector<std::string> found;
    for (DWORD i = 0; i < directory.NumberOfNames; ++i)
        found.emplace_back(reinterpret_cast<const char*>(base + names[i]));
    return found;
}

void Print() {
    int total = 0;
    std::printf("%-30s %8s  %s\n", "operation", "faults", "of kinds");
    for (const auto& [name, counts] : g_rows) {
        int sum = 0;
        std::string kinds;
        for (size_t kind = 0; kind < counts.size(); ++kind) {
            if (counts[kind] == 0) continue;
            sum += counts[kind];
            kinds += (kinds.empty() ? "" : ", ") + std::string(NameOf(static_cast<Fault>(kind))) + " " +
                     std::to_string(counts[kind]);
        }
        std::printf("%-30s %8d  %s\n", name.c_str(), sum, kinds.c_str());
        total += sum;
    }
    std::printf("%-30s %8d\n", "all", total);
}

class TableAtTheEnd final : public testing::Environment {
    void TearDown() override {
        Print();
        // A new export has to get its row.
        if (testing::GTEST_FLAG(filter) != "*") return;
        const com::HostDll module(L"Zonwick.dll");
        for (const std::string& name : ExportsOf(module.Get())) {
            EXPECT_TRUE(std::ranges::any_of(
                g_rows, [&](const auto& row) { return row.first == name || row.first.starts_with(name + ","); }))
                << name << " is in no operation";
        }
    }
};
testing::Environment* const g_table = testing::AddGlobalTestEnvironment(new TableAtTheEnd);

}  // namespace

void CountFaults(const std::string& operation, Fault kind, int injected) {
    auto row = std::ranges::find(g_rows, operation, [](const auto& each) { return each.first; });
    if (row == g_rows.end()) row = g_rows.insert(g_rows.end(), {operation, Counts{}});
    if (kind < Fault::kCount) row->second[static_cast<size_t>(kind)] += injected;
}

}  // namespace test

// Every target over its seeds, their truncations and some thousand changes of them: a short run of the fuzz targets in
// builds that have no fuzzer, on the platform that the library is for.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "fuzz/Targets.h"

namespace {

std::vector<std::string> SeedsOf(const fuzz::Target& target) {
    std::vector<std::string> seeds;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(SEEDS_DIR) / target.name)) {
        std::ifstream file(entry.path(), std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return seeds;
}

void RunOn(const fuzz::Target& target, const std::string& bytes) {
    target.run(fuzz::Input(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()));
}

class FuzzSeeds : public testing::TestWithParam<fuzz::Target> {};

TEST_P(FuzzSeeds, HoldWhole) {
    const auto seeds = SeedsOf(GetParam());
    ASSERT_FALSE(seeds.empty());
    for (const std::string& seed : seeds) {
        for (size_t length = 0; length <= seed.size(); ++length) RunOn(GetParam(), seed.substr(0, length));
    }
}

TEST_P(FuzzSeeds, HoldWithChanges) {
    const auto seeds = SeedsOf(GetParam());
    const int rounds = std::getenv("ZONWICK_TEST_LONG") == nullptr ? 2000 : 100000;
    std::mt19937 random(1);
    for (int round = 0; round < rounds; ++round) {
        std::string bytes = seeds[random() % seeds.size()];
        for (unsigned changes = 1 + random() % 4; changes > 0 && !bytes.empty(); --changes) {
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        RunOn(GetParam(), bytes);
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, FuzzSeeds, testing::ValuesIn(fuzz::kTargets),
                         [](const auto& target) { return std::string(target.param.name); });

}  // namespace

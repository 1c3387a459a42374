// Files that the program imports.
#include <algorithm>
#include <set>

#include "fuzz/Targets.h"
#include "refhost/app/AreaSetFile.h"
#include "refhost/app/FieldSpec.h"
#include "refhost/app/ImportPlan.h"
#include "refhost/app/ZoneFile.h"

namespace fuzz {
namespace {

using zonhost::CommandError;
using zonhost::Rect;

// At this resolution a pixel is a tenth of a millimetre.
constexpr zonhost::Resolution kTenths = {254, 254};

template <class Parsed, class Parse>
std::optional<Parsed> ParseOrRefuse(Parse parse) {
    try {
        return parse();
    } catch (const CommandError& error) {
        Require(error.Code() == zonhost::ExitCode::kNothingDone, "a refused file does nothing");
        Require(std::string(error.what()).starts_with("input"), "the message names the file");
        return std::nullopt;
    }
}

std::optional<std::vector<Rect>> ParseZones(std::string_view text, const zonhost::Resolution& resolution) {
    return ParseOrRefuse<std::vector<Rect>>([&] { return zonhost::ParseZones(text, "input", resolution); });
}

}  // namespace

void zone_file(Input input) {
    const zonhost::Resolution resolution = {1.0 + input.Byte() * 78.0, 1.0 + input.Byte() * 78.0};
    const std::string_view text = input.Rest();
    const auto zones = ParseZones(text, kTenths);
    if (const auto scaled = ParseZones(text, resolution)) {
        for (const Rect& zone : *scaled) {
            Require(0 <= zone.left && zone.left <= zone.right && 0 <= zone.top && zone.top <= zone.bottom,
                    "zones lie on the page");
        }
        Require(!zones || zones->size() == scaled->size(), "a resolution changes lengths alone");
    }
}

void area_set_file(Input input) {
    const uint32_t stored = input.Number();
    const std::string_view text = input.Rest();
    (void)zonhost::ParseField(text);
    const auto sets =
        ParseOrRefuse<std::vector<zonhost::AreaSetRecord>>([&] { return zonhost::ParseAreaSets(text, "input"); });
    if (!sets) return;
    Require(zonhost::ParseAreaSets(zonhost::FormatAreaSets(*sets), "input") == *sets, "area sets read back");

    const auto plan = zonhost::PlanImport(*sets, {{stored, sets->back().name, zonhost::KeyOfId(stored)}}, true);
    std::set<uint32_t> ids;
    for (const zonhost::PlannedSet& planned : plan) {
        Require(ids.insert(planned.set.id).second, "every imported set has an identifier of its own");
        Require(planned.replaces || zonhost::IdOfKey(planned.key) == planned.set.id, "and a key that tells it");
    }
}

}  // namespace fuzz

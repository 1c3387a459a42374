#include "refhost/app/AreaSetFile.h"

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>

#include "refhost/app/ImportPlan.h"
#include "refhost/app/Text.h"

namespace zonhost {

namespace {

using nlohmann::json;

constexpr int32_t kLongest = std::numeric_limits<int32_t>::max();

// Reads one file; `m_place` is the path of the value at hand, for messages.
class Reader {
public:
    explicit Reader(const std::string& fileName) : m_fileName(fileName) {}

    std::vector<AreaSetRecord> Read(const json& root) {
        Expect(root.is_object(), "", "must be an object with an entry \"sets\"");
        OnlyEntries(root, "", {"unit", "sets"});
        if (root.contains("unit")) {
            Expect(root["unit"] == "0.1 mm", "unit", "must be \"0.1 mm\", the only unit of area set files");
        }
        Expect(root.contains("sets") && root["sets"].is_array(), "sets", "must be a list of area sets");
        std::vector<AreaSetRecord> sets;
        std::set<std::string> names;
        for (const json& value : root["sets"]) {
            const std::string place = "sets[" + std::to_string(sets.size()) + "]";
            sets.push_back(ReadSet(value, place));
            Expect(names.insert(sets.back().name).second, place + ".name",
                   "another set of this file is called \"" + sets.back().name +
                       "\" as well; only the first could be found by its name");
        }
        Expect(!sets.empty(), "sets", "holds no area set");
        return sets;
    }

private:
    [[noreturn]] void Fail(const std::string& place, const std::string& reason) const {
        throw CommandError(ExitCode::kNothingDone,
                           m_fileName + ": " + (place.empty() ? "the file" : place) + ": " + reason);
    }

    void Expect(bool good, const std::string& place, const std::string& reason) const {
        if (!good) Fail(place, reason);
    }

    // A misspelt entry would otherwise be lost without a word.
    void OnlyEntries(const json& object, const std::string& place, std::initializer_list<const char*> known) const {
        for (const auto& [key, value] : object.items()) {
            if (std::find(known.begin(), known.end(), key) == known.end()) {
                std::string here = place;
                if (!here.empty()) here += '.';
                Fail(here += key, "unknown entry");
            }
        }
    }

    int64_t ReadWhole(const json& object, const std::string& place, const char* key, int64_t low, int64_t high) const {
        const std::string here = place + "." + key;
        Expect(object.contains(key), here, "missing");
        const json& value = object[key];
        const std::string range = "must be a whole number from " + std::to_string(low) + " to " + std::to_string(high);
        Expect(value.is_number_integer(), here, range);
        const bool beyond = value.is_number_unsigned() &&
                            value.get<uint64_t>() > static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
        Expect(!beyond && value.get<int64_t>() >= low && value.get<int64_t>() <= high, here, range);
        return value.get<int64_t>();
    }

    Rect ReadArea(const json& value, const std::string& place) const {
        Expect(value.is_object(), place, "must be an object with left, top, right and bottom");
        OnlyEntries(value, place, {"left", "top", "right", "bottom"});
        const auto coordinate = [&](const char* key) {
            return static_cast<int32_t>(ReadWhole(value, place, key, std::numeric_limits<int32_t>::min(), kLongest));
        };
        const Rect area{coordinate("left"), coordinate("top"), coordinate("right"), coordinate("bottom")};
        Expect(area.left <= area.right, place, "left is greater than right");
        Expect(area.top <= area.bottom, place, "top is greater than bottom");
        return area;
    }

    uint32_t ReadFlags(const json& value, const std::string& place) const {
        const json mode = value.contains("mode") ? value["mode"] : json();
        Expect(mode == "required" || mode == "ignored", place + ".mode", R"(must be "required" or "ignored")");
        const uint32_t wanted = mode == "ignored" ? kAreasIgnored : 0;
        if (!value.contains("flags")) return wanted;
        const auto flags = static_cast<uint32_t>(ReadWhole(value, place, "flags", 0, 0xFFFFFFFF));
        Expect((flags & kAreasIgnored) == wanted, place + ".flags", "does not agree with \"mode\"");
        return flags;
    }

    AreaSetRecord ReadSet(const json& value, const std::string& place) const {
        Expect(value.is_object(), place, "must be an object with name, mode and areas");
        OnlyEntries(value, place, {"id", "name", "mode", "flags", "page", "areas"});
        AreaSetRecord set;
        Expect(value.contains("name") && value["name"].is_string(), place + ".name", "must be a text");
        set.name = value["name"].get<std::string>();
        const std::string problem = NameProblem(set.name);
        Expect(problem.empty(), place + ".name", problem);
        set.flags = ReadFlags(value, place);
        Expect(value.contains("areas") && value["areas"].is_array(), place + ".areas", "must be a list of areas");
        for (const json& area : value["areas"]) {
            set.areas.push_back(ReadArea(area, place + ".areas[" + std::to_string(set.areas.size()) + "]"));
        }
        set.page = DefaultPage(set.areas);
        if (value.contains("page")) {
            const std::string here = place + ".page";
            Expect(value["page"].is_object(), here, "must be an object with width and height");
            OnlyEntries(value["page"], here, {"width", "height"});
            set.page = {0, 0, static_cast<int32_t>(ReadWhole(value["page"], here, "width", 1, kLongest)),
                        static_cast<int32_t>(ReadWhole(value["page"], here, "height", 1, kLongest))};
        }
        return set;
    }

    const std::string& m_fileName;
};

// Remembers the keys of every open object: the parser alone would keep the last of two entries silently.
class DuplicateFinder {
public:
    bool operator()(int depth, json::parse_event_t event, const json& parsed) {
        const auto level = static_cast<size_t>(depth);
        if (event == json::parse_event_t::object_start) {
            if (m_keys.size() <= level + 1) m_keys.resize(level + 2);
            m_keys[level + 1].clear();
        } else if (event == json::parse_event_t::key && m_duplicate.empty()) {
            const auto key = parsed.get<std::string>();
            if (level < m_keys.size() && !m_keys[level].insert(key).second) m_duplicate = key;
        }
        return true;
    }
    const std::string& Duplicate() const { return m_duplicate; }

private:
    std::vector<std::set<std::string>> m_keys;
    std::string m_duplicate;
};

std::string SyntaxReason(const json::parse_error& error, std::string_view text) {
    const size_t end = std::min(text.size(), error.byte > 0 ? error.byte - 1 : 0);
    const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end), '\n');
    std::string reason = error.what();
    const size_t detail = reason.find(": ");
    if (detail != std::string::npos) reason.erase(0, detail + 2);
    return "line " + std::to_string(line) + ": no valid JSON: " + reason;
}

void AppendRect(std::string& text, const Rect& area) {
    text += "{ \"left\": " + std::to_string(area.left) + ", \"top\": " + std::to_string(area.top) +
            ", \"right\": " + std::to_string(area.right) + ", \"bottom\": " + std::to_string(area.bottom) + " }";
}

}  // namespace

bool IsSettings(std::string_view text) {
    const json root = json::parse(text.begin(), text.end(), nullptr, false);
    if (!root.is_object() || root.contains("sets")) return false;
    const auto isSet = [](const auto& entry) { return entry.value().is_object() && IdOfKey(entry.key()) != 0; };
    const auto entries = root.items();
    return std::any_of(entries.begin(), entries.end(), isSet);
}

std::vector<AreaSetRecord> ParseAreaSets(std::string_view text, const std::string& fileName) {
    DuplicateFinder duplicates;
    json root;
    try {
        root = json::parse(text.begin(), text.end(), std::ref(duplicates));
    } catch (const json::parse_error& error) {
        throw CommandError(ExitCode::kNothingDone, fileName + ": " + SyntaxReason(error, text));
    } catch (const json::out_of_range& error) {
        // A number that not even a fraction can hold; the parser does not tell its place.
        const std::string reason = error.what();
        throw CommandError(ExitCode::kNothingDone,
                           fileName + ": no valid JSON: " + reason.substr(reason.find(' ') + 1));
    }
    if (!duplicates.Duplicate().empty()) {
        throw CommandError(ExitCode::kNothingDone,
                           fileName + ": an object has two entries \"" + duplicates.Duplicate() + "\"");
    }
    return Reader(fileName).Read(root);
}

std::string FormatAreaSets(const std::vector<AreaSetRecord>& sets) {
    std::string text = "{\n  \"unit\": \"0.1 mm\",\n  \"sets\": [";
    for (const AreaSetRecord& set : sets) {
        text += &set == sets.data() ? "\n    {\n" : ",\n    {\n";
        if (set.id != 0) text += "      \"id\": " + std::to_string(set.id) + ",\n";
        const std::string name = json(set.name).dump(-1, ' ', false, json::error_handler_t::replace);
        // The library leaves some of the characters that terminals obey as they are.
        text += "      \"name\": " + Printable(name) + ",\n";
        text += std::string("      \"mode\": ") + (set.Ignored() ? "\"ignored\"" : "\"required\"") + ",\n";
        if ((set.flags & ~kAreasIgnored) != 0) text += "      \"flags\": " + std::to_string(set.flags) + ",\n";
        const int64_t width = int64_t{set.page.right} - set.page.left;
        const int64_t height = int64_t{set.page.bottom} - set.page.top;
        if (width > 0 && height > 0 && width <= kLongest && height <= kLongest) {
            text += R"(      "page": { "width": )" + std::to_string(width) + ", \"height\": " + std::to_string(height) +
                    " },\n";
        }
        text += "      \"areas\": [";
        for (const Rect& area : set.areas) {
            text += &area == set.areas.data() ? "\n        " : ",\n        ";
            AppendRect(text, area);
        }
        text += set.areas.empty() ? "]\n    }" : "\n      ]\n    }";
    }
    text += sets.empty() ? "]\n}\n" : "\n  ]\n}\n";
    return text;
}

}  // namespace zonhost

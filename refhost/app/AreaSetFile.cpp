#include "refhost/app/AreaSetFile.h"

#include <algorithm>
#include <bitset>
#include <initializer_list>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

#include "refhost/app/ImportPlan.h"
#include "refhost/app/Text.h"

namespace zonhost {

namespace {

using nlohmann::json;

constexpr int32_t kLongest = std::numeric_limits<int32_t>::max();

// An area as it usually stands in a file, taken from the parser's events. There can be hundreds of thousands, so it
// needs no block of the heap.
class UsualArea {
public:
    // False: not the name of an edge, or one that was there before.
    bool TakeName(const std::string& name) {
        const auto* const edge = std::ranges::find(kEdges, name, &Edge::name);
        if (edge == std::end(kEdges) || m_seen[Index(*edge)]) return false;
        m_seen.set(Index(*edge));
        m_edge = edge;
        return true;
    }
    // The value of the name taken last. False: beyond 32 bits.
    template <class Number>
    bool TakeNumber(Number value) {
        if (!std::in_range<int32_t>(value)) return false;
        m_area.*m_edge->coordinate = static_cast<int32_t>(value);
        return true;
    }
    bool IsGood() const { return m_seen.all() && m_area.left <= m_area.right && m_area.top <= m_area.bottom; }
    const Rect& Get() const { return m_area; }
    // Writes what was taken; the member of the name taken last, whose value may not have come yet, or null.
    json* WriteTo(json& object) const {
        json* last = nullptr;
        for (const Edge& edge : kEdges) {
            if (!m_seen[Index(edge)]) continue;
            json& member = object[edge.name] = m_area.*edge.coordinate;
            if (&edge == m_edge) last = &member;
        }
        return last;
    }

private:
    struct Edge {
        const char* name;
        int32_t Rect::*coordinate;
    };
    static constexpr Edge kEdges[] = {
        {"left", &Rect::left}, {"top", &Rect::top}, {"right", &Rect::right}, {"bottom", &Rect::bottom}};
    static size_t Index(const Edge& edge) { return static_cast<size_t>(&edge - kEdges); }

    Rect m_area;
    std::bitset<std::size(kEdges)> m_seen;
    const Edge* m_edge = nullptr;
};

// Builds the document of a file, all but the good areas at the beginning of each list: from the first one on that is to
// be complained about, a list is in the document. Remembers the first name that stands twice in an object: the parser
// alone would keep the last of the two silently, and its own callback looks through the whole parent at each object's
// end.
class DocumentBuilder {
public:
    using number_integer_t = json::number_integer_t;
    using number_unsigned_t = json::number_unsigned_t;
    using number_float_t = json::number_float_t;
    using string_t = json::string_t;
    using binary_t = json::binary_t;

    json root;
    std::string duplicate;

    // The areas that a list begins with and that are not in the document.
    std::vector<Rect> TakeAreas(const json& list) { return std::move(m_areas[&list]); }

    bool null() { return Put(nullptr); }
    bool boolean(bool value) { return Put(value); }
    bool number_integer(number_integer_t value) { return TakeNumber(value) || Put(value); }
    bool number_unsigned(number_unsigned_t value) { return TakeNumber(value) || Put(value); }
    bool number_float(number_float_t value, const string_t&) { return Put(value); }
    bool string(string_t& value) { return Put(std::move(value)); }
    bool binary(binary_t&) { return false; }
    bool start_object(size_t) {
        if (m_area || m_list == nullptr || !m_list->empty()) return Open(json::object());
        m_area.emplace();
        return true;
    }
    bool start_array(size_t) {
        const bool ofAreas = m_namedAreas && m_open.back()->is_object();
        Open(json::array());
        if (ofAreas) {
            m_list = m_open.back();
            m_taken = &m_areas[m_list];
        }
        return true;
    }
    bool end_object() {
        if (!m_area || !m_area->IsGood()) return Close();
        m_taken->push_back(m_area->Get());
        m_area.reset();
        return true;
    }
    bool end_array() {
        if (m_list == m_open.back()) m_list = nullptr;
        return Close();
    }
    bool key(string_t& name) {
        if (m_area && m_area->TakeName(name)) return true;
        MoveAreaToDocument();
        m_namedAreas = name == "areas";
        const auto [member, fresh] = m_open.back()->get_ref<json::object_t&>().emplace(name, nullptr);
        if (!fresh && duplicate.empty()) duplicate = name;
        m_member = &member->second;
        return true;
    }
    template <class Error>
    bool parse_error(size_t, const std::string&, const Error& error) {
        throw error;
    }

private:
    template <class Number>
    bool TakeNumber(Number value) {
        return m_area && m_area->TakeNumber(value);
    }
    // The area at hand is not as usual.
    void MoveAreaToDocument() {
        if (!m_area) return;
        const UsualArea area = *m_area;
        m_area.reset();
        Open(json::object());
        m_member = area.WriteTo(*m_open.back());
    }
    json* Add(json&& value) {
        MoveAreaToDocument();
        json* place = &root;
        if (!m_open.empty() && m_open.back()->is_array()) {
            place = &m_open.back()->get_ref<json::array_t&>().emplace_back();
        } else if (!m_open.empty()) {
            place = m_member;
        }
        *place = std::move(value);
        return place;
    }
    bool Put(json&& value) {
        Add(std::move(value));
        return true;
    }
    bool Open(json&& value) {
        m_open.push_back(Add(std::move(value)));
        return true;
    }
    bool Close() {
        MoveAreaToDocument();
        m_open.pop_back();
        return true;
    }

    // The innermost is the last; only that one grows, so that the others stay where they are.
    std::vector<json*> m_open;
    json* m_member = nullptr;
    bool m_namedAreas = false;             // the name that was read last is that of a list of areas
    json* m_list = nullptr;                // the open list of areas
    std::vector<Rect>* m_taken = nullptr;  // its areas that are not in the document
    std::optional<UsualArea> m_area;
    std::unordered_map<const json*, std::vector<Rect>> m_areas;
};

// Reads one file; `m_place` is the path of the value at hand, for messages.
class Reader {
public:
    Reader(const std::string& fileName, DocumentBuilder& document) : m_fileName(fileName), m_document(document) {}

    std::vector<AreaSetRecord> Read() {
        const json& root = m_document.root;
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

    AreaSetRecord ReadSet(const json& value, const std::string& place) {
        Expect(value.is_object(), place, "must be an object with name, mode and areas");
        OnlyEntries(value, place, {"id", "name", "mode", "flags", "page", "areas"});
        AreaSetRecord set;
        Expect(value.contains("name") && value["name"].is_string(), place + ".name", "must be a text");
        set.name = value["name"].get<std::string>();
        const std::string problem = NameProblem(set.name);
        Expect(problem.empty(), place + ".name", problem);
        set.flags = ReadFlags(value, place);
        Expect(value.contains("areas") && value["areas"].is_array(), place + ".areas", "must be a list of areas");
        set.areas = m_document.TakeAreas(value["areas"]);
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
    DocumentBuilder& m_document;
};

// Looks for what tells a settings file and stops at what tells an area set file.
class KindFinder : public json::json_sax_t {
public:
    bool listed = false;  // has an entry "sets"
    bool holdsSet = false;

    bool null() override { return Value(); }
    bool boolean(bool) override { return Value(); }
    bool number_integer(json::number_integer_t) override { return Value(); }
    bool number_unsigned(json::number_unsigned_t) override { return Value(); }
    bool number_float(json::number_float_t, const std::string&) override { return Value(); }
    bool string(std::string&) override { return Value(); }
    bool binary(json::binary_t&) override { return Value(); }
    bool start_object(size_t) override {
        holdsSet = holdsSet || (m_depth == 1 && m_setKey);
        ++m_depth;
        return true;
    }
    bool start_array(size_t) override { return ++m_depth > 1; }
    bool end_object() override {
        --m_depth;
        return true;
    }
    bool end_array() override {
        --m_depth;
        return true;
    }
    bool key(std::string& name) override {
        if (m_depth != 1) return true;
        m_setKey = IdOfKey(name) != 0;
        listed = listed || name == "sets";
        return !listed;
    }
    bool parse_error(size_t, const std::string&, const json::exception&) override { return false; }

private:
    bool Value() const { return m_depth > 0; }

    int m_depth = 0;
    bool m_setKey = false;
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
    KindFinder kind;
    return json::sax_parse(text.begin(), text.end(), &kind) && kind.holdsSet && !kind.listed;
}

std::vector<AreaSetRecord> ParseAreaSets(std::string_view text, const std::string& fileName) {
    DocumentBuilder document;
    try {
        json::sax_parse(text.begin(), text.end(), &document);
    } catch (const json::parse_error& error) {
        throw CommandError(ExitCode::kNothingDone, fileName + ": " + SyntaxReason(error, text));
    } catch (const json::out_of_range& error) {
        // A number that not even a fraction can hold; the parser does not tell its place.
        const std::string reason = error.what();
        throw CommandError(ExitCode::kNothingDone,
                           fileName + ": no valid JSON: " + reason.substr(reason.find(' ') + 1));
    }
    if (!document.duplicate.empty()) {
        throw CommandError(ExitCode::kNothingDone,
                           fileName + ": an object has two entries \"" + document.duplicate + "\"");
    }
    return Reader(fileName, document).Read();
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

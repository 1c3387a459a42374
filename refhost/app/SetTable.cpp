#include "refhost/app/SetTable.h"

#include <algorithm>

#include "refhost/app/Console.h"

namespace zonhost {

std::vector<AreaSetRecord> WholeSets(std::vector<TreeSet> sets, const std::string& file, ExitCode& code) {
    PrintError(TellPages(sets));
    const std::string broken = TellBroken(sets, file);
    code = broken.empty() ? ExitCode::kDone : ExitCode::kSettings;
    if (!broken.empty()) PrintError("zonhost: " + broken + "\n");
    std::vector<AreaSetRecord> whole;
    whole.reserve(sets.size());
    for (TreeSet& set : sets) {
        if (set.Whole()) whole.push_back(std::move(set.record));
    }
    return whole;
}

std::string SetTable(std::vector<AreaSetRecord> sets) {
    size_t width = 4;
    for (AreaSetRecord& set : sets) {
        set.name = Printable(set.name);
        width = std::max(width, Utf16Length(set.name));
    }
    std::string text = Padded("ID", 10) + "  " + Padded("Name", width) + "  Areas  Mode\n";
    for (const AreaSetRecord& set : sets) {
        text += KeyOfId(set.id) + "  " + Padded(set.name, width) + "  " +
                Padded(std::to_string(set.areas.size()), 5, true) + "  " + Mode(set) + "\n";
    }
    return text;
}

std::string Padded(const std::string& text, size_t width, bool right) {
    const std::string blanks(width - std::min(width, Utf16Length(text)), ' ');
    return right ? blanks + text : text + blanks;
}

const char* Mode(const AreaSetRecord& set) {
    return set.Ignored() ? "ignored" : "required";
}

}  // namespace zonhost

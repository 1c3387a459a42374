#include "refhost/app/PagePlan.h"

#include <algorithm>
#include <array>
#include <map>
#include <system_error>

#include "refhost/app/Text.h"

namespace zonhost {

namespace fs = std::filesystem;

namespace {

bool IsPageImage(const fs::path& path) {
    static constexpr std::array<std::string_view, 6> kExtensions{".tif", ".tiff", ".png", ".jpg", ".jpeg", ".bmp"};
    const std::string extension = FoldCase(Utf8FromPath(path.extension()));
    return std::find(kExtensions.begin(), kExtensions.end(), extension) != kExtensions.end();
}

template <typename Wanted>
std::vector<fs::path> FilesIn(const fs::path& folder, std::error_code& error, Wanted wanted) {
    std::vector<fs::path> files;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_regular_file(ignored) && wanted(entry->path())) files.push_back(entry->path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

bool IsPattern(const fs::path& name) {
    return Utf8FromPath(name).find_first_of("*?") != std::string::npos;
}

std::vector<fs::path> FilesOf(const fs::path& argument, std::string& problem) {
    std::error_code error;
    if (fs::is_directory(argument, error)) {
        auto files = FilesIn(argument, error, IsPageImage);
        if (error) {
            problem = "the folder cannot be read";
        } else if (files.empty()) {
            problem = "the folder holds no page image (tif, tiff, png, jpg, jpeg, bmp)";
        }
        return files;
    }
    if (fs::exists(argument, error)) return {argument};
    if (!IsPattern(argument.filename())) {
        problem = "no such file or folder";
        return {};
    }
    const std::string pattern = FoldCase(Utf8FromPath(argument.filename()));
    const fs::path folder = argument.has_parent_path() ? argument.parent_path() : fs::path(".");
    auto files = FilesIn(folder, error, [&](const fs::path& path) {
        return IsPageImage(path) && MatchesPattern(FoldCase(Utf8FromPath(path.filename())), pattern);
    });
    if (files.empty()) problem = "no page image matches";
    return files;
}

// More and more of a path, until names differ.
std::string NameAtLevel(const fs::path& path, int level) {
    std::string stem = Utf8FromPath(path.stem());
    std::string whole = Utf8FromPath(path.filename());
    const std::string folder = Utf8FromPath(fs::absolute(path).parent_path().filename());
    switch (level) {
        case 0:
            return stem;
        case 1:
            return whole;
        case 2:
            return folder.empty() ? whole : folder + "_" + stem;
        default:
            return folder.empty() ? whole : folder + "_" + whole;
    }
}

constexpr int kLastLevel = 3;

}  // namespace

bool MatchesPattern(std::string_view name, std::string_view pattern) {
    size_t n = 0;
    size_t p = 0;
    size_t star = std::string_view::npos;
    size_t resume = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            resume = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            n = ++resume;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

PageList FindPages(const std::vector<fs::path>& arguments) {
    PageList pages;
    std::set<fs::path> seen;
    for (const fs::path& argument : arguments) {
        std::string problem;
        for (fs::path& file : FilesOf(argument, problem)) {
            std::error_code error;
            const fs::path whole = fs::weakly_canonical(file, error);
            if (seen.insert(error ? file : whole).second) pages.files.push_back(std::move(file));
        }
        if (!problem.empty()) pages.problems.push_back(Utf8FromPath(argument) + ": " + problem);
    }
    return pages;
}

OutputNames::OutputNames(const std::vector<fs::path>& files, std::string extension)
    : m_extension(std::move(extension)) {
    std::vector<int> levels(files.size(), 0);
    m_bases.resize(files.size());
    for (bool changed = true; changed;) {
        std::map<std::string, std::vector<size_t>> byName;
        for (size_t i = 0; i < files.size(); ++i) {
            m_bases[i] = NameAtLevel(files[i], levels[i]);
            byName[FoldCase(m_bases[i])].push_back(i);
        }
        changed = false;
        for (const auto& [name, sharers] : byName) {
            if (sharers.size() < 2) continue;
            for (const size_t i : sharers) {
                if (levels[i] == kLastLevel) continue;
                ++levels[i];
                changed = true;
            }
        }
    }
    for (std::string& base : m_bases) base = Claim(base);
    for (const std::string& base : m_bases) m_folded.insert(FoldCase(base));
}

bool OutputNames::Covers(const fs::path& name) const {
    std::string folded = FoldCase(Utf8FromPath(name));
    if (!folded.ends_with(m_extension)) return false;
    folded.resize(folded.size() - m_extension.size());
    if (m_folded.contains(folded)) return true;
    // Of several frames: a number behind a dash, and another behind ~ where names met.
    for (const char mark : {'~', '-'}) {
        const size_t end = folded.find_last_not_of("0123456789");
        if (end == std::string::npos || end + 1 == folded.size() || folded[end] != mark) continue;
        folded.resize(end);
        if (m_folded.contains(folded)) return true;
    }
    return false;
}

std::string OutputNames::Claim(const std::string& name) {
    std::string candidate = name;
    for (int number = 2; !m_taken.insert(FoldCase(candidate)).second; ++number) {
        candidate = name + "~" + std::to_string(number);
    }
    return candidate;
}

fs::path OutputNames::Name(size_t file, size_t frame, size_t frameCount) {
    std::string name = m_bases.at(file);
    if (frameCount > 1) {
        std::string number = std::to_string(frame + 1);
        const size_t digits = std::max<size_t>(2, std::to_string(frameCount).size());
        number.insert(0, digits - std::min(digits, number.size()), '0');
        name = Claim(name + "-" + number);
    }
    return PathFromUtf8(name + m_extension);
}

}  // namespace zonhost

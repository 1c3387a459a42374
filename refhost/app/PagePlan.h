#pragma once
// Which files are masked, and what each result is called.

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace zonhost {

struct PageList {
    std::vector<std::filesystem::path> files;
    std::vector<std::string> problems;  // one message for each argument that gives no page
};

// Files as given; a folder stands for the page images directly in it, by name; * and ? in the last part of a path for
// the names that match. A file that is given twice is taken once.
PageList FindPages(const std::vector<std::filesystem::path>& arguments);

// Names of results, all different also where file names do not tell upper from lower case. The result of scan.tif is
// scan.png, or scan-01.png, scan-02.png, ... for the frames of a file with several. Where two sources would have one
// name, both get more of theirs: scan.tif.png and scan.jpg.png, or a_scan.png and b_scan.png from folders a and b.
class OutputNames {
public:
    OutputNames(const std::vector<std::filesystem::path>& files, std::string extension);
    // `frame` counts from 0. To be asked once for each frame.
    std::filesystem::path Name(size_t file, size_t frame, size_t frameCount);
    // Whether a file of this name could be a result, whatever number of frames its source has.
    bool Covers(const std::filesystem::path& name) const;

private:
    std::string Claim(const std::string& name);
    std::vector<std::string> m_bases;
    std::set<std::string> m_folded;  // of m_bases
    std::set<std::string> m_taken;
    std::string m_extension;
};

// Pattern with * and ? against a name, both in one case.
bool MatchesPattern(std::string_view name, std::string_view pattern);

}  // namespace zonhost

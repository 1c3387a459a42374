#pragma once
// What the command line asks for.

#include <filesystem>
#include <string>
#include <vector>

#include "refhost/app/Text.h"

namespace zonhost {

struct CommonOptions {
    std::filesystem::path settings;
    std::filesystem::path log;
    bool verbose = false;
};

struct ListOptions {
    bool json = false;
};

struct ShowOptions {
    std::string set;
    bool json = false;
};

struct ExportOptions {
    std::vector<std::string> sets;  // none: all
    std::filesystem::path out;      // empty: standard output
    bool force = false;
};

struct ImportOptions {
    std::vector<std::filesystem::path> files;
    std::vector<std::string> sets;  // names of those to import; none: all
    std::string name;               // of the set of a zone file; empty: the file's name
    bool ignored = false;
    std::optional<Resolution> resolution;
    std::filesystem::path page;
    bool replace = false;
    bool dryRun = false;
};

struct MaskOptions {
    std::string set;
    std::filesystem::path out;
    std::string format = "png";
    std::optional<Resolution> resolution;
    bool force = false;
    uint64_t memory = 1024;  // MiB that the pages in flight share
    std::vector<std::filesystem::path> pages;
};

// Of commands that open windows.
struct WindowOptions {
    std::string units = "auto";  // "mm", "inch", or the user's regional setting
    std::vector<std::filesystem::path> pages;
};

struct ViewOptions {
    WindowOptions window;
};

struct ManageOptions {
    WindowOptions window;
    bool asRead = false;  // also over sets that cannot be read whole
};

struct FieldsOptions {
    WindowOptions window;
    std::vector<std::string> fields;
    std::string name;
    bool json = false;
};

}  // namespace zonhost

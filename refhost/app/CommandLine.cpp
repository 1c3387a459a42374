#include "refhost/app/CommandLine.h"

#include <comdef.h>
#include <windows.h>

#include <CLI/CLI.hpp>
#include <functional>
#include <sstream>

#include "refhost/app/Commands.h"
#include "refhost/app/Console.h"
#include "version.h"

namespace zonhost {

namespace {

constexpr const char* kAbout =
    "Masks scanned pages by area sets and manages the sets, through Zonwick.dll.\n"
    "An area set is a named list of rectangles on a page, in tenths of a millimetre, that are to be kept (required)\n"
    "or left out (ignored).\n";

constexpr const char* kFooter =
    "Examples:\n"
    "  zonhost sets import area-sets.json --settings settings.json\n"
    "  zonhost sets list --settings settings.json\n"
    "  zonhost manage --settings settings.json scan.tif\n"
    "  zonhost mask --settings settings.json --set \"Letter body\" --out masked scan.tif\n"
    "\n"
    "Exit codes:\n"
    "  0  all done\n"
    "  1  some pages were not masked; each is told on standard error\n"
    "  2  the command line is wrong\n"
    "  3  the settings file cannot be read or written, or an area set in it cannot be read whole\n"
    "  4  nothing was done: no such set, no page could be masked, a file to be imported has a mistake,\n"
    "     a library is missing; or standard output could not be written\n"
    "  5  mask was interrupted (Ctrl+C); the pages that it tells as done are whole\n"
    "  6  the program itself failed\n"
    "\n"
    "`zonhost COMMAND --help` tells more of a command. --settings, --log and --verbose go with every command.";

constexpr const char* kMaskFooter =
    "PAGE is an image file (TIFF with any number of pages, PNG, JPEG, BMP), a folder for the image files directly in "
    "it,\n"
    "or a pattern such as scans\\*.tif. Results are named like their sources: letter.tif gives letter.png, or\n"
    "letter-01.png, letter-02.png and so on for its pages if it has several. A page that cannot be masked is told, "
    "and\n"
    "the others are done. Sources are never overwritten. Ctrl+C ends it after the pages at work; results are whole "
    "or\n"
    "not there.\n"
    "\n"
    "Examples:\n"
    "  zonhost mask --set \"Letter body\" --out masked scan.tif folder\\of\\scans\n"
    "  zonhost mask --set \"Letter body\" --out masked --format tif --dpi 204x196 fax*.png";

constexpr const char* kImportFooter =
    "FILE is a .json file as `zonhost sets export` writes it, a settings file (another one, a copy of its .bak, or "
    "one\n"
    "that was kept as .refused-n), or a .uzn zone file: lines \"left top width height "
    "label\" in\n"
    "pixels, each file one set. All files are checked before anything is written. New sets get identifiers of their "
    "own.\n"
    "\n"
    "Examples:\n"
    "  zonhost sets import area-sets.json --dry-run\n"
    "  zonhost sets import settings.json.refused-1 --set \"Letter body\" --replace\n"
    "  zonhost sets import letter.uzn --page letter.tif --name \"Letter text\" --ignored";

constexpr const char* kManageFooter =
    "Opens \"Manage Area Sets\" over the settings file: there sets are made, copied, renamed, removed and drawn on "
    "the\n"
    "pages. OK saves all of it, Cancel leaves the file as it is. Without PAGE, and where no page can be had, areas "
    "are\n"
    "drawn on a blank page of a configured size.\n"
    "\n"
    "What came of it is printed. When another program changed the file in the meantime, OK is refused; the sets are\n"
    "kept in FILE.refused-1 (-2, ...), and the exit code is 3. Over sets that cannot be read whole it opens with\n"
    "--as-read alone, because OK would store them as they were read.\n"
    "\n"
    "Examples:\n"
    "  zonhost manage --settings settings.json letter.tif folder\\of\\scans\n"
    "  zonhost manage --units inch\n"
    "  zonhost sets import settings.json.refused-1 --set \"Letter body\"";

constexpr const char* kFieldsFooter =
    "Opens \"Configure Area Set\" for indexing fields and prints where they stand afterwards, in tenths of a\n"
    "millimetre. Without PAGE, and where no page can be had, a blank page of the configured size is shown.\n"
    "\n"
    "Examples:\n"
    "  zonhost fields --field Number --field Total=1500,2400,1900,2480 invoice.tif\n"
    "  zonhost fields --field Date --json";

constexpr const char* kViewFooter =
    "Opens a window with the page display control, to try drawing, moving and sizing rectangles. Ctrl+PageDown and\n"
    "Ctrl+PageUp turn the pages; the menu \"View\" zooms.\n"
    "\n"
    "Example:\n"
    "  zonhost view scan.tif folder\\of\\scans";

constexpr const char* kExportFooter =
    "Example:\n"
    "  zonhost sets export \"Letter body\" 0x00000003 --out area-sets.json";

constexpr uint64_t kLeastMemory = 16;
constexpr uint64_t kMostMemory = 1 << 20;

std::wstring EnvironmentValue(const wchar_t* name) {
    std::wstring value(32767, L'\0');
    value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
    return value;
}

std::filesystem::path DefaultSettings() {
    if (std::wstring named = EnvironmentValue(L"ZONHOST_SETTINGS"); !named.empty()) return named;
    return std::filesystem::path(EnvironmentValue(L"LOCALAPPDATA")) / L"Zonwick" / L"settings.json";
}

// An option whose value is a path.
void PathOption(CLI::App& app, const char* name, std::filesystem::path& path, const char* help, const char* type) {
    app.add_option_function<std::string>(
           name, [&path](const std::string& text) { path = PathFromUtf8(text); }, help)
        ->type_name(type)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

CLI::Option* PathsOption(CLI::App& app, const char* name, std::vector<std::filesystem::path>& paths, const char* help) {
    return app
        .add_option_function<std::vector<std::string>>(
            name,
            [&paths](const std::vector<std::string>& texts) {
                for (const std::string& text : texts) paths.push_back(PathFromUtf8(text));
            },
            help)
        ->required()
        ->type_name("");
}

CLI::Option* ResolutionOption(CLI::App& app, std::optional<Resolution>& resolution, const char* help) {
    return app
        .add_option_function<std::string>(
            "--dpi",
            [&resolution](const std::string& text) {
                resolution = ParseResolution(text);
                if (!resolution)
                    throw CLI::ValidationError("--dpi", "\"" + text + "\" is no resolution; 300 or 204x196");
            },
            help)
        ->type_name("N|NxN");
}

class CommandLine {
public:
    CommandLine() : m_app(kAbout, "zonhost") {
        // Unix-like file names begin with a slash.
        m_app.allow_windows_style_options(false);
        m_app.require_subcommand(1);
        m_app.fallthrough();
        m_app.set_version_flag("--version", "zonhost " ZONWICK_VERSION_TEXT);
        m_common.settings = DefaultSettings();
        PathOption(m_app, "--settings", m_common.settings,
                   "Settings file with the area sets (default: the environment variable ZONHOST_SETTINGS, else "
                   "%LOCALAPPDATA%\\Zonwick\\settings.json)",
                   "FILE");
        PathOption(m_app, "--log", m_common.log, "Add the log of the library and its host to this file", "FILE");
        m_app.add_flag("--verbose", m_common.verbose, "Show the log on standard error as well");
        AddSets();
        AddMask();
        AddManage();
        AddView();
        AddFields();
        m_app.footer(kFooter);
    }

    ExitCode Run(std::vector<std::string> arguments) {
        try {
            // The parser takes them from the back.
            std::reverse(arguments.begin(), arguments.end());
            m_app.parse(std::move(arguments));
        } catch (const CLI::ParseError& error) {
            std::ostringstream out;
            std::ostringstream problem;
            const int result = m_app.exit(error, out, problem);
            Print(out.str());
            if (result == 0) return ExitCode::kDone;
            PrintError("zonhost: " + problem.str());
            return ExitCode::kUsage;
        }
        return m_command();
    }

private:
    void AddSets() {
        CLI::App& sets = *m_app.add_subcommand("sets", "List, show, export and import area sets");
        sets.require_subcommand(1);

        CLI::App& list = *sets.add_subcommand("list", "List the area sets");
        list.add_flag("--json", m_list.json, "As JSON, with all areas");
        list.callback([this] { m_command = [this] { return ListSets(m_common, m_list); }; });

        CLI::App& show = *sets.add_subcommand("show", "Show one area set with its areas");
        show.add_option("SET", m_show.set, "Name or identifier of the set")->required()->type_name("");
        show.add_flag("--json", m_show.json, "As JSON, in tenths of a millimetre");
        show.callback([this] { m_command = [this] { return ShowSet(m_common, m_show); }; });

        CLI::App& out = *sets.add_subcommand("export", "Export area sets as JSON in tenths of a millimetre");
        out.footer(kExportFooter);
        out.add_option("SET", m_export.sets, "Names or identifiers of the sets; all when none is given")->type_name("");
        PathOption(out, "--out", m_export.out, "File to write (default: standard output)", "FILE");
        out.add_flag("--force", m_export.force, "Replace the file if it is there");
        out.callback([this] { m_command = [this] { return ExportSets(m_common, m_export); }; });

        CLI::App& in = *sets.add_subcommand("import", "Import area sets from JSON and zone files");
        in.footer(kImportFooter);
        PathsOption(in, "FILE", m_import.files, "Files to import");
        in.add_option("--set", m_import.sets, "Import only the set of this name; can be given several times")
            ->type_name("NAME")
            ->allow_extra_args(false)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
        in.add_flag("--replace", m_import.replace, "Replace sets of the same name; they keep their identifiers");
        in.add_flag("--dry-run", m_import.dryRun, "Check and show what would be imported, write nothing");
        in.add_option("--name", m_import.name, "Zone files: name of the set (default: the file's name)")
            ->type_name("NAME");
        in.add_flag("--ignored", m_import.ignored, "Zone files: leave the zones out (default: keep them)");
        ResolutionOption(in, m_import.resolution, "Zone files: dots per inch of the page that the zones are on");
        PathOption(in, "--page", m_import.page, "Zone files: image of that page, for its resolution and size", "IMAGE");
        in.callback([this] { m_command = [this] { return ImportSets(m_common, m_import); }; });
    }

    void AddMask() {
        CLI::App& mask = *m_app.add_subcommand("mask", "Mask pages by an area set");
        mask.footer(kMaskFooter);
        mask.add_option("--set", m_mask.set, "Name of the area set")->required()->type_name("NAME");
        mask.add_option_function<std::string>(
                "--out", [this](const std::string& text) { m_mask.out = PathFromUtf8(text); }, "Folder for the results")
            ->required()
            ->type_name("DIR");
        mask.add_option("--format", m_mask.format, "Format of the results: png (default), tif or bmp")
            ->check(CLI::IsMember({"png", "tif", "bmp"}))
            ->type_name("FORMAT");
        ResolutionOption(mask, m_mask.resolution, "Dots per inch of the pages, in place of what the files say");
        mask.add_flag("--force", m_mask.force, "Replace results that are there (never sources)");
        mask.add_option("--memory", m_mask.memory,
                        "MiB of memory that the pages at work share (default: 1024). A page waits for the others, and "
                        "one that needs more alone is refused")
            ->check(CLI::Range(kLeastMemory, kMostMemory))
            ->type_name("MIB");
        PathsOption(mask, "PAGE", m_mask.pages, "Image files, folders or patterns");
        mask.callback([this] { m_command = [this] { return MaskPages(m_common, m_mask); }; });
    }

    static void AddWindowOptions(CLI::App& command, WindowOptions& options, bool pagesNeeded) {
        command.add_option("--units", options.units, "Lengths in mm or inch (default: the regional setting)")
            ->check(CLI::IsMember({"auto", "mm", "inch"}))
            ->type_name("UNIT");
        PathsOption(command, "PAGE", options.pages, "Image files and folders")->required(pagesNeeded);
    }

    void AddManage() {
        CLI::App& manage = *m_app.add_subcommand("manage", "Make and change area sets in their dialogs");
        manage.footer(kManageFooter);
        manage.add_flag("--as-read", m_manage.asRead,
                        "Open over sets that cannot be read whole; OK stores them as they were read");
        AddWindowOptions(manage, m_manage.window, false);
        manage.callback([this] { m_command = [this] { return ManageSets(m_common, m_manage); }; });
    }

    void AddView() {
        CLI::App& view = *m_app.add_subcommand("view", "Show pages in the page display control");
        view.footer(kViewFooter);
        AddWindowOptions(view, m_view.window, true);
        view.callback([this] { m_command = [this] { return ViewPages(m_common, m_view); }; });
    }

    void AddFields() {
        CLI::App& fields = *m_app.add_subcommand("fields", "Place indexing fields on a page");
        fields.footer(kFieldsFooter);
        fields.add_option("--field", m_fields.fields, "An indexing field, and where it stands")
            ->type_name("NAME[=left,top,right,bottom]")
            ->allow_extra_args(false)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
        fields.add_option("--name", m_fields.name, "Shown in the title of the dialog")->type_name("NAME");
        fields.add_flag("--json", m_fields.json, "Print JSON");
        AddWindowOptions(fields, m_fields.window, false);
        fields.callback([this] { m_command = [this] { return PlaceFields(m_common, m_fields); }; });
    }

    CLI::App m_app;
    CommonOptions m_common;
    ListOptions m_list;
    ShowOptions m_show;
    ExportOptions m_export;
    ImportOptions m_import;
    MaskOptions m_mask;
    ViewOptions m_view;
    ManageOptions m_manage;
    FieldsOptions m_fields;
    std::function<ExitCode()> m_command;
};

}  // namespace

ExitCode RunCommandLine(const std::vector<std::string>& arguments) {
    try {
        return CommandLine().Run(arguments);
    } catch (const CommandError& error) {
        PrintError(std::string("zonhost: ") + error.what() + "\n");
        return error.Code();
    } catch (const _com_error& error) {
        PrintError("zonhost: the settings refuse: " + SystemMessage(static_cast<DWORD>(error.Error())) + "\n");
        return ExitCode::kSettings;
    } catch (const std::bad_alloc&) {
        PrintError("zonhost: out of memory\n");
    } catch (const std::exception& error) {
        PrintError(std::string("zonhost: ") + error.what() + "\n");
    }
    return ExitCode::kNothingDone;
}

}  // namespace zonhost

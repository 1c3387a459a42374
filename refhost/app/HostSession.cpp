#include "refhost/app/HostSession.h"

#include <comdef.h>

#include <system_error>

#include "refhost/app/Console.h"
#include "refhost/app/StoredSets.h"
#include "refhost/com/ClassRegistration.h"
#include "refhost/settings/HostSettings.h"
#include "refhost/support/HostSupport.h"

_COM_SMARTPTR_TYPEDEF(ISettingsNode, __uuidof(ISettingsNode));

namespace zonhost {

namespace fs = std::filesystem;

namespace {

class ComScope {
public:
    ComScope() {
        if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {
            throw CommandError(ExitCode::kNothingDone, "COM cannot be initialised");
        }
    }
    ~ComScope() { CoUninitialize(); }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;
};

// What the libraries report of themselves, as one session hears it.
struct Reports {
    bool verbose = false;
    HostSession::Outcome commits;
};

void ShowTrace(const HostTrace* trace) {
    PrintError(std::string(trace->source ? trace->source : "") + "(" + std::to_string(trace->line) + "), severity " +
               std::to_string(trace->severity) + ": " + Utf8FromWide(trace->text) + "\n");
}

constexpr int kErrorSeverity = 2;

void CALLBACK OnTrace(const HostTrace* trace, void* context) {
    Reports& reports = *static_cast<Reports*>(context);
    if (reports.verbose) ShowTrace(trace);
    const std::string_view source = trace->source ? trace->source : "";
    const bool waits = (source == "HostSettings" || source == "AreaSetManager") &&
                       std::wstring_view(trace->text).ends_with(L"waiting for it.");
    if (waits) PrintError("zonhost: " + Utf8FromWide(trace->text) + "\n");
    if (trace->severity == kErrorSeverity && source == "HostSettings") {
        reports.commits.failure = Utf8FromWide(trace->text);
    }
}

DWORD CALLBACK OnCommitStep(int step, void* context) {
    if (step == kHostStepSwapped) static_cast<Reports*>(context)->commits = {true, {}};
    return 0;
}

class LogScope {
public:
    LogScope(const CommonOptions& options, const FilesInUse& files, Reports& reports)
        : m_name(Utf8FromPath(options.log)) {
        CheckLog(options.log, files);
        if (!options.log.empty() && !HostSupportSetLogFile(options.log.c_str())) {
            throw CommandError(ExitCode::kNothingDone, "the log " + Utf8FromPath(options.log) +
                                                           " cannot be opened: " + SystemMessage(GetLastError()));
        }
        HostSupportSetTraceObserver(OnTrace, &reports);
    }
    ~LogScope() {
        HostSupportSetTraceObserver(nullptr, nullptr);
        if (!HostSupportSetLogFile(nullptr)) {
            PrintError("zonhost: the log " + m_name + " is not whole: " + SystemMessage(GetLastError()) + "\n");
        }
    }
    LogScope(const LogScope&) = delete;
    LogScope& operator=(const LogScope&) = delete;

private:
    const std::string m_name;
};

[[noreturn]] void FailSettings(const com::HostDll& store) {
    BSTR text = nullptr;
    store.Export<decltype(HostSettingsLastMessage)>("HostSettingsLastMessage")(&text);
    const _bstr_t owner(text, false);
    throw CommandError(ExitCode::kSettings, Utf8FromWide({text ? text : L"", owner.length()}));
}

ISettingsNodePtr OpenFile(const com::HostDll& store, const fs::path& file) {
    ISettingsNodePtr root;
    const auto open = store.Export<decltype(HostSettingsOpenFile)>("HostSettingsOpenFile");
    if (FAILED(open(file.c_str(), &root))) FailSettings(store);
    return root;
}

}  // namespace

// Taken down from the last to the first: the library lets go of the node before COM ends.
struct HostSession::Parts {
    Parts(const CommonOptions& options, const FilesInUse& files)
        : reports{options.verbose, {}},
          log(options, files, reports),
          classes(L"HostSettings.dll", {host::kClsidSettingsNode, host::kClsidSettingsTransfer}) {
        SetStep(OnCommitStep);
    }
    ~Parts() { SetStep(nullptr); }
    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;

    void SetStep(HostSettingsStep step) {
        classes.Dll().Export<decltype(HostSettingsSetStep)>("HostSettingsSetStep")(step, &reports);
    }

    Reports reports;
    const ComScope com;
    const LogScope log;
    const com::ClassRegistration classes;
    ISettingsNodePtr root;
    std::unique_ptr<ZonwickLibrary> library;
};

HostSession::HostSession(const CommonOptions& options, const FilesInUse& files, Settings settings)
    : m_parts(new Parts(options, files)) {
    std::error_code error;
    if (settings == Settings::kMustExist && !fs::exists(options.settings, error)) {
        throw CommandError(ExitCode::kSettings, "the settings file " + Utf8FromPath(options.settings) +
                                                    " does not exist; `zonhost sets import` makes it, --settings "
                                                    "names another");
    }
    // A new file may be the first of its folder; the store tells when the folder cannot be had.
    if (options.settings.has_parent_path()) fs::create_directories(options.settings.parent_path(), error);
    m_parts->root = OpenFile(m_parts->classes.Dll(), options.settings);
}

HostSession::~HostSession() = default;

ISettingsNode* HostSession::Node() const {
    return m_parts->root;
}

void HostSession::Look(const fs::path& file, const std::function<void(ISettingsNode*)>& look) const {
    const com::HostDll& store = m_parts->classes.Dll();
    try {
        look(OpenFile(store, file));
    } catch (const _com_error&) {
        FailSettings(store);
    }
}

const HostSession::Outcome& HostSession::Commits() const {
    return m_parts->reports.commits;
}

ZonwickLibrary& HostSession::Library() {
    if (!m_parts->library) {
        m_parts->library = std::make_unique<ZonwickLibrary>();
        m_parts->library->Open(m_parts->root);
    }
    return *m_parts->library;
}

std::vector<TreeSet> HostSession::Sets(ISettingsNode* root) const {
    return ReadTreeSets(root, m_parts->classes.Dll().Export<decltype(HostSettingsWalk)>("HostSettingsWalk"));
}

ZonwickLibrary& HostSession::LibraryWith(const TreeSet& set) {
    const com::HostDll& store = m_parts->classes.Dll();
    ISettingsNodePtr node;
    const auto create = store.Export<decltype(HostSettingsCreateNode)>("HostSettingsCreateNode");
    if (FAILED(create(&node))) FailSettings(store);
    WriteSet(node, {set.record, set.key, false});
    m_parts->library = std::make_unique<ZonwickLibrary>();
    m_parts->library->Open(node);
    AreaSetRecord wanted = set.record;
    wanted.page = {};
    if (m_parts->library->Sets() != std::vector{wanted}) {
        throw CommandError(ExitCode::kNothingDone, "the library does not read " + set.Title() +
                                                       " as it stands in the settings file; it is not masked with");
    }
    return *m_parts->library;
}

void HostSession::Change(const std::function<void(ISettingsNode*)>& change) {
    const com::HostDll& store = m_parts->classes.Dll();
    try {
        change(m_parts->root);
    } catch (const _com_error&) {
        FailSettings(store);
    }
    const auto commit = store.Export<decltype(HostSettingsCommit)>("HostSettingsCommit");
    if (FAILED(commit(m_parts->root))) FailSettings(store);
}

}  // namespace zonhost

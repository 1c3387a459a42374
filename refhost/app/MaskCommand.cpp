// zonhost mask. Decoding and encoding take most of the time and run on worker threads, a few pages ahead and behind;
// the exports of the library are called on the main thread alone.

#include <objbase.h>

#include <algorithm>
#include <deque>
#include <system_error>

#include "refhost/app/Commands.h"
#include "refhost/app/Console.h"
#include "refhost/app/HostSession.h"
#include "refhost/app/OutputFile.h"
#include "refhost/app/PageImages.h"
#include "refhost/app/PagePlan.h"
#include "refhost/app/WorkerPool.h"

namespace zonhost {

namespace fs = std::filesystem;

namespace {

// Pages decoded or encoded ahead of the main thread: enough to keep the workers busy, few enough for the memory.
constexpr size_t kAhead = 4;

struct Format {
    const char* name;
    const char* extension;
    HostImageFormat format;
};
constexpr Format kFormats[] = {
    {"png", ".png", kHostFormatPng}, {"tif", ".tif", kHostFormatTiff}, {"bmp", ".bmp", kHostFormatBmp}};

const Format& FormatOf(const std::string& name) {
    return *std::find_if(std::begin(kFormats), std::end(kFormats) - 1, [&](const auto& f) { return name == f.name; });
}

void WithCom(const std::function<void()>& work) {
    const HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    work();
    if (SUCCEEDED(result)) CoUninitialize();
}

size_t WorkerCount() {
    return std::clamp<size_t>(std::thread::hardware_concurrency(), 2, 8);
}

class MaskRun {
public:
    MaskRun(const MaskOptions& options, const ZonwickLibrary& library, const PageList& pages)
        : m_options(options),
          m_library(library),
          m_pages(pages),
          m_setName(WideFromUtf8(options.set)),
          m_format(FormatOf(options.format)),
          m_names(pages.files, m_format.extension),
          m_guard(pages.files, options.force),
          m_progress(pages.files.size()),
          m_pool(WorkerCount(), WithCom) {}

    ExitCode Run() {
        for (const std::string& problem : m_pages.problems) Fail(problem);
        std::deque<std::future<OpenedPage>> opening;
        size_t next = 0;
        for (size_t file = 0; file < m_pages.files.size(); ++file) {
            while (next < m_pages.files.size() && opening.size() < kAhead) {
                const fs::path& path = m_pages.files[next++];
                opening.push_back(m_pool.Do([this, &path] { return OpenPage(path); }));
            }
            OpenedPage opened = opening.front().get();
            opening.pop_front();
            MaskFile(file, opened);
        }
        while (!m_saves.empty()) FinishSave();
        m_progress.End();
        return Conclude();
    }

private:
    struct OpenedPage {
        std::shared_ptr<ImageFile> file;
        LoadedFrame first;
        std::string problem;
    };
    struct Save {
        MaskedImage masked;  // given back on the main thread
        std::future<std::string> problem;
        bool endsFile;
    };

    OpenedPage OpenPage(const fs::path& path) const {
        OpenedPage opened;
        opened.file = ImageFile::Open(path, opened.problem);
        if (opened.file) opened.first = opened.file->Load(0, m_options.resolution);
        return opened;
    }

    void MaskFile(size_t index, OpenedPage& opened) {
        const std::string name = Utf8FromPath(m_pages.files[index]);
        if (!opened.file) {
            Fail(name + ": " + opened.problem);
            m_progress.Advance();
            return;
        }
        const uint32_t count = opened.file->FrameCount();
        std::deque<std::future<LoadedFrame>> ahead;
        uint32_t next = 1;
        for (uint32_t frame = 0; frame < count; ++frame) {
            while (next < count && ahead.size() < kAhead) {
                ahead.push_back(m_pool.Do([file = opened.file, next, &resolution = m_options.resolution] {
                    return file->Load(next, resolution);
                }));
                ++next;
            }
            LoadedFrame loaded = std::move(opened.first);
            if (frame > 0) {
                loaded = ahead.front().get();
                ahead.pop_front();
            }
            const std::string page = count > 1 ? name + ", page " + std::to_string(frame + 1) : name;
            MaskFrame(page, loaded, m_options.out / m_names.Name(index, frame, count), frame + 1 == count);
        }
    }

    // Hands the masked frame on to be saved; a problem goes the same way, so that messages keep the order of the pages.
    void MaskFrame(const std::string& page, const LoadedFrame& loaded, const fs::path& target, bool endsFile) {
        std::string problem = loaded.problem;
        if (problem.empty()) problem = TargetProblem(target);
        MaskedImage masked;
        if (problem.empty()) {
            if (loaded.info.resolutionAssumed) {
                m_progress.Report(page + ": has no resolution, taken as " + std::to_string(int(loaded.info.dpiX)) +
                                  " dpi; use --dpi to give it");
            }
            masked = m_library.Mask(loaded.image.get(), m_setName);
            if (!masked.block) problem = "could not be masked: " + ImagingProblem();
        }
        auto save = [this, page, problem, target, block = masked.block.get(), length = masked.length] {
            return problem.empty() ? SavePage(page, target, block, length) : page + ": " + problem;
        };
        m_saves.push_back({std::move(masked), m_pool.Do(std::move(save)), endsFile});
        if (m_saves.size() > kAhead) FinishSave();
    }

    // Gives the problem, if there is one.
    std::string SavePage(const std::string& page, const fs::path& target, const BYTE* block, DWORD length) const {
        try {
            m_guard.Write(target, [&](const fs::path& path) { SaveBmpBlock(block, length, m_format.format, path); });
        } catch (const std::exception& error) {
            return page + ": " + error.what();
        }
        return {};
    }

    // Known before the work of masking is done.
    std::string TargetProblem(const fs::path& target) const {
        try {
            m_guard.Check(target);
        } catch (const CommandError& error) {
            return error.what();
        }
        return {};
    }

    void FinishSave() {
        Save save = std::move(m_saves.front());
        m_saves.pop_front();
        const std::string problem = save.problem.get();
        if (problem.empty()) {
            ++m_done;
        } else {
            Fail(problem);
        }
        if (save.endsFile) m_progress.Advance();
    }

    void Fail(const std::string& problem) {
        ++m_failed;
        m_progress.Report("zonhost: " + problem);
    }

    ExitCode Conclude() const {
        const auto pages = [](size_t count) { return std::to_string(count) + (count == 1 ? " page" : " pages"); };
        if (m_done > 0)
            Print(pages(m_done) + " masked by \"" + m_options.set + "\" in " + Utf8FromPath(m_options.out) + "\n");
        if (m_failed > 0) PrintError("zonhost: " + pages(m_failed) + " not masked\n");
        if (m_failed == 0) return ExitCode::kDone;
        return m_done > 0 ? ExitCode::kSomePagesFailed : ExitCode::kNothingDone;
    }

    const MaskOptions& m_options;
    const ZonwickLibrary& m_library;
    const PageList& m_pages;
    const std::wstring m_setName;
    const Format& m_format;
    OutputNames m_names;
    const OutputGuard m_guard;
    size_t m_done = 0;
    size_t m_failed = 0;
    std::deque<Save> m_saves;
    ProgressBar m_progress;
    WorkerPool m_pool;  // last: its threads use the members above
};

// The set to mask with. All that would make every page fail is told once, before the first.
TreeSet FindSet(const HostSession& session, const std::string& name, const std::string& file) {
    const std::vector<TreeSet> sets = session.Sets();
    const TreeSet* set = FindByName(sets, name, file);
    const auto refuse = [&](const std::string& reason) { throw CommandError(ExitCode::kNothingDone, reason); };
    const std::string shown = "the area set \"" + name + "\" ";
    if (set == nullptr) {
        refuse("there is no area set \"" + name + "\"; `zonhost sets list` shows those that there are");
    } else if (set->record.areas.empty()) {
        refuse(shown + "has no areas to mask by");
    } else if (Utf16Length(name) > kLongestName) {
        refuse(shown + "has a name of more than " + std::to_string(kLongestName) +
               " characters and cannot be masked with; give it a shorter one in `zonhost manage`");
    }
    return *set;
}

}  // namespace

ExitCode MaskPages(const CommonOptions& common, const MaskOptions& options) {
    HostSession session(common);
    const TreeSet set = FindSet(session, options.set, Utf8FromPath(common.settings));
    const ZonwickLibrary& library = session.LibraryWith(set);
    const PageList pages = FindPages(options.pages);
    std::error_code error;
    fs::create_directories(options.out, error);
    if (!fs::is_directory(options.out)) {
        throw CommandError(ExitCode::kNothingDone, "the folder " + Utf8FromPath(options.out) + " cannot be made: " +
                                                       (error ? error.message() : "a file is in its place"));
    }
    return MaskRun(options, library, pages).Run();
}

}  // namespace zonhost

// Decoding and encoding take most of the time and run on worker threads, a few pages ahead and behind; the exports of
// the library are called on the main thread alone. It also takes the memory for each page, in the order of the pages.
#include "refhost/app/MaskRun.h"

#include <objbase.h>

#include <algorithm>
#include <deque>

#include "refhost/app/Console.h"
#include "refhost/app/Interrupt.h"
#include "refhost/app/PageFeed.h"

namespace zonhost {

namespace fs = std::filesystem;

namespace {

// Pages being encoded behind the main thread: enough to keep the workers busy.
constexpr size_t kBehind = 4;

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
    explicit MaskRun(const MaskJob& job)
        : m_job(job),
          m_setName(WideFromUtf8(job.options.set)),
          m_budget(job.options.memory << 20),
          m_progress(job.pages.files.size()),
          m_pool(WorkerCount(), WithCom),
          m_feed(
              job.pages.files, job.options.resolution,
              [this](size_t file, uint32_t frame, uint32_t frames) { return TargetOf(file, frame, frames); }, m_budget,
              m_pool) {}

    ExitCode Run() {
        for (const std::string& problem : m_job.pages.problems) Fail(problem);
        while (!Interrupted() && Step()) {
        }
        while (!m_saves.empty()) FinishSave();
        m_progress.End();
        return Conclude();
    }

private:
    struct Saved {
        bool done = false;
        std::string problem;
    };
    struct Save {
        MaskedImage masked;  // given back on the main thread
        uint64_t memory;
        bool endsFile;
        std::future<Saved> saved;
    };

    // One step of the main thread; false when nothing is left.
    bool Step() {
        if (m_feed.Advance()) return true;
        if (m_feed.HasPage()) {
            MaskPage(m_feed.Take());
        } else if (!m_saves.empty()) {
            FinishSave();
        } else {
            return m_feed.MakeRoom();
        }
        return true;
    }

    // Hands the masked frame on to be saved; a problem goes the same way, so that messages keep the order of the pages.
    void MaskPage(FedPage fed) {
        const std::string& page = fed.name;
        std::string problem = fed.frame.problem;
        if (problem.empty() && !fed.frame.image) return;  // interrupted before it was decoded
        MaskedImage masked;
        if (problem.empty()) {
            TellNotes(page, fed.frame.info);
            masked = m_job.library.Mask(fed.frame.image.get(), m_setName);
            if (!masked.block) problem = "could not be masked: " + ImagingProblem();
        }
        fed.frame.image.reset();
        const uint64_t kept = masked.block ? fed.imageBytes : 0;
        m_budget.Give(fed.memory - kept);
        auto save = [this, page, problem, target = fed.target.path, block = masked.block.get(),
                     length = masked.length] {
            if (!problem.empty()) return Saved{false, page + ": " + problem};
            return Interrupted() ? Saved{} : SavePage(page, target, block, length);
        };
        m_saves.push_back({std::move(masked), kept, fed.endsFile, m_pool.Do(std::move(save))});
        if (m_saves.size() > kBehind) FinishSave();
    }

    // What is worth knowing of a page that is masked.
    void TellNotes(const std::string& page, const HostImageInfo& info) {
        if (info.resolutionAssumed) {
            m_progress.Report(page + ": has no resolution, taken as " + std::to_string(int(info.dpiX)) +
                              " dpi; use --dpi to give it");
        }
        if (info.orientation > 1) {
            m_progress.Report(page + ": is stored turned (orientation " + std::to_string(info.orientation) +
                              "); masked and saved upright");
        }
    }

    Saved SavePage(const std::string& page, const fs::path& target, const BYTE* block, DWORD length) const {
        try {
            // Once more at the end: writing took its time.
            SaveBmpBlock(block, length, m_job.format, target, m_job.guard.Force(), [&] { m_job.guard.Check(target); });
        } catch (const std::exception& error) {
            return {false, page + ": " + error.what()};
        }
        return {true, {}};
    }

    PageTarget TargetOf(size_t file, uint32_t frame, uint32_t frames) const {
        PageTarget target{m_job.options.out / m_job.names.Name(file, frame, frames), {}};
        try {
            m_job.guard.Check(target.path);
        } catch (const CommandError& error) {
            target.problem = error.what();
        }
        return target;
    }

    void FinishSave() {
        Save save = std::move(m_saves.front());
        m_saves.pop_front();
        const Saved saved = save.saved.get();
        save.masked = {};
        m_budget.Give(save.memory);
        if (saved.done) {
            ++m_done;
        } else if (!saved.problem.empty()) {
            Fail(saved.problem);
        }
        if (save.endsFile && (saved.done || !saved.problem.empty())) m_progress.Advance();
    }

    void Fail(const std::string& problem) {
        ++m_failed;
        m_progress.Report("zonhost: " + problem);
    }

    ExitCode Conclude() const {
        const auto pages = [](size_t count) { return std::to_string(count) + (count == 1 ? " page" : " pages"); };
        if (m_done > 0) {
            Print(pages(m_done) + " masked by \"" + m_job.options.set + "\" in " + Utf8FromPath(m_job.options.out) +
                  "\n");
        }
        if (m_failed > 0) PrintError("zonhost: " + pages(m_failed) + " not masked\n");
        const size_t total = m_feed.Pages() + m_job.pages.problems.size();
        if (m_done + m_failed < total) {
            PrintError("zonhost: interrupted, " + std::to_string(m_done) + " of " + std::to_string(total) + " done\n");
            return ExitCode::kInterrupted;
        }
        if (m_failed == 0) return ExitCode::kDone;
        return m_done > 0 ? ExitCode::kSomePagesFailed : ExitCode::kNothingDone;
    }

    const MaskJob& m_job;
    const std::wstring m_setName;
    size_t m_done = 0;
    size_t m_failed = 0;
    MemoryBudget m_budget;
    std::deque<Save> m_saves;
    ProgressBar m_progress;
    // Last, and the threads are ended before what they use goes; what is decoded for nobody goes first.
    WorkerPool m_pool;
    PageFeed m_feed;
};

}  // namespace

ExitCode RunMask(const MaskJob& job) {
    const InterruptScope interrupt;
    return MaskRun(job).Run();
}

}  // namespace zonhost

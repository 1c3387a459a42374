// Decoding and encoding take most of the time and run on worker threads, a few pages ahead and behind; the exports of
// the library are called on the main thread alone. It also takes the memory for each page, in the order of the pages.
#include "refhost/app/MaskRun.h"

#include <objbase.h>

#include <algorithm>
#include <deque>
#include <system_error>

#include "refhost/app/Console.h"
#include "refhost/app/Interrupt.h"
#include "refhost/app/MemoryBudget.h"
#include "refhost/app/PageImages.h"
#include "refhost/app/WorkerPool.h"

namespace zonhost {

namespace fs = std::filesystem;

namespace {

// Files opened and pages decoded or encoded ahead of the main thread: enough to keep the workers busy.
constexpr size_t kAhead = 4;

void WithCom(const std::function<void()>& work) {
    const HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    work();
    if (SUCCEEDED(result)) CoUninitialize();
}

size_t WorkerCount() {
    return std::clamp<size_t>(std::thread::hardware_concurrency(), 2, 8);
}

uint64_t Mebibytes(uint64_t bytes) {
    return (bytes + (uint64_t{1} << 20) - 1) >> 20;
}

// Decoding holds the image and what it works with, masking the image and the masked one.
uint64_t MemoryOf(const HostFrameSize& size) {
    return size.imageBytes + std::max(size.workingBytes, size.imageBytes);
}

bool IsReady(const auto& future) {
    return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

class MaskRun {
public:
    explicit MaskRun(const MaskJob& job)
        : m_job(job),
          m_setName(WideFromUtf8(job.options.set)),
          m_total(job.pages.files.size() + job.pages.problems.size()),
          m_budget(job.options.memory << 20),
          m_progress(job.pages.files.size()),
          m_pool(WorkerCount(), WithCom) {}

    ExitCode Run() {
        for (const std::string& problem : m_job.pages.problems) Fail(problem);
        while (!Interrupted() && Step()) {
        }
        while (!m_saves.empty()) FinishSave();
        m_progress.End();
        return Conclude();
    }

private:
    struct Opened {
        std::shared_ptr<ImageFile> file;
        FrameSize first;
        std::string problem;
    };
    // A file that is opened ahead.
    struct Opening {
        size_t index;
        uint64_t memory;
        std::future<Opened> opened;
    };
    // The file whose pages are being decoded.
    struct Current {
        size_t index;
        uint64_t memory;
        std::shared_ptr<ImageFile> file;
        uint32_t count;
        uint32_t next;
        std::optional<FrameSize> size;  // of the next page; nothing while the one before is decoded
    };
    struct Decoded {
        LoadedFrame frame;
        FrameSize next;  // of the page behind it
    };
    struct Decoding {
        std::string page;
        fs::path target;
        uint64_t memory;      // of the page
        uint64_t imageBytes;  // that it keeps when it is masked
        uint64_t fileMemory;  // given back with the last page of a file
        bool endsFile;
        std::future<Decoded> decoded;
    };
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
        if (!m_waiting) OpenAhead();
        if (DecodeNext()) return true;
        if (!m_decoding.empty()) {
            MaskNext();
        } else if (!m_saves.empty()) {
            FinishSave();
        } else if (m_opening.size() + (m_current ? 1 : 0) > 1) {
            // What the page needs is held by files behind it alone.
            CloseLastAhead();
        } else {
            return m_current || !m_opening.empty() || m_next < m_job.pages.files.size();
        }
        return true;
    }

    void OpenAhead() {
        const std::vector<fs::path>& files = m_job.pages.files;
        while (m_next < files.size() && m_opening.size() < kAhead) {
            std::error_code error;
            const uintmax_t length = fs::file_size(files[m_next], error);
            const uint64_t memory = error ? 0 : length;
            std::string problem;
            if (!m_budget.CanEver(memory)) {
                problem = TooLarge(memory);
            } else if (!m_budget.Take(memory)) {
                return;
            }
            auto open = [path = files[m_next], problem] {
                Opened opened{nullptr, {}, problem};
                if (problem.empty() && !Interrupted()) opened.file = ImageFile::Open(path, opened.problem);
                if (opened.file) opened.first = opened.file->Size(0);
                return opened;
            };
            m_opening.push_back({m_next, problem.empty() ? memory : 0, m_pool.Do(std::move(open))});
            ++m_next;
        }
    }

    void CloseLastAhead() {
        m_opening.back().opened.get();
        m_budget.Give(m_opening.back().memory);
        m_opening.pop_back();
        --m_next;
    }

    // Whether there is a file with pages to decode, now.
    bool HasCurrent() {
        if (m_current) return true;
        if (m_opening.empty()) return false;
        Opening& front = m_opening.front();
        if (!m_decoding.empty() && !IsReady(front.opened)) return false;
        Opened opened = front.opened.get();
        m_current = {front.index, front.memory, opened.file, 1, 0, opened.first};
        m_opening.pop_front();
        if (m_current->file) {
            m_current->count = m_current->file->FrameCount();
            m_total += m_current->count - 1;
        } else {
            m_current->size->problem = opened.problem;
        }
        return true;
    }

    // Gives the next page to the workers; false when it has to wait.
    bool DecodeNext() {
        if (m_decoding.size() >= kAhead || !HasCurrent() || !m_current->size) return false;
        Current& current = *m_current;
        const uint32_t frame = current.next;
        const HostFrameSize& size = current.size->size;
        Decoding decoding{};
        decoding.page = Utf8FromPath(m_job.pages.files[current.index]);
        if (current.count > 1) decoding.page += ", page " + std::to_string(frame + 1);
        decoding.endsFile = frame + 1 == current.count;

        std::string problem = current.size->problem;
        const uint64_t memory = problem.empty() ? MemoryOf(size) : 0;
        if (problem.empty() && !m_budget.CanEver(memory + current.memory)) problem = TooLarge(memory + current.memory);
        if (problem.empty()) {
            m_waiting = !m_budget.Take(memory);
            if (m_waiting) return false;
            decoding.memory = memory;
            decoding.imageBytes = size.imageBytes;
            decoding.target = m_job.options.out / m_job.names.Name(current.index, frame, current.count);
            problem = TargetProblem(decoding.target);
        }
        decoding.decoded = m_pool.Do(
            [file = current.file, frame, count = current.count, problem, &resolution = m_job.options.resolution] {
                Decoded decoded;
                decoded.frame.problem = problem;
                if (Interrupted()) return decoded;
                if (problem.empty()) decoded.frame = file->Load(frame, resolution);
                if (frame + 1 < count) decoded.next = file->Size(frame + 1);
                return decoded;
            });
        if (decoding.endsFile) {
            decoding.fileMemory = current.memory;
            m_current.reset();
        } else {
            ++current.next;
            current.size.reset();
        }
        m_decoding.push_back(std::move(decoding));
        return true;
    }

    void MaskNext() {
        Decoding decoding = std::move(m_decoding.front());
        m_decoding.pop_front();
        Decoded decoded = decoding.decoded.get();
        if (Interrupted()) return;
        m_budget.Give(decoding.fileMemory);
        if (!decoding.endsFile) {
            m_current->size = std::move(decoded.next);
            DecodeNext();
        }
        MaskFrame(decoding, decoded.frame);
    }

    // Hands the masked frame on to be saved; a problem goes the same way, so that messages keep the order of the pages.
    void MaskFrame(const Decoding& decoding, LoadedFrame& loaded) {
        const std::string& page = decoding.page;
        std::string problem = loaded.problem;
        MaskedImage masked;
        if (problem.empty()) {
            TellNotes(page, loaded.info);
            masked = m_job.library.Mask(loaded.image.get(), m_setName);
            if (!masked.block) problem = "could not be masked: " + ImagingProblem();
        }
        loaded.image.reset();
        const uint64_t kept = masked.block ? decoding.imageBytes : 0;
        m_budget.Give(decoding.memory - kept);
        auto save = [this, page, problem, target = decoding.target, block = masked.block.get(),
                     length = masked.length] {
            if (!problem.empty()) return Saved{false, page + ": " + problem};
            return Interrupted() ? Saved{} : SavePage(page, target, block, length);
        };
        m_saves.push_back({std::move(masked), kept, decoding.endsFile, m_pool.Do(std::move(save))});
        if (m_saves.size() > kAhead) FinishSave();
    }

    // What is worth knowing of a page that is masked.
    void TellNotes(const std::string& page, const HostImageInfo& info) {
        if (info.resolutionAssumed) {
            m_progress.Report(page + ": has no resolution, taken as " + std::to_string(int(info.dpiX)) +
                              " dpi; use --dpi to give it");
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

    // Known before the work of decoding is done.
    std::string TargetProblem(const fs::path& target) const {
        try {
            m_job.guard.Check(target);
        } catch (const CommandError& error) {
            return error.what();
        }
        return {};
    }

    std::string TooLarge(uint64_t bytes) const {
        const std::string need = std::to_string(Mebibytes(bytes));
        return "needs " + need + " MiB of memory, more than the " + std::to_string(Mebibytes(m_budget.Limit())) +
               " MiB of --memory; give it --memory " + need + ", or scan at a lower resolution";
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
        if (m_done + m_failed < m_total) {
            PrintError("zonhost: interrupted, " + std::to_string(m_done) + " of " + std::to_string(m_total) +
                       " done\n");
            return ExitCode::kInterrupted;
        }
        if (m_failed == 0) return ExitCode::kDone;
        return m_done > 0 ? ExitCode::kSomePagesFailed : ExitCode::kNothingDone;
    }

    const MaskJob& m_job;
    const std::wstring m_setName;
    size_t m_total;  // pages, as far as they are known
    size_t m_done = 0;
    size_t m_failed = 0;
    size_t m_next = 0;       // file to be opened
    bool m_waiting = false;  // the next page, for memory: nothing is opened that would take more
    MemoryBudget m_budget;
    std::deque<Opening> m_opening;
    std::optional<Current> m_current;
    std::deque<Decoding> m_decoding;
    std::deque<Save> m_saves;
    ProgressBar m_progress;
    WorkerPool m_pool;  // last: its threads use the members above
};

}  // namespace

ExitCode RunMask(const MaskJob& job) {
    const InterruptScope interrupt;
    return MaskRun(job).Run();
}

}  // namespace zonhost

#pragma once
// The pages of a run, decoded a few ahead by worker threads in the memory that pages may take together. One thread asks
// for them; they come in the order of the files.

#include <deque>
#include <filesystem>
#include <functional>
#include <future>
#include <optional>
#include <string>
#include <vector>

#include "refhost/app/MemoryBudget.h"
#include "refhost/app/PageImages.h"
#include "refhost/app/WorkerPool.h"

namespace zonhost {

// Where a page is to go, or why it cannot: known before the work of decoding is done.
struct PageTarget {
    std::filesystem::path path;
    std::string problem;
};

struct FedPage {
    std::string name;
    PageTarget target;
    LoadedFrame frame;    // its problem is that of the target, too
    uint64_t memory;      // taken for the page: whoever has it gives it back
    uint64_t imageBytes;  // the part of it that a masked copy needs
    bool endsFile;
};

class PageFeed {
public:
    using TargetOf = std::function<PageTarget(size_t file, uint32_t frame, uint32_t frames)>;
    // All have to outlive it, the pool's tasks included.
    PageFeed(const std::vector<std::filesystem::path>& files, const std::optional<Resolution>& resolution,
             TargetOf targetOf, MemoryBudget& budget, WorkerPool& pool)
        : m_files(files),
          m_resolution(resolution),
          m_targetOf(std::move(targetOf)),
          m_budget(budget),
          m_pool(pool),
          m_pages(files.size()) {}

    // Gives one more page to the workers; false when the ones before have to be taken, or their memory given back.
    bool Advance();
    bool HasPage() const { return !m_decoding.empty(); }
    // The next page, when its decoding has ended.
    FedPage Take();
    // When no page is at work and none can be given to the workers: lets go of a file that was opened ahead. False when
    // there is none, as at the end.
    bool MakeRoom();
    // Pages, as far as they are known: of a file that is not open yet, one.
    size_t Pages() const { return m_pages; }

private:
    struct Opened {
        std::shared_ptr<ImageFile> file;
        FrameSize first;
        std::string problem;
    };
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
        FedPage page;
        uint64_t fileMemory;  // given back with the last page of a file
        std::future<Decoded> decoded;
    };

    void OpenAhead();
    bool HasCurrent();
    bool DecodeNext();
    std::future<Decoded> Decode(const std::string& problem) const;
    std::string TooLarge(uint64_t bytes) const;

    const std::vector<std::filesystem::path>& m_files;
    const std::optional<Resolution>& m_resolution;
    const TargetOf m_targetOf;
    MemoryBudget& m_budget;
    WorkerPool& m_pool;
    size_t m_pages;
    size_t m_next = 0;       // file to be opened
    bool m_waiting = false;  // the next page, for memory: nothing is opened that would take more
    std::deque<Opening> m_opening;
    std::optional<Current> m_current;
    std::deque<Decoding> m_decoding;
};

}  // namespace zonhost

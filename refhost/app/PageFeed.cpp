#include "refhost/app/PageFeed.h"

#include <algorithm>
#include <chrono>
#include <system_error>

#include "refhost/app/Interrupt.h"

namespace zonhost {

namespace fs = std::filesystem;

namespace {

// Files opened and pages decoded ahead: enough to keep the workers busy.
constexpr size_t kAhead = 4;

uint64_t Mebibytes(uint64_t bytes) {
    return (bytes + (uint64_t{1} << 20) - 1) >> 20;
}

// Decoding holds the image and what it works with; masking holds it, the imaging library's masked copy and the block
// that the library makes of this one.
uint64_t MemoryOf(const HostFrameSize& size) {
    return size.imageBytes + std::max(size.workingBytes, 2 * size.imageBytes);
}

bool IsReady(const auto& future) {
    return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

}  // namespace

bool PageFeed::Advance() {
    if (!m_waiting) OpenAhead();
    return DecodeNext();
}

bool PageFeed::MakeRoom() {
    // What the next page needs is held by files behind it alone.
    if (m_opening.empty()) return false;
    m_opening.back().opened.get();
    m_budget.Give(m_opening.back().memory);
    m_opening.pop_back();
    --m_next;
    return true;
}

void PageFeed::OpenAhead() {
    while (m_next < m_files.size() && m_opening.size() < kAhead) {
        std::error_code error;
        const uintmax_t length = fs::file_size(m_files[m_next], error);
        const uint64_t memory = error ? 0 : length;
        std::string problem;
        if (!m_budget.CanEver(memory)) {
            problem = TooLarge(memory);
        } else if (!m_budget.Take(memory)) {
            return;
        }
        auto open = [path = m_files[m_next], problem] {
            Opened opened{nullptr, {}, problem};
            if (problem.empty() && !Interrupted()) opened.file = ImageFile::Open(path, opened.problem);
            if (opened.file) opened.first = opened.file->Size(0);
            return opened;
        };
        m_opening.push_back({m_next, problem.empty() ? memory : 0, m_pool.Do(std::move(open))});
        ++m_next;
    }
}

// Whether there is a file with pages to decode, now.
bool PageFeed::HasCurrent() {
    if (m_current) return true;
    if (m_opening.empty()) return false;
    Opening& front = m_opening.front();
    if (!m_decoding.empty() && !IsReady(front.opened)) return false;
    Opened opened = front.opened.get();
    m_current = {front.index, front.memory, opened.file, 1, 0, opened.first};
    m_opening.pop_front();
    if (m_current->file) {
        m_current->count = m_current->file->FrameCount();
        m_pages += m_current->count - 1;
    } else {
        m_current->size->problem = opened.problem;
    }
    return true;
}

std::future<PageFeed::Decoded> PageFeed::Decode(const std::string& problem) const {
    return m_pool.Do([file = m_current->file, frame = m_current->next, count = m_current->count, problem,
                      &resolution = m_resolution] {
        Decoded decoded;
        decoded.frame.problem = problem;
        if (Interrupted()) return decoded;
        if (problem.empty()) decoded.frame = file->Load(frame, resolution);
        if (frame + 1 < count) decoded.next = file->Size(frame + 1);
        return decoded;
    });
}

bool PageFeed::DecodeNext() {
    if (m_decoding.size() >= kAhead || !HasCurrent() || !m_current->size) return false;
    Current& current = *m_current;
    std::string problem = current.size->problem;
    const uint64_t memory = problem.empty() ? MemoryOf(current.size->size) : 0;
    if (problem.empty() && !m_budget.CanEver(memory + current.memory)) problem = TooLarge(memory + current.memory);
    m_waiting = problem.empty() && !m_budget.Take(memory);
    if (m_waiting) return false;

    Decoding decoding{};
    FedPage& page = decoding.page;
    page.name = Utf8FromPath(m_files[current.index]);
    if (current.count > 1) page.name += ", page " + std::to_string(current.next + 1);
    page.endsFile = current.next + 1 == current.count;
    if (problem.empty()) {
        page.memory = memory;
        page.imageBytes = current.size->size.imageBytes;
        page.target = m_targetOf(current.index, current.next, current.count);
        problem = page.target.problem;
    }
    decoding.decoded = Decode(problem);
    if (page.endsFile) {
        decoding.fileMemory = current.memory;
        m_current.reset();
    } else {
        ++current.next;
        current.size.reset();
    }
    m_decoding.push_back(std::move(decoding));
    return true;
}

FedPage PageFeed::Take() {
    Decoding decoding = std::move(m_decoding.front());
    m_decoding.pop_front();
    Decoded decoded = decoding.decoded.get();
    decoding.decoded = {};  // with it goes the file
    m_budget.Give(decoding.fileMemory);
    decoding.page.frame = std::move(decoded.frame);
    if (!decoding.page.endsFile) {
        m_current->size = std::move(decoded.next);
        // At once, so that the workers decode it while this one is masked.
        DecodeNext();
    }
    return std::move(decoding.page);
}

std::string PageFeed::TooLarge(uint64_t bytes) const {
    const std::string need = std::to_string(Mebibytes(bytes));
    return "needs " + need + " MiB of memory, more than the " + std::to_string(Mebibytes(m_budget.Limit())) +
           " MiB of --memory; give it --memory " + need + ", or scan at a lower resolution";
}

}  // namespace zonhost

#pragma once
// Image handles.

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "refhost/imaging/Image.h"

namespace imaging {

// The live images. Handles are numbers that are never used again, so that a stale one is known as such.
class LiveImages {
public:
    void* Add(std::shared_ptr<const Image> image) {
        const std::lock_guard lock(m_mutex);
        m_last += 16;
        m_images.emplace(m_last, std::move(image));
        return reinterpret_cast<void*>(m_last);
    }
    std::shared_ptr<const Image> Find(void* handle) {
        const std::lock_guard lock(m_mutex);
        const auto found = m_images.find(reinterpret_cast<uintptr_t>(handle));
        if (found == m_images.end()) throw ImageError{L"this is no image of the imaging library, or it was released"};
        return found->second;
    }
    void Remove(void* handle) {
        std::shared_ptr<const Image> last;  // freed outside the lock
        const std::lock_guard lock(m_mutex);
        const auto found = m_images.find(reinterpret_cast<uintptr_t>(handle));
        if (found == m_images.end()) return;
        last = std::move(found->second);
        m_images.erase(found);
    }

private:
    std::mutex m_mutex;
    std::unordered_map<uintptr_t, std::shared_ptr<const Image>> m_images;
    uintptr_t m_last = 0;
};

}  // namespace imaging

#include <mutex>
#include <new>

#include "store/SystemMutex.h"

namespace {

uint64_t CurrentThread() {
    static thread_local char mark;
    return reinterpret_cast<uintptr_t>(&mark);
}

}  // namespace

CSystemMutex::CSystemMutex(const wchar_t*) noexcept : m_handle(new (std::nothrow) std::mutex) {}

CSystemMutex::~CSystemMutex() {
    delete static_cast<std::mutex*>(m_handle);
}

void CSystemMutex::Lock() noexcept {
    const auto self = CurrentThread();
    if (m_owner.load(std::memory_order_relaxed) == self) {
        ++m_depth;
        return;
    }
    if (m_handle != nullptr) static_cast<std::mutex*>(m_handle)->lock();
    m_owner.store(self, std::memory_order_relaxed);
    m_depth = 1;
}

void CSystemMutex::Unlock() noexcept {
    if (--m_depth > 0) return;
    m_owner.store(0, std::memory_order_relaxed);
    if (m_handle != nullptr) static_cast<std::mutex*>(m_handle)->unlock();
}

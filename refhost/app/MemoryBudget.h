#pragma once
// Bytes that pages at work share. One thread takes and gives back, in the order of the pages: so nobody waits for a
// page behind its own.

#include <cstdint>

namespace zonhost {

class MemoryBudget {
public:
    explicit MemoryBudget(uint64_t limit) : m_limit(limit) {}
    uint64_t Limit() const { return m_limit; }
    bool CanEver(uint64_t bytes) const { return bytes <= m_limit; }
    // False when it has to wait until others give back.
    bool Take(uint64_t bytes) {
        if (bytes > m_limit - m_taken) return false;
        m_taken += bytes;
        return true;
    }
    void Give(uint64_t bytes) { m_taken -= bytes; }

private:
    const uint64_t m_limit;
    uint64_t m_taken = 0;
};

}  // namespace zonhost

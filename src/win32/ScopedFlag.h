#pragma once

namespace win32 {

// Gives a flag a value for its own life and the opposite one afterwards, also when something is thrown.
class ScopedFlag {
public:
    explicit ScopedFlag(bool& flag, bool during = true) : m_flag(flag), m_after(!during) { m_flag = during; }
    ~ScopedFlag() { m_flag = m_after; }
    ScopedFlag(const ScopedFlag&) = delete;
    ScopedFlag& operator=(const ScopedFlag&) = delete;

private:
    bool& m_flag;
    bool m_after;
};

}  // namespace win32

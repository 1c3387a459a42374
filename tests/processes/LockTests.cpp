// The lock between processes: nothing that was counted under it is lost, and nobody waits for ever.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "processes/Process.h"
#include "store/AreaSetManager.h"

namespace test {
namespace {

constexpr wchar_t kMapping[] = L"ZonwickProcessTestCounter";
constexpr int kProcesses = 4;

// A plain number in memory that all processes share; only the lock guards it.
class SharedCounter {
public:
    SharedCounter()
        : m_mapping(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, kMapping)),
          m_value(static_cast<volatile LONG*>(MapViewOfFile(m_mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0))) {}
    ~SharedCounter() {
        UnmapViewOfFile(const_cast<LONG*>(m_value));
        CloseHandle(m_mapping);
    }
    SharedCounter(const SharedCounter&) = delete;
    SharedCounter& operator=(const SharedCounter&) = delete;

    volatile LONG& Value() { return *m_value; }

private:
    HANDLE m_mapping;
    volatile LONG* m_value;
};

TEST(LockBetweenProcesses, LosesNoUpdate) {
    const int rounds = std::getenv("ZONWICK_TEST_LONG") != nullptr ? 12500 : 1000;
    SharedCounter counter;
    ASSERT_EQ(counter.Value(), 0);
    {
        std::unique_ptr<Process> processes[kProcesses];
        for (auto& process : processes)
            process = std::make_unique<Process>(L"CountUnderTheLock", std::to_wstring(rounds));
        // Far more than it takes; a deadlock is a failure and no hang.
        for (auto& process : processes) EXPECT_EQ(process->ExitCode(240000), 0u);
    }
    EXPECT_EQ(counter.Value(), rounds * kProcesses);
    std::printf("%d processes, %d nested operations\n", kProcesses, rounds * kProcesses * 2);
}

TEST(Job, CountUnderTheLock) {
    std::wstring words;
    if (!JobWords(L"CountUnderTheLock", words)) GTEST_SKIP();
    SharedCounter counter;
    CAreaSetManager manager([]() -> SettingsNodePtr { return nullptr; });
    for (int round = std::stoi(words); round > 0; --round) {
        const CSystemLock lock = manager.Lock();
        const LONG before = counter.Value();
        // Both take the lock again, more than once.
        const uint32_t id = static_cast<uint32_t>(manager.AddSet(L"nested", 0) + 1);
        counter.Value() = before + 1;
        ASSERT_TRUE(manager.RemoveSet(manager.GetAreaSet(static_cast<int32_t>(id) - 1)->GetID()));
    }
}

}  // namespace
}  // namespace test

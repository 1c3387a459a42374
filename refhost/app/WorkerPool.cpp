#include "refhost/app/WorkerPool.h"

namespace zonhost {

WorkerPool::WorkerPool(size_t threads, const std::function<void(const std::function<void()>&)>& around) {
    for (size_t i = 0; i < threads; ++i) {
        m_threads.emplace_back([this, around] {
            const std::function<void()> work = [this] { Work(); };
            if (around) {
                around(work);
            } else {
                work();
            }
        });
    }
}

WorkerPool::~WorkerPool() {
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_wake.notify_all();
    for (std::thread& thread : m_threads) thread.join();
}

void WorkerPool::Add(std::function<void()> task) {
    {
        const std::lock_guard lock(m_mutex);
        m_tasks.push_back(std::move(task));
    }
    m_wake.notify_one();
}

void WorkerPool::Work() {
    for (;;) {
        std::unique_lock lock(m_mutex);
        m_wake.wait(lock, [this] { return m_ending || !m_tasks.empty(); });
        if (m_tasks.empty()) return;
        const std::function<void()> task = std::move(m_tasks.front());
        m_tasks.pop_front();
        lock.unlock();
        task();
    }
}

}  // namespace zonhost

#pragma once
// A few threads that do tasks in the order in which they were given.

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace zonhost {

class WorkerPool {
public:
    // `around` runs once on each thread and calls its argument to work: the place for what a thread needs set up.
    explicit WorkerPool(size_t threads, const std::function<void(const std::function<void()>&)>& around = {});
    // Finishes what was given.
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    // The future gives the task's result or its exception.
    template <typename Task>
    std::future<std::invoke_result_t<Task>> Do(Task task) {
        auto packaged = std::make_shared<std::packaged_task<std::invoke_result_t<Task>()>>(std::move(task));
        auto future = packaged->get_future();
        Add([packaged] { (*packaged)(); });
        return future;
    }

private:
    void Add(std::function<void()> task);
    void Work();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_tasks;
    bool m_ending = false;
    std::vector<std::thread> m_threads;
};

}  // namespace zonhost

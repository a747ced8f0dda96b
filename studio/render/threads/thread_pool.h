#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace tavora::studio {

/// Threads that stay at hand for work. One thread per worker; a worker never changes threads,
/// so that what belongs to a worker (its module copy, its samplers) needs no lock. All
/// members are called by one thread, the owner's, which does no work itself.
class ThreadPool {
  public:
    /// `workers` of 1 and more; 0: one a core. Throws std::system_error.
    explicit ThreadPool(std::size_t workers);
    /// Joins its threads.
    ~ThreadPool();
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    std::size_t size() const { return threads_.size(); }

    /// Runs `body(worker)` once on each worker. Returns when all are done, and rethrows the
    /// first exception then.
    void forEachWorker(const std::function<void(std::size_t worker)>& body);

    /// Runs `body(worker, index)` for the indices 0 .. count - 1, each once, in no particular
    /// order. If `proceed` is given, calls `proceed(done)` at least every 50 milliseconds and at
    /// the end, on the calling thread; when that returns false, no further index is begun.
    /// Returns whether all indices were done. Rethrows the first exception of either, once
    /// all workers have ended.
    bool parallelFor(std::size_t count,
                     const std::function<void(std::size_t worker, std::size_t index)>& body,
                     const std::function<bool(std::size_t done)>& proceed = {});

  private:
    void start(const std::function<void(std::size_t)>& body);
    void stop();
    void serve(std::size_t worker);

    std::mutex mutex_;
    std::condition_variable started_;
    std::condition_variable done_;
    const std::function<void(std::size_t)>* body_ = nullptr;
    std::uint64_t round_ = 0;
    std::size_t busy_ = 0;
    bool isEnding_ = false;
    std::exception_ptr error_;
    std::vector<std::jthread> threads_;  ///< last: they use the rest
};

}  // namespace tavora::studio

#include "studio/render/threads/thread_pool.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <utility>

namespace tavora::studio {
namespace {

constexpr std::chrono::milliseconds kProceedInterval{50};

}  // namespace

ThreadPool::ThreadPool(std::size_t workers) {
    if (workers == 0) workers = std::max<std::size_t>(std::thread::hardware_concurrency(), 1);
    try {
        threads_.reserve(workers);
        for (std::size_t worker = 0; worker < workers; ++worker)
            threads_.emplace_back([this, worker] { serve(worker); });
    } catch (...) {
        stop();
        throw;
    }
}

ThreadPool::~ThreadPool() {
    stop();
}

void ThreadPool::stop() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    started_.notify_all();
}

void ThreadPool::start(const std::function<void(std::size_t)>& body) {
    {
        const std::lock_guard lock(mutex_);
        body_ = &body;
        ++round_;
        busy_ = threads_.size();
    }
    started_.notify_all();
}

void ThreadPool::serve(std::size_t worker) {
    std::unique_lock lock(mutex_);
    for (std::uint64_t round = 0;;) {
        started_.wait(lock, [&] { return isEnding_ || round_ != round; });
        if (isEnding_) return;
        round = round_;
        const auto* body = body_;
        lock.unlock();
        std::exception_ptr error;
        try {
            (*body)(worker);
        } catch (...) {
            error = std::current_exception();
        }
        lock.lock();
        if (error && !error_) error_ = error;
        if (--busy_ == 0) done_.notify_one();
    }
}

void ThreadPool::forEachWorker(const std::function<void(std::size_t worker)>& body) {
    start(body);
    std::unique_lock lock(mutex_);
    done_.wait(lock, [this] { return busy_ == 0; });
    if (error_) std::rethrow_exception(std::exchange(error_, nullptr));
}

bool ThreadPool::parallelFor(std::size_t count,
                             const std::function<void(std::size_t worker, std::size_t index)>& body,
                             const std::function<bool(std::size_t done)>& proceed) {
    std::atomic<std::size_t> next{0};
    std::atomic<std::size_t> done{0};
    std::atomic<bool> isStopped{false};
    std::exception_ptr refusal;
    const std::function<void(std::size_t)> work = [&](std::size_t worker) {
        try {
            while (!isStopped) {
                const std::size_t index = next.fetch_add(1);
                if (index >= count) break;
                body(worker, index);
                ++done;
            }
        } catch (...) {
            isStopped = true;
            throw;
        }
    };
    const auto mayProceed = [&] {
        if (!proceed || isStopped) return;
        try {
            if (!proceed(done)) isStopped = true;
        } catch (...) {
            refusal = std::current_exception();
            isStopped = true;
        }
    };
    start(work);
    std::unique_lock lock(mutex_);
    while (!done_.wait_for(lock, kProceedInterval, [this] { return busy_ == 0; })) {
        lock.unlock();
        mayProceed();
        lock.lock();
    }
    const std::exception_ptr error = std::exchange(error_, nullptr);
    lock.unlock();
    if (!error) mayProceed();
    if (error) std::rethrow_exception(error);
    if (refusal) std::rethrow_exception(refusal);
    return done == count;
}

}  // namespace tavora::studio

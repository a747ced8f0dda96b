#include "studio/render/lanes.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>

namespace tavora::studio {
namespace {

constexpr std::chrono::milliseconds kWatchInterval{50};

/// What the threads share.
class Crew {
  public:
    Crew(std::size_t lanes, std::size_t jobs) : working_(lanes), jobs_(jobs) {}

    void work(std::size_t lane, const std::function<void(std::size_t, std::size_t)>& job) {
        try {
            for (;;) {
                const std::size_t next = next_.fetch_add(1);
                if (next >= jobs_ || stopped_) break;
                job(lane, next);
                ++done_;
            }
        } catch (...) {
            fail(std::current_exception());
        }
        leave();
    }

    /// Returns when no thread works any more. The last report counts all jobs
    /// that were done.
    void watch(const std::function<bool(std::size_t)>& report) {
        std::unique_lock lock(mutex_);
        for (bool working = true; working;) {
            changed_.wait_for(lock, kWatchInterval, [this] { return working_ == 0; });
            working = working_ > 0;
            lock.unlock();
            callWatch(report, done_);
            lock.lock();
        }
    }

    void rethrow() const {
        if (error_) std::rethrow_exception(error_);
    }

    bool allDone() const { return done_ == jobs_; }

  private:
    void leave() {
        const std::lock_guard lock(mutex_);
        --working_;
        changed_.notify_one();
    }

    void fail(const std::exception_ptr& error) {
        const std::lock_guard lock(mutex_);
        if (!error_) error_ = error;
        stopped_ = true;
    }

    void callWatch(const std::function<bool(std::size_t)>& report, std::size_t done) {
        if (stopped_) return;
        try {
            if (!report(done)) stopped_ = true;
        } catch (...) {
            fail(std::current_exception());
        }
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t working_;
    std::atomic<std::size_t> done_{0};
    const std::size_t jobs_;
    std::exception_ptr error_;
    std::atomic<std::size_t> next_{0};
    std::atomic<bool> stopped_{false};
};

}  // namespace

bool runLanes(LaneTeam& team, std::size_t jobs,
              const std::function<void(std::size_t lane, std::size_t job)>& work,
              const std::function<bool(std::size_t done)>& watch) {
    Crew crew(team.size() - 1, jobs);
    team.run([&](std::size_t lane) {
        if (lane == 0) {
            crew.watch(watch);
        } else {
            crew.work(lane - 1, work);
        }
    });
    crew.rethrow();
    return crew.allDone();
}

}  // namespace tavora::studio

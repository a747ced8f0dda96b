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

/// Threads that stay at hand for work in short turns; lane 0 is whoever calls.
/// One thread, always the same, uses it.
class LaneTeam {
  public:
    /// `lanes` of 1 and more, the caller's included. Throws std::system_error.
    explicit LaneTeam(std::size_t lanes);
    /// Joins its threads.
    ~LaneTeam();
    LaneTeam(const LaneTeam&) = delete;
    LaneTeam& operator=(const LaneTeam&) = delete;

    std::size_t size() const { return threads_.size() + 1; }

    /// Runs `work(lane)` once on each lane and returns when all are done.
    /// Rethrows the first exception after that.
    void run(const std::function<void(std::size_t lane)>& work);

  private:
    void dismiss();
    void serve(std::size_t lane);
    void workOn(const std::function<void(std::size_t)>& work, std::size_t lane);

    std::mutex mutex_;
    std::condition_variable called_;
    std::condition_variable done_;
    const std::function<void(std::size_t)>* work_ = nullptr;
    std::uint64_t turn_ = 0;
    std::size_t busy_ = 0;  ///< lanes but the caller's
    bool ending_ = false;
    std::exception_ptr error_;
    std::vector<std::jthread> threads_;  ///< last: they use the rest
};

}  // namespace tavora::studio

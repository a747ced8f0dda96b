#include "studio/render/lane_team.h"

#include <utility>

namespace tavora::studio {

LaneTeam::LaneTeam(std::size_t lanes) {
    try {
        threads_.reserve(lanes - 1);
        for (std::size_t lane = 1; lane < lanes; ++lane)
            threads_.emplace_back([this, lane] { serve(lane); });
    } catch (...) {
        dismiss();
        throw;
    }
}

LaneTeam::~LaneTeam() {
    dismiss();
}

void LaneTeam::dismiss() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    called_.notify_all();
}

void LaneTeam::run(const std::function<void(std::size_t lane)>& work) {
    {
        const std::lock_guard lock(mutex_);
        work_ = &work;
        ++turn_;
        busy_ = threads_.size();
    }
    called_.notify_all();
    workOn(work, 0);
    std::unique_lock lock(mutex_);
    done_.wait(lock, [this] { return busy_ == 0; });
    if (error_) std::rethrow_exception(std::exchange(error_, nullptr));
}

void LaneTeam::serve(std::size_t lane) {
    std::unique_lock lock(mutex_);
    for (std::uint64_t turn = 0;;) {
        called_.wait(lock, [&] { return ending_ || turn_ != turn; });
        if (ending_) return;
        turn = turn_;
        const auto* work = work_;
        lock.unlock();
        workOn(*work, lane);
        lock.lock();
        if (--busy_ == 0) done_.notify_one();
    }
}

void LaneTeam::workOn(const std::function<void(std::size_t)>& work, std::size_t lane) {
    try {
        work(lane);
    } catch (...) {
        const std::lock_guard lock(mutex_);
        if (!error_) error_ = std::current_exception();
    }
}

}  // namespace tavora::studio

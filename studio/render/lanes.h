#pragma once

#include <cstddef>
#include <functional>

#include "studio/render/lane_team.h"

namespace tavora::studio {

/// Runs `work(lane, job)` for every job 0 .. jobs - 1 on the team's lanes but the
/// caller's, counted from 0, each job once, in no particular order. Whenever jobs
/// are done, and at least now and then, calls `watch(done)` on the calling thread;
/// when that returns false, no further job is begun. Returns whether all jobs were
/// done. Rethrows the first exception of a job or of `watch`, after all lanes ended.
bool runLanes(LaneTeam& team, std::size_t jobs,
              const std::function<void(std::size_t lane, std::size_t job)>& work,
              const std::function<bool(std::size_t done)>& watch);

}  // namespace tavora::studio

#pragma once

#include "host/types.h"

namespace tavora {

/// The module's one mutex object, or null: made by the `Init` of any record,
/// gone with the `Cleanup` of any record. Evaluations hold its mutex 0.
extern HostMutexId mtid;

/// Time in seconds that the host last gave for any record; light queries use it.
extern double currentTime;

/// Before the samples of a pass: finds out whether the record changes
/// transparency and replaces the mutex object. A mutex that cannot be made is
/// reported to the user and evaluation goes on without. Always returns null.
/// One thread at a time, no evaluation running.
HostError Init(HostInstance instance, int renderMode);

/// Takes the time of a new frame. Always returns null. Called like Init().
HostError NewTime(HostInstance instance, int frame, double seconds);

/// After the samples of a pass: destroys the mutex object. Called like Init().
void Cleanup(HostInstance instance);

}  // namespace tavora

#pragma once

#include <functional>

#include "host/types.h"

namespace tavora::studio {

/// Is called when a module reports that it changed one of its instances on this thread.
using InstanceListener = std::function<void(const char* className, HostInstance instance)>;

/// Replaces the listener of the calling thread; an empty one removes it.
void setInstanceListener(InstanceListener listener);

}  // namespace tavora::studio

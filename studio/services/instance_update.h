#pragma once

#include <functional>

#include "host/types.h"

namespace tavora::studio {

/// Hears that a module changed one of its instances. Interface thread.
using InstanceListener = std::function<void(const char* className, HostInstance instance)>;

/// Replaces the listener; an empty one ends listening. Interface thread.
void setInstanceListener(InstanceListener listener);

}  // namespace tavora::studio

#include <array>
#include <new>

#include "studio/services/held_mutex.h"
#include "studio/services/service_tables.h"

struct HostMutex {
    std::array<tavora::studio::HeldMutex, HOST_MUTEXES_PER_OBJECT> mutexes;
};

namespace tavora::studio {
namespace {

HostMutexId create() {
    return new (std::nothrow) HostMutex;
}

void destroy(HostMutexId object) {
    delete object;
}

HeldMutex* find(HostMutexId object, int number) {
    if (object == nullptr || number < 0 || number >= HOST_MUTEXES_PER_OBJECT) return nullptr;
    return &object->mutexes[static_cast<std::size_t>(number)];
}

int lock(HostMutexId object, int number) {
    HeldMutex* mutex = find(object, number);
    if (mutex == nullptr) return 0;
    mutex->lock();
    return 1;
}

int unlock(HostMutexId object, int number) {
    HeldMutex* mutex = find(object, number);
    return mutex != nullptr && mutex->unlock() ? 1 : 0;
}

}  // namespace

const HostMultithreading kMultithreading = {create, destroy, lock, unlock};

}  // namespace tavora::studio

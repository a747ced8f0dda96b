#include <array>
#include <new>
#include <pthread.h>

#include "studio/services/service_tables.h"

/// pthread mutexes, because unlocking one that the thread does not hold is an
/// error there and undefined for std::recursive_mutex.
struct HostMutex {
    std::array<pthread_mutex_t, HOST_MUTEXES_PER_OBJECT> mutexes;
};

namespace tavora::studio {
namespace {

HostMutexId create() {
    auto* object = new (std::nothrow) HostMutex;
    if (object == nullptr) return nullptr;
    pthread_mutexattr_t recursive;
    pthread_mutexattr_init(&recursive);
    pthread_mutexattr_settype(&recursive, PTHREAD_MUTEX_RECURSIVE);
    for (pthread_mutex_t& mutex : object->mutexes)
        pthread_mutex_init(&mutex, &recursive);
    pthread_mutexattr_destroy(&recursive);
    return object;
}

void destroy(HostMutexId object) {
    if (object == nullptr) return;
    for (pthread_mutex_t& mutex : object->mutexes)
        pthread_mutex_destroy(&mutex);
    delete object;
}

pthread_mutex_t* find(HostMutexId object, int number) {
    if (object == nullptr || number < 0 || number >= HOST_MUTEXES_PER_OBJECT) return nullptr;
    return &object->mutexes[static_cast<std::size_t>(number)];
}

int lock(HostMutexId object, int number) {
    pthread_mutex_t* mutex = find(object, number);
    return mutex != nullptr && pthread_mutex_lock(mutex) == 0 ? 1 : 0;
}

int unlock(HostMutexId object, int number) {
    pthread_mutex_t* mutex = find(object, number);
    return mutex != nullptr && pthread_mutex_unlock(mutex) == 0 ? 1 : 0;
}

}  // namespace

const HostMultithreading kMultithreading = {create, destroy, lock, unlock};

}  // namespace tavora::studio

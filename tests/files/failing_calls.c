// Preloaded into a program under test: writes down the calls that it makes on files below
// one folder, and lets one of them fail.
//
//   FAILING_CALLS_BELOW  the folder, absolute and without links; without it nothing happens
//   FAILING_CALLS_LOG    where a line for each call goes: its name, then the file
//   FAILING_CALLS_AT     which call goes wrong, from 1 on
//   FAILING_CALLS_HOW    in what way: an error number; a signal's, negative, which arrives
//                        before the call is made; "short": one byte is read or written;
//                        "other": the bytes read are changed
//   FAILING_CALLS_THREAD from which thread on all are refused, from 1 on; needs no folder

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <pthread.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

enum how { RIGHT, SHORT, OTHER };

// The system's function under the name of the one that stands in for it.
#define NEXT(function) ((__typeof__(&(function)))dlsym(RTLD_NEXT, #function))

static void note(const char* call, const char* file) {
    const char* log = getenv("FAILING_CALLS_LOG");
    if (log == NULL) return;
    char line[PATH_MAX + 32];
    const int length = snprintf(line, sizeof line, "%s %s\n", call, file);
    const long descriptor = syscall(SYS_open, log, O_WRONLY | O_APPEND | O_CREAT, 0666);
    syscall(SYS_write, descriptor, line, length);
    syscall(SYS_close, descriptor);
}

static int below(const char* file) {
    const char* folder = getenv("FAILING_CALLS_BELOW");
    return folder != NULL && strncmp(file, folder, strlen(folder)) == 0;
}

static int fate(const char* call, const char* file) {
    static int calls = 0;
    if (!below(file)) return RIGHT;
    note(call, file);
    const char* at = getenv("FAILING_CALLS_AT");
    const char* how = getenv("FAILING_CALLS_HOW");
    if (++calls != (at == NULL ? 0 : atoi(at)) || how == NULL) return RIGHT;
    if (strcmp(how, "short") == 0) return SHORT;
    if (strcmp(how, "other") == 0) return OTHER;
    const int number = atoi(how);
    if (number < 0) {
        raise(-number);
        return RIGHT;
    }
    errno = number;
    return -1;
}

static int fateOfOpen(const char* call, int descriptor) {
    char link[64];
    char file[PATH_MAX];
    snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
    const ssize_t length = readlink(link, file, sizeof file - 1);
    if (length < 0) return RIGHT;
    file[length] = '\0';
    return fate(call, file);
}

int open(const char* file, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    if (fate((flags & O_EXCL) != 0 ? "create" : "open", file) < 0) return -1;
    return NEXT(open)(file, flags, mode);
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
    const int how = fateOfOpen("write", descriptor);
    if (how < 0) return -1;
    return NEXT(write)(descriptor, bytes, how == SHORT && size > 1 ? 1 : size);
}

ssize_t pread(int descriptor, void* bytes, size_t size, off_t offset) {
    const int how = fateOfOpen("pread", descriptor);
    if (how < 0) return -1;
    const ssize_t got = NEXT(pread)(descriptor, bytes, how == SHORT && size > 1 ? 1 : size, offset);
    if (how == OTHER && got > 0) ((char*)bytes)[got - 1] ^= 1;
    return got;
}

#define REPLACE(call, parameters, ...)                                           \
    int call parameters {                                                        \
        return fateOfOpen(#call, descriptor) < 0 ? -1 : NEXT(call)(__VA_ARGS__); \
    }
REPLACE(fsync, (int descriptor), descriptor)
REPLACE(flock, (int descriptor, int operation), descriptor, operation)
REPLACE(fchmod, (int descriptor, mode_t mode), descriptor, mode)

// As on Linux: whatever closing says, the number is free afterwards.
int close(int descriptor) {
    const int how = fateOfOpen("close", descriptor);
    const int error = errno;
    const int closed = NEXT(close)(descriptor);
    if (how < 0) errno = error;
    return how < 0 ? -1 : closed;
}

int rename(const char* from, const char* to) {
    return fate("rename", to) < 0 ? -1 : NEXT(rename)(from, to);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                   void* argument) {
    static int threads = 0;
    const char* refused = getenv("FAILING_CALLS_THREAD");
    if (refused != NULL && ++threads >= atoi(refused)) return EAGAIN;
    return NEXT(pthread_create)(thread, attributes, start, argument);
}

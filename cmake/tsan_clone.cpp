// Only in builds with the thread sanitizer. QProcess starts a child by clone() with the parent's
// memory, as vfork() does. The sanitizer's own clone() takes that child for a copy of the process
// and marks the program's other threads as dead, in the memory of the program itself; from then on
// it reports races where there are none. This one goes past it: the thread that starts the child
// waits until the child runs its program, so that nothing escapes the sanitizer.

#include <cstdarg>
#include <sys/types.h>

extern "C" int __clone(int (*function)(void*), void* stack, int flags, void* argument, ...);

extern "C" int clone(int (*function)(void*), void* stack, int flags, void* argument, ...) {
    std::va_list rest;
    va_start(rest, argument);
    auto* parentTid = va_arg(rest, pid_t*);
    auto* tls = va_arg(rest, void*);
    auto* childTid = va_arg(rest, pid_t*);
    va_end(rest);
    return __clone(function, stack, flags, argument, parentTid, tls, childTid);
}

/* Loaded before the other libraries by scripts/laboratory: makes calls fail or never return, and time fly.
 *
 *   LAB_HANG=TEXT     opening a file whose path contains TEXT never returns
 *   LAB_EIO=TEXT      reading such a file fails
 *   LAB_ENOSPC=TEXT   writing to such a file fails
 *   LAB_NO_THREADS=1  no thread can be made
 *   LAB_WHILE=FILE    all of that only while FILE exists
 *   LAB_PASSWD=HOME   every user's home in the list of users
 *   LAB_SPEED=N       clocks and waits run N times as fast, from LAB_REALTIME and LAB_MONOTONIC (seconds) on
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <pwd.h>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#define NEXT(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))
#define BILLION 1000000000LL

enum { CANNOT_READ = 1, CANNOT_WRITE = 2, MOST_FILES = 4096 };
static char broken[MOST_FILES]; /* by descriptor */

static int isMeant(const char *variable, const char *path)
{
    const char *text = getenv(variable);
    const char *file = getenv("LAB_WHILE");
    struct stat status;
    return text && strstr(path, text) && (!file || stat(file, &status) == 0);
}

static int opened(int descriptor, const char *path)
{
    if (descriptor >= 0 && descriptor < MOST_FILES)
        broken[descriptor] = (isMeant("LAB_EIO", path) ? CANNOT_READ : 0)
            | (isMeant("LAB_ENOSPC", path) ? CANNOT_WRITE : 0);
    return descriptor;
}

static void hang(const char *path)
{
    if (isMeant("LAB_HANG", path))
        for (;;)
            pause();
}

static mode_t modeOf(int flags, va_list rest)
{
    return flags & (O_CREAT | __O_TMPFILE) ? va_arg(rest, mode_t) : 0;
}

#define OPEN(name)                                              \
    int name(const char *path, int flags, ...)                  \
    {                                                           \
        va_list rest;                                           \
        va_start(rest, flags);                                  \
        const mode_t mode = modeOf(flags, rest);                \
        va_end(rest);                                           \
        hang(path);                                             \
        return opened(NEXT(name)(path, flags, mode), path);     \
    }
OPEN(open)
OPEN(open64)

#define OPENAT(name)                                                \
    int name(int folder, const char *path, int flags, ...)          \
    {                                                               \
        va_list rest;                                               \
        va_start(rest, flags);                                      \
        const mode_t mode = modeOf(flags, rest);                    \
        va_end(rest);                                               \
        hang(path);                                                 \
        return opened(NEXT(name)(folder, path, flags, mode), path); \
    }
OPENAT(openat)
OPENAT(openat64)

static int isBroken(int descriptor, int how)
{
    return descriptor >= 0 && descriptor < MOST_FILES && (broken[descriptor] & how);
}

ssize_t read(int descriptor, void *bytes, size_t size)
{
    if (!isBroken(descriptor, CANNOT_READ))
        return NEXT(read)(descriptor, bytes, size);
    errno = EIO;
    return -1;
}

ssize_t write(int descriptor, const void *bytes, size_t size)
{
    if (!isBroken(descriptor, CANNOT_WRITE))
        return NEXT(write)(descriptor, bytes, size);
    errno = ENOSPC;
    return -1;
}

int close(int descriptor)
{
    opened(descriptor, "");
    return NEXT(close)(descriptor);
}

int pthread_create(pthread_t *thread, const pthread_attr_t *attributes, void *(*run)(void *), void *argument)
{
    return isMeant("LAB_NO_THREADS", "1") ? EAGAIN : NEXT(pthread_create)(thread, attributes, run, argument);
}

int getpwuid_r(uid_t user, struct passwd *entry, char *buffer, size_t size, struct passwd **result)
{
    const int status = NEXT(getpwuid_r)(user, entry, buffer, size, result);
    if (status == 0 && *result && getenv("LAB_PASSWD"))
        entry->pw_dir = getenv("LAB_PASSWD");
    return status;
}

struct passwd *getpwuid(uid_t user)
{
    struct passwd *entry = NEXT(getpwuid)(user);
    if (entry && getenv("LAB_PASSWD"))
        entry->pw_dir = getenv("LAB_PASSWD");
    return entry;
}

static long long speed(void)
{
    const char *text = getenv("LAB_SPEED");
    return text ? atoll(text) : 1;
}

static long long start(clockid_t clock)
{
    const int sinceEpoch = clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE;
    const char *text = getenv(sinceEpoch ? "LAB_REALTIME" : "LAB_MONOTONIC");
    return text ? atoll(text) * BILLION : 0;
}

static struct timespec moved(struct timespec time, long long from, long long numerator, long long denominator)
{
    const long long passed = time.tv_sec * BILLION + time.tv_nsec - from;
    const long long result = from + passed * numerator / denominator;
    return (struct timespec){.tv_sec = result / BILLION, .tv_nsec = result % BILLION};
}

int clock_gettime(clockid_t clock, struct timespec *time)
{
    static __typeof__(&clock_gettime) next;
    if (!next)
        next = NEXT(clock_gettime);
    const int status = next(clock, time);
    const int isWall = clock == CLOCK_REALTIME || clock == CLOCK_MONOTONIC || clock == CLOCK_REALTIME_COARSE
        || clock == CLOCK_MONOTONIC_COARSE || clock == CLOCK_BOOTTIME;
    if (status == 0 && isWall && speed() > 1)
        *time = moved(*time, start(clock), speed(), 1);
    return status;
}

int poll(struct pollfd *files, nfds_t count, int milliseconds)
{
    return NEXT(poll)(files, count, milliseconds > 0 ? (int)((milliseconds + speed() - 1) / speed()) : milliseconds);
}

int ppoll(struct pollfd *files, nfds_t count, const struct timespec *longest, const sigset_t *signals)
{
    struct timespec shorter;
    if (longest)
        shorter = moved(*longest, 0, 1, speed());
    return NEXT(ppoll)(files, count, longest ? &shorter : NULL, signals);
}

int pthread_cond_clockwait(pthread_cond_t *condition, pthread_mutex_t *mutex, clockid_t clock,
                           const struct timespec *until)
{
    const struct timespec real = moved(*until, start(clock), 1, speed());
    return NEXT(pthread_cond_clockwait)(condition, mutex, clock, &real);
}

int pthread_cond_timedwait(pthread_cond_t *condition, pthread_mutex_t *mutex, const struct timespec *until)
{
    /* Only the condition knows which clock is meant; times since 1970 are far above those since the start. */
    const clockid_t clock = until->tv_sec > BILLION ? CLOCK_REALTIME : CLOCK_MONOTONIC;
    const struct timespec real = moved(*until, start(clock), 1, speed());
    return NEXT(pthread_cond_timedwait)(condition, mutex, &real);
}

// A library to be preloaded that stops a program, or makes a call fail, at a chosen file-system
// call. Only calls that have to do with the folders of LUMO_FAULT_ROOTS (separated by ":") count,
// so that the number of a call does not depend on what the machine loads at the start.
//
//   LUMO_FAULT_AT=k       the k-th call counted, from 1; 0 or absent: none
//   LUMO_FAULT_ERROR=n    the call fails with that errno; absent: the program is killed before it,
//                         or, of the two times that a write is counted, half-way through it
//   LUMO_FAULT_ONWARDS=1  and so do all that follow. A write that fails first is cut short instead,
//                         as it is on a disk that fills up
//   LUMO_FAULT_COUNT=path where the number of calls is written when the program ends
//
// With ENOSPC only calls that need room count, with another error those that read as well.
//
// It is C because C++ may not declare these functions anew.

#define _GNU_SOURCE
#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/xattr.h>
#include <unistd.h>

enum Kind { kReads, kChanges, kNeedsRoom };

enum { kMaxDescriptors = 4096 };
static unsigned char watched[kMaxDescriptors];

static struct {
    int ready;
    long at;
    int error;  // 0: stop
    int onwards;
    const char* roots;
    const char* countPath;
} plan;

static long counted;

static long Number(const char* name) {
    const char* text = getenv(name);
    return text != NULL ? strtol(text, NULL, 10) : 0;
}

__attribute__((constructor)) static void ReadPlan(void) {
    if (plan.ready) return;
    plan.at = Number("LUMO_FAULT_AT");
    plan.error = (int)Number("LUMO_FAULT_ERROR");
    plan.onwards = (int)Number("LUMO_FAULT_ONWARDS");
    plan.roots = getenv("LUMO_FAULT_ROOTS");
    plan.countPath = getenv("LUMO_FAULT_COUNT");
    plan.ready = 1;
}

__attribute__((destructor)) static void WriteCount(void) {
    if (plan.countPath == NULL) return;
    char text[32];
    const int length = snprintf(text, sizeof text, "%ld", counted);
    const int file =
        (int)syscall(SYS_openat, AT_FDCWD, plan.countPath, O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (file < 0) return;
    (void)!syscall(SYS_write, file, text, (size_t)length);
    syscall(SYS_close, file);
}

static void Stop(void) {
    syscall(SYS_kill, syscall(SYS_getpid), SIGKILL);
    for (;;) pause();
}

static int IsWatched(int descriptor) {
    return descriptor >= 0 && descriptor < kMaxDescriptors && watched[descriptor];
}

static void Watch(int descriptor) {
    if (descriptor >= 0 && descriptor < kMaxDescriptors) watched[descriptor] = 1;
}

static int IsInside(int folder, const char* path) {
    ReadPlan();
    if (path == NULL || plan.roots == NULL) return 0;
    if (path[0] != '/') return folder != AT_FDCWD && IsWatched(folder);
    for (const char* root = plan.roots; *root != '\0';) {
        const size_t length = strcspn(root, ":");
        if (length > 0 && strncmp(path, root, length) == 0) return 1;
        root += length + (root[length] == ':');
    }
    return 0;
}

static int Counts(enum Kind kind) {
    if (plan.error == ENOSPC) return kind == kNeedsRoom;
    return kind != kReads || plan.error != 0;
}

static int IsHit(void) {
    const long number = __atomic_add_fetch(&counted, 1, __ATOMIC_SEQ_CST);
    return plan.at > 0 && (number == plan.at || (plan.onwards && number > plan.at));
}

// True, with errno set, if the call is to fail; does not return if the program is to stop.
static int Fails(enum Kind kind) {
    if (!Counts(kind) || !IsHit()) return 0;
    if (plan.error == 0) Stop();
    errno = plan.error;
    return 1;
}

// For calls that write: the length to write instead, 0 for a call that fails. `*stop` says that the
// program ends behind it.
static size_t Granted(size_t length, int* stop) {
    *stop = 0;
    if (!Counts(kNeedsRoom)) return length;
    if (!IsHit()) {
        if (plan.error != 0 || length < 2 || !IsHit()) return length;
        *stop = 1;
        return length / 2;
    }
    if (plan.error == 0) Stop();
    errno = plan.error;
    return plan.onwards && counted == plan.at ? length / 2 : 0;
}

#define REAL(name)                 \
    static __typeof__(&name) real; \
    if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, #name)

static enum Kind KindOfOpen(int flags) {
    if (flags & O_CREAT) return kNeedsRoom;
    return (flags & O_ACCMODE) == O_RDONLY ? kReads : kChanges;
}

#define MODE_ARGUMENT                      \
    mode_t mode = 0;                       \
    if (flags & (O_CREAT | __O_TMPFILE)) { \
        va_list rest;                      \
        va_start(rest, flags);             \
        mode = va_arg(rest, mode_t);       \
        va_end(rest);                      \
    }

#define WRAP_OPEN(name)                                                \
    int name(const char* path, int flags, ...) {                       \
        REAL(name);                                                    \
        MODE_ARGUMENT                                                  \
        if (!IsInside(AT_FDCWD, path)) return real(path, flags, mode); \
        if (Fails(KindOfOpen(flags))) return -1;                       \
        const int descriptor = real(path, flags, mode);                \
        Watch(descriptor);                                             \
        return descriptor;                                             \
    }
WRAP_OPEN(open)
WRAP_OPEN(open64)

#define WRAP_OPENAT(name)                                                    \
    int name(int folder, const char* path, int flags, ...) {                 \
        REAL(name);                                                          \
        MODE_ARGUMENT                                                        \
        if (!IsInside(folder, path)) return real(folder, path, flags, mode); \
        if (Fails(KindOfOpen(flags))) return -1;                             \
        const int descriptor = real(folder, path, flags, mode);              \
        Watch(descriptor);                                                   \
        return descriptor;                                                   \
    }
WRAP_OPENAT(openat)
WRAP_OPENAT(openat64)

int creat(const char* path, mode_t mode) {
    return open(path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}

// What a stream writes goes past this library; its opening and closing do not.
#define WRAP_FOPEN(name)                                                                         \
    FILE* name(const char* path, const char* how) {                                              \
        REAL(name);                                                                              \
        if (IsInside(AT_FDCWD, path) && Fails(how[0] == 'r' ? kReads : kNeedsRoom)) return NULL; \
        FILE* stream = real(path, how);                                                          \
        if (stream != NULL && IsInside(AT_FDCWD, path)) Watch(fileno(stream));                   \
        return stream;                                                                           \
    }
WRAP_FOPEN(fopen)
WRAP_FOPEN(fopen64)

DIR* opendir(const char* path) {
    REAL(opendir);
    return IsInside(AT_FDCWD, path) && Fails(kReads) ? NULL : real(path);
}

// A descriptor is closed even where the call fails.
int close(int descriptor) {
    REAL(close);
    if (!IsWatched(descriptor)) return real(descriptor);
    const int fails = Fails(kChanges);
    watched[descriptor] = 0;
    const int result = real(descriptor);
    if (!fails) return result;
    errno = plan.error;
    return -1;
}

ssize_t write(int descriptor, const void* bytes, size_t length) {
    REAL(write);
    if (!IsWatched(descriptor)) return real(descriptor, bytes, length);
    int stop;
    const size_t granted = Granted(length, &stop);
    if (granted == 0 && length > 0) return -1;
    const ssize_t written = real(descriptor, bytes, granted);
    if (stop) Stop();
    return written;
}

#define WRAP_PWRITE(name, offset_type)                                                   \
    ssize_t name(int descriptor, const void* bytes, size_t length, offset_type offset) { \
        REAL(name);                                                                      \
        if (!IsWatched(descriptor)) return real(descriptor, bytes, length, offset);      \
        int stop;                                                                        \
        const size_t granted = Granted(length, &stop);                                   \
        if (granted == 0 && length > 0) return -1;                                       \
        const ssize_t written = real(descriptor, bytes, granted, offset);                \
        if (stop) Stop();                                                                \
        return written;                                                                  \
    }
WRAP_PWRITE(pwrite, off_t)
WRAP_PWRITE(pwrite64, off64_t)

ssize_t writev(int descriptor, const struct iovec* parts, int count) {
    REAL(writev);
    if (IsWatched(descriptor) && Fails(kNeedsRoom)) return -1;
    return real(descriptor, parts, count);
}

// The kernel is asked for more than the file holds: half of the file, then.
static size_t HalfOf(int descriptor) {
    struct stat status;
    return syscall(SYS_fstat, descriptor, &status) == 0 ? (size_t)status.st_size / 2 : 0;
}

ssize_t copy_file_range(int from, off64_t* fromOffset, int to, off64_t* toOffset, size_t length,
                        unsigned flags) {
    REAL(copy_file_range);
    if (!IsWatched(to)) return real(from, fromOffset, to, toOffset, length, flags);
    int stop;
    size_t granted = Granted(length, &stop);
    if (granted == 0 && length > 0) return -1;
    if (granted < length) granted = HalfOf(from);
    const ssize_t copied = real(from, fromOffset, to, toOffset, granted, flags);
    if (stop) Stop();
    return copied;
}

#define WRAP_SENDFILE(name, offset_type)                                 \
    ssize_t name(int to, int from, offset_type* offset, size_t length) { \
        REAL(name);                                                      \
        if (!IsWatched(to)) return real(to, from, offset, length);       \
        int stop;                                                        \
        size_t granted = Granted(length, &stop);                         \
        if (granted == 0 && length > 0) return -1;                       \
        if (granted < length) granted = HalfOf(from);                    \
        const ssize_t copied = real(to, from, offset, granted);          \
        if (stop) Stop();                                                \
        return copied;                                                   \
    }
WRAP_SENDFILE(sendfile, off_t)
WRAP_SENDFILE(sendfile64, off64_t)

int ioctl(int descriptor, unsigned long request, ...) {
    REAL(ioctl);
    va_list rest;
    va_start(rest, request);
    void* argument = va_arg(rest, void*);
    va_end(rest);
    if (request == FICLONE && IsWatched(descriptor) && Fails(kNeedsRoom)) return -1;
    return real(descriptor, request, argument);
}

// ---- Calls on one descriptor ------------------------------------------------------------------

#define WRAP_DESCRIPTOR(type, name, kind, parameters, arguments) \
    type name parameters {                                       \
        REAL(name);                                              \
        if (IsWatched(descriptor) && Fails(kind)) return -1;     \
        return real arguments;                                   \
    }

WRAP_DESCRIPTOR(int, fsync, kNeedsRoom, (int descriptor), (descriptor))
WRAP_DESCRIPTOR(int, fdatasync, kNeedsRoom, (int descriptor), (descriptor))
WRAP_DESCRIPTOR(int, ftruncate, kChanges, (int descriptor, off_t length), (descriptor, length))
WRAP_DESCRIPTOR(int, ftruncate64, kChanges, (int descriptor, off64_t length), (descriptor, length))
WRAP_DESCRIPTOR(int, fchmod, kChanges, (int descriptor, mode_t mode), (descriptor, mode))
WRAP_DESCRIPTOR(int, fchown, kChanges, (int descriptor, uid_t user, gid_t group),
                (descriptor, user, group))
WRAP_DESCRIPTOR(int, futimens, kChanges, (int descriptor, const struct timespec times[2]),
                (descriptor, times))
WRAP_DESCRIPTOR(int, fsetxattr, kNeedsRoom,
                (int descriptor, const char* name, const void* value, size_t size, int flags),
                (descriptor, name, value, size, flags))
WRAP_DESCRIPTOR(int, fstat, kReads, (int descriptor, struct stat* status), (descriptor, status))
WRAP_DESCRIPTOR(int, fstat64, kReads, (int descriptor, struct stat64* status), (descriptor, status))
WRAP_DESCRIPTOR(ssize_t, read, kReads, (int descriptor, void* bytes, size_t length),
                (descriptor, bytes, length))
WRAP_DESCRIPTOR(ssize_t, pread, kReads, (int descriptor, void* bytes, size_t length, off_t offset),
                (descriptor, bytes, length, offset))

// ---- Calls on one path ------------------------------------------------------------------------

#define WRAP_PATH(name, kind, parameters, arguments)            \
    int name parameters {                                       \
        REAL(name);                                             \
        if (IsInside(AT_FDCWD, path) && Fails(kind)) return -1; \
        return real arguments;                                  \
    }

WRAP_PATH(unlink, kChanges, (const char* path), (path))
WRAP_PATH(rmdir, kChanges, (const char* path), (path))
WRAP_PATH(remove, kChanges, (const char* path), (path))
WRAP_PATH(truncate, kChanges, (const char* path, off_t length), (path, length))
WRAP_PATH(chmod, kChanges, (const char* path, mode_t mode), (path, mode))
WRAP_PATH(mkdir, kNeedsRoom, (const char* path, mode_t mode), (path, mode))
WRAP_PATH(stat, kReads, (const char* path, struct stat* status), (path, status))
WRAP_PATH(stat64, kReads, (const char* path, struct stat64* status), (path, status))
WRAP_PATH(lstat, kReads, (const char* path, struct stat* status), (path, status))
WRAP_PATH(lstat64, kReads, (const char* path, struct stat64* status), (path, status))
WRAP_PATH(access, kReads, (const char* path, int mode), (path, mode))

#define WRAP_PATH_AT(name, kind, parameters, arguments)       \
    int name parameters {                                     \
        REAL(name);                                           \
        if (IsInside(folder, path) && Fails(kind)) return -1; \
        return real arguments;                                \
    }

WRAP_PATH_AT(unlinkat, kChanges, (int folder, const char* path, int flags), (folder, path, flags))
WRAP_PATH_AT(mkdirat, kNeedsRoom, (int folder, const char* path, mode_t mode), (folder, path, mode))
WRAP_PATH_AT(utimensat, kChanges,
             (int folder, const char* path, const struct timespec times[2], int flags),
             (folder, path, times, flags))
WRAP_PATH_AT(faccessat, kReads, (int folder, const char* path, int mode, int flags),
             (folder, path, mode, flags))
WRAP_PATH_AT(fstatat, kReads, (int folder, const char* path, struct stat* status, int flags),
             (folder, path, status, flags))
WRAP_PATH_AT(statx, kReads,
             (int folder, const char* path, int flags, unsigned mask, struct statx* status),
             (folder, path, flags, mask, status))

// ---- Calls on two paths -----------------------------------------------------------------------

#define WRAP_PATHS(name, from, fromFolder, to, toFolder, parameters, arguments)          \
    int name parameters {                                                                \
        REAL(name);                                                                      \
        if ((IsInside(fromFolder, from) || IsInside(toFolder, to)) && Fails(kNeedsRoom)) \
            return -1;                                                                   \
        return real arguments;                                                           \
    }

WRAP_PATHS(rename, from, AT_FDCWD, to, AT_FDCWD, (const char* from, const char* to), (from, to))
WRAP_PATHS(renameat, from, a, to, b, (int a, const char* from, int b, const char* to),
           (a, from, b, to))
WRAP_PATHS(renameat2, from, a, to, b,
           (int a, const char* from, int b, const char* to, unsigned flags),
           (a, from, b, to, flags))
WRAP_PATHS(link, from, AT_FDCWD, to, AT_FDCWD, (const char* from, const char* to), (from, to))
WRAP_PATHS(linkat, from, a, to, b, (int a, const char* from, int b, const char* to, int flags),
           (a, from, b, to, flags))
WRAP_PATHS(symlink, from, AT_FDCWD, to, AT_FDCWD, (const char* from, const char* to), (from, to))

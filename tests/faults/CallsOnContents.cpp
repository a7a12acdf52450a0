#include "tests/faults/WrappedCall.h"
#include <cstdio>
#include <sys/types.h>
#include <sys/uio.h>

// The wrapped calls that open, read, write, lock and flush.

namespace mac::faults {

extern "C" {

int faultyOpen(char const* path, int flags, mode_t mode) __asm__("open");
int faultyOpen64(char const* path, int flags, mode_t mode) __asm__("open64");
int faultyOpenat(int folder, char const* path, int flags, mode_t mode) __asm__("openat");
int faultyOpenat64(int folder, char const* path, int flags, mode_t mode) __asm__("openat64");
FILE* faultyFopen(char const* path, char const* mode) __asm__("fopen");
FILE* faultyFopen64(char const* path, char const* mode) __asm__("fopen64");
int faultyClose(int file) __asm__("close");
int faultyDup(int file) __asm__("dup");
int faultyDup2(int file, int other) __asm__("dup2");
int faultyFcntl(int file, int command, long argument) __asm__("fcntl");
int faultyFcntl64(int file, int command, long argument) __asm__("fcntl64");
int faultyFlock(int file, int operation) __asm__("flock");
ssize_t faultyRead(int file, void* bytes, std::size_t size) __asm__("read");
ssize_t faultyPread(int file, void* bytes, std::size_t size, off_t place) __asm__("pread");
ssize_t faultyPread64(int file, void* bytes, std::size_t size, off_t place) __asm__("pread64");
ssize_t faultyWrite(int file, void const* bytes, std::size_t size) __asm__("write");
ssize_t faultyPwrite(int file, void const* bytes, std::size_t size, off_t place) __asm__("pwrite");
ssize_t faultyPwrite64(int file, void const* bytes, std::size_t size, off_t place) __asm__("pwrite64");
ssize_t faultyWritev(int file, iovec const* pieces, int count) __asm__("writev");
ssize_t faultyCopyFileRange(int from, off_t* fromPlace, int to, off_t* toPlace, std::size_t size,
                            unsigned flags) __asm__("copy_file_range");
ssize_t faultySendfile(int to, int from, off_t* place, std::size_t size) __asm__("sendfile");
off_t faultyLseek(int file, off_t place, int whence) __asm__("lseek");
off_t faultyLseek64(int file, off_t place, int whence) __asm__("lseek64");
int faultyTruncate(char const* path, off_t size) __asm__("truncate");
int faultyFtruncate(int file, off_t size) __asm__("ftruncate");
int faultyFtruncate64(int file, off_t size) __asm__("ftruncate64");
int faultyFallocate(int file, int mode, off_t place, off_t size) __asm__("fallocate");
int faultyIoctl(int file, unsigned long request, void* argument) __asm__("ioctl");
int faultyFsync(int file) __asm__("fsync");
int faultyFdatasync(int file) __asm__("fdatasync");
int faultySyncfs(int file) __asm__("syncfs");
ssize_t faultyGetrandom(void* bytes, std::size_t size, unsigned flags) __asm__("getrandom");
long faultySyscall(long number, long a, long b, long c, long d, long e, long f) __asm__("syscall");

int faultyOpen(char const* path, int flags, mode_t mode) {
    static Call call{"open"};
    return passed<int>(call, path, flags, mode);
}
int faultyOpen64(char const* path, int flags, mode_t mode) {
    static Call call{"open64"};
    return passed<int>(call, path, flags, mode);
}
int faultyOpenat(int folder, char const* path, int flags, mode_t mode) {
    static Call call{"openat"};
    return passed<int>(call, folder, path, flags, mode);
}
int faultyOpenat64(int folder, char const* path, int flags, mode_t mode) {
    static Call call{"openat64"};
    return passed<int>(call, folder, path, flags, mode);
}
FILE* faultyFopen(char const* path, char const* mode) {
    static Call call{"fopen"};
    return passed<FILE*>(call, path, mode);
}
FILE* faultyFopen64(char const* path, char const* mode) {
    static Call call{"fopen64"};
    return passed<FILE*>(call, path, mode);
}
int faultyClose(int file) {
    static Call call{"close"};
    Verdict const verdict = verdictOn(call);
    int const error = errno;
    int const result = made<int>(call, file);
    if (verdict != Verdict::Fails) return result;
    errno = error;
    return -1;
}
int faultyDup(int file) {
    static Call call{"dup"};
    return passed<int>(call, file);
}
int faultyDup2(int file, int other) {
    static Call call{"dup2"};
    return passed<int>(call, file, other);
}
int faultyFcntl(int file, int command, long argument) {
    static Call call{"fcntl"};
    return passed<int>(call, file, command, argument);
}
int faultyFcntl64(int file, int command, long argument) {
    static Call call{"fcntl64"};
    return passed<int>(call, file, command, argument);
}
int faultyFlock(int file, int operation) {
    static Call call{"flock"};
    return passed<int>(call, file, operation);
}
ssize_t faultyRead(int file, void* bytes, std::size_t size) {
    static Call call{"read"};
    Verdict const verdict = verdictOn(call);
    if (verdict == Verdict::Fails) return -1;
    if (verdict == Verdict::TransfersLess && size > 1) size /= 2;
    return made<ssize_t>(call, file, bytes, size);
}
ssize_t faultyPread(int file, void* bytes, std::size_t size, off_t place) {
    static Call call{"pread"};
    Verdict const verdict = verdictOn(call);
    if (verdict == Verdict::Fails) return -1;
    if (verdict == Verdict::TransfersLess && size > 1) size /= 2;
    return made<ssize_t>(call, file, bytes, size, place);
}
ssize_t faultyPread64(int file, void* bytes, std::size_t size, off_t place) {
    static Call call{"pread64"};
    Verdict const verdict = verdictOn(call);
    if (verdict == Verdict::Fails) return -1;
    if (verdict == Verdict::TransfersLess && size > 1) size /= 2;
    return made<ssize_t>(call, file, bytes, size, place);
}
ssize_t faultyWrite(int file, void const* bytes, std::size_t size) {
    static Call call{"write"};
    Verdict const verdict = verdictOn(call);
    if (verdict == Verdict::Fails) return -1;
    if (verdict == Verdict::TransfersLess && size > 1) size /= 2;
    return made<ssize_t>(call, file, bytes, size);
}
ssize_t faultyPwrite(int file, void const* bytes, std::size_t size, off_t place) {
    static Call call{"pwrite"};
    Verdict const verdict = verdictOn(call);
    if (verdict == Verdict::Fails) return -1;
    if (verdict == Verdict::TransfersLess && size > 1) size /= 2;
    return made<ssize_t>(call, file, bytes, size, place);
}
ssize_t faultyPwrite64(int file, void const* bytes, std::size_t size, off_t place) {
    static Call call{"pwrite64"};
    Verdict const verdict = verdictOn(call);
    if (verdict == Verdict::Fails) return -1;
    if (verdict == Verdict::TransfersLess && size > 1) size /= 2;
    return made<ssize_t>(call, file, bytes, size, place);
}
ssize_t faultyWritev(int file, iovec const* pieces, int count) {
    static Call call{"writev"};
    return passed<ssize_t>(call, file, pieces, count);
}
ssize_t faultyCopyFileRange(int from, off_t* fromPlace, int to, off_t* toPlace, std::size_t size, unsigned flags) {
    static Call call{"copy_file_range"};
    Verdict const verdict = verdictOn(call);
    if (verdict == Verdict::Fails) return -1;
    if (verdict == Verdict::TransfersLess && size > 1) size /= 2;
    return made<ssize_t>(call, from, fromPlace, to, toPlace, size, flags);
}
ssize_t faultySendfile(int to, int from, off_t* place, std::size_t size) {
    static Call call{"sendfile"};
    Verdict const verdict = verdictOn(call);
    if (verdict == Verdict::Fails) return -1;
    if (verdict == Verdict::TransfersLess && size > 1) size /= 2;
    return made<ssize_t>(call, to, from, place, size);
}
off_t faultyLseek(int file, off_t place, int whence) {
    static Call call{"lseek"};
    return passed<off_t>(call, file, place, whence);
}
off_t faultyLseek64(int file, off_t place, int whence) {
    static Call call{"lseek64"};
    return passed<off_t>(call, file, place, whence);
}
int faultyTruncate(char const* path, off_t size) {
    static Call call{"truncate"};
    return passed<int>(call, path, size);
}
int faultyFtruncate(int file, off_t size) {
    static Call call{"ftruncate"};
    return passed<int>(call, file, size);
}
int faultyFtruncate64(int file, off_t size) {
    static Call call{"ftruncate64"};
    return passed<int>(call, file, size);
}
int faultyFallocate(int file, int mode, off_t place, off_t size) {
    static Call call{"fallocate"};
    return passed<int>(call, file, mode, place, size);
}
int faultyIoctl(int file, unsigned long request, void* argument) {
    static Call call{"ioctl"};
    return passed<int>(call, file, request, argument);
}
int faultyFsync(int file) {
    static Call call{"fsync"};
    return passed<int>(call, file);
}
int faultyFdatasync(int file) {
    static Call call{"fdatasync"};
    return passed<int>(call, file);
}
int faultySyncfs(int file) {
    static Call call{"syncfs"};
    return passed<int>(call, file);
}
ssize_t faultyGetrandom(void* bytes, std::size_t size, unsigned flags) {
    static Call call{"getrandom"};
    return passed<ssize_t>(call, bytes, size, flags);
}
long faultySyscall(long number, long a, long b, long c, long d, long e, long f) {
    static Call call{"syscall"};
    return passed<long>(call, number, a, b, c, d, e, f);
}

} // extern "C"

} // namespace mac::faults

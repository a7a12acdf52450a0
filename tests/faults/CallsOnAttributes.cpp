#include "tests/faults/WrappedCall.h"
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/types.h>

// The wrapped calls that read and set what belongs to an item: status, permissions, owner, dates, attributes.

namespace mac::faults {

extern "C" {

int faultyStat(char const* path, struct stat* status) __asm__("stat");
int faultyLstat(char const* path, struct stat* status) __asm__("lstat");
int faultyFstat(int file, struct stat* status) __asm__("fstat");
int faultyFstatat(int folder, char const* path, struct stat* status, int flags) __asm__("fstatat");
int faultyStat64(char const* path, struct stat64* status) __asm__("stat64");
int faultyLstat64(char const* path, struct stat64* status) __asm__("lstat64");
int faultyFstat64(int file, struct stat64* status) __asm__("fstat64");
int faultyFstatat64(int folder, char const* path, struct stat64* status, int flags) __asm__("fstatat64");
int faultyStatx(int folder, char const* path, int flags, unsigned mask, struct statx* status) __asm__("statx");
int faultyStatfs(char const* path, struct statfs* status) __asm__("statfs");
int faultyFstatfs(int file, struct statfs* status) __asm__("fstatfs");
int faultyStatvfs(char const* path, struct statvfs* status) __asm__("statvfs");
int faultyFstatvfs(int file, struct statvfs* status) __asm__("fstatvfs");
int faultyAccess(char const* path, int mode) __asm__("access");
int faultyFaccessat(int folder, char const* path, int mode, int flags) __asm__("faccessat");
int faultyChmod(char const* path, mode_t mode) __asm__("chmod");
int faultyFchmod(int file, mode_t mode) __asm__("fchmod");
int faultyFchmodat(int folder, char const* path, mode_t mode, int flags) __asm__("fchmodat");
int faultyChown(char const* path, uid_t owner, gid_t group) __asm__("chown");
int faultyLchown(char const* path, uid_t owner, gid_t group) __asm__("lchown");
int faultyFchown(int file, uid_t owner, gid_t group) __asm__("fchown");
int faultyFchownat(int folder, char const* path, uid_t owner, gid_t group, int flags) __asm__("fchownat");
int faultyUtimensat(int folder, char const* path, timespec const* times, int flags) __asm__("utimensat");
int faultyFutimens(int file, timespec const* times) __asm__("futimens");
ssize_t faultyGetxattr(char const* path, char const* name, void* value, std::size_t size) __asm__("getxattr");
int faultySetxattr(char const* path, char const* name, void const* value, std::size_t size,
                   int flags) __asm__("setxattr");
ssize_t faultyListxattr(char const* path, char* names, std::size_t size) __asm__("listxattr");
int faultyRemovexattr(char const* path, char const* name) __asm__("removexattr");
ssize_t faultyLgetxattr(char const* path, char const* name, void* value, std::size_t size) __asm__("lgetxattr");
int faultyLsetxattr(char const* path, char const* name, void const* value, std::size_t size,
                    int flags) __asm__("lsetxattr");
ssize_t faultyLlistxattr(char const* path, char* names, std::size_t size) __asm__("llistxattr");
int faultyLremovexattr(char const* path, char const* name) __asm__("lremovexattr");
ssize_t faultyFgetxattr(int file, char const* name, void* value, std::size_t size) __asm__("fgetxattr");
int faultyFsetxattr(int file, char const* name, void const* value, std::size_t size, int flags) __asm__("fsetxattr");
ssize_t faultyFlistxattr(int file, char* names, std::size_t size) __asm__("flistxattr");
int faultyFremovexattr(int file, char const* name) __asm__("fremovexattr");

int faultyStat(char const* path, struct stat* status) {
    static Call call{"stat"};
    return passed<int>(call, path, status);
}
int faultyLstat(char const* path, struct stat* status) {
    static Call call{"lstat"};
    return passed<int>(call, path, status);
}
int faultyFstat(int file, struct stat* status) {
    static Call call{"fstat"};
    return passed<int>(call, file, status);
}
int faultyFstatat(int folder, char const* path, struct stat* status, int flags) {
    static Call call{"fstatat"};
    return passed<int>(call, folder, path, status, flags);
}
int faultyStat64(char const* path, struct stat64* status) {
    static Call call{"stat64"};
    return passed<int>(call, path, status);
}
int faultyLstat64(char const* path, struct stat64* status) {
    static Call call{"lstat64"};
    return passed<int>(call, path, status);
}
int faultyFstat64(int file, struct stat64* status) {
    static Call call{"fstat64"};
    return passed<int>(call, file, status);
}
int faultyFstatat64(int folder, char const* path, struct stat64* status, int flags) {
    static Call call{"fstatat64"};
    return passed<int>(call, folder, path, status, flags);
}
int faultyStatx(int folder, char const* path, int flags, unsigned mask, struct statx* status) {
    static Call call{"statx"};
    return passed<int>(call, folder, path, flags, mask, status);
}
int faultyStatfs(char const* path, struct statfs* status) {
    static Call call{"statfs"};
    return passed<int>(call, path, status);
}
int faultyFstatfs(int file, struct statfs* status) {
    static Call call{"fstatfs"};
    return passed<int>(call, file, status);
}
int faultyStatvfs(char const* path, struct statvfs* status) {
    static Call call{"statvfs"};
    return passed<int>(call, path, status);
}
int faultyFstatvfs(int file, struct statvfs* status) {
    static Call call{"fstatvfs"};
    return passed<int>(call, file, status);
}
int faultyAccess(char const* path, int mode) {
    static Call call{"access"};
    return passed<int>(call, path, mode);
}
int faultyFaccessat(int folder, char const* path, int mode, int flags) {
    static Call call{"faccessat"};
    return passed<int>(call, folder, path, mode, flags);
}
int faultyChmod(char const* path, mode_t mode) {
    static Call call{"chmod"};
    return passed<int>(call, path, mode);
}
int faultyFchmod(int file, mode_t mode) {
    static Call call{"fchmod"};
    return passed<int>(call, file, mode);
}
int faultyFchmodat(int folder, char const* path, mode_t mode, int flags) {
    static Call call{"fchmodat"};
    return passed<int>(call, folder, path, mode, flags);
}
int faultyChown(char const* path, uid_t owner, gid_t group) {
    static Call call{"chown"};
    return passed<int>(call, path, owner, group);
}
int faultyLchown(char const* path, uid_t owner, gid_t group) {
    static Call call{"lchown"};
    return passed<int>(call, path, owner, group);
}
int faultyFchown(int file, uid_t owner, gid_t group) {
    static Call call{"fchown"};
    return passed<int>(call, file, owner, group);
}
int faultyFchownat(int folder, char const* path, uid_t owner, gid_t group, int flags) {
    static Call call{"fchownat"};
    return passed<int>(call, folder, path, owner, group, flags);
}
int faultyUtimensat(int folder, char const* path, timespec const* times, int flags) {
    static Call call{"utimensat"};
    return passed<int>(call, folder, path, times, flags);
}
int faultyFutimens(int file, timespec const* times) {
    static Call call{"futimens"};
    return passed<int>(call, file, times);
}
ssize_t faultyGetxattr(char const* path, char const* name, void* value, std::size_t size) {
    static Call call{"getxattr"};
    return passed<ssize_t>(call, path, name, value, size);
}
int faultySetxattr(char const* path, char const* name, void const* value, std::size_t size, int flags) {
    static Call call{"setxattr"};
    return passed<int>(call, path, name, value, size, flags);
}
ssize_t faultyListxattr(char const* path, char* names, std::size_t size) {
    static Call call{"listxattr"};
    return passed<ssize_t>(call, path, names, size);
}
int faultyRemovexattr(char const* path, char const* name) {
    static Call call{"removexattr"};
    return passed<int>(call, path, name);
}
ssize_t faultyLgetxattr(char const* path, char const* name, void* value, std::size_t size) {
    static Call call{"lgetxattr"};
    return passed<ssize_t>(call, path, name, value, size);
}
int faultyLsetxattr(char const* path, char const* name, void const* value, std::size_t size, int flags) {
    static Call call{"lsetxattr"};
    return passed<int>(call, path, name, value, size, flags);
}
ssize_t faultyLlistxattr(char const* path, char* names, std::size_t size) {
    static Call call{"llistxattr"};
    return passed<ssize_t>(call, path, names, size);
}
int faultyLremovexattr(char const* path, char const* name) {
    static Call call{"lremovexattr"};
    return passed<int>(call, path, name);
}
ssize_t faultyFgetxattr(int file, char const* name, void* value, std::size_t size) {
    static Call call{"fgetxattr"};
    return passed<ssize_t>(call, file, name, value, size);
}
int faultyFsetxattr(int file, char const* name, void const* value, std::size_t size, int flags) {
    static Call call{"fsetxattr"};
    return passed<int>(call, file, name, value, size, flags);
}
ssize_t faultyFlistxattr(int file, char* names, std::size_t size) {
    static Call call{"flistxattr"};
    return passed<ssize_t>(call, file, names, size);
}
int faultyFremovexattr(int file, char const* name) {
    static Call call{"fremovexattr"};
    return passed<int>(call, file, name);
}

} // extern "C"

} // namespace mac::faults

#include "tests/faults/WrappedCall.h"
#include <dirent.h>
#include <sys/types.h>

// The wrapped calls that make, rename, remove, read and list names.

namespace mac::faults {

extern "C" {

int faultyRename(char const* from, char const* to) __asm__("rename");
int faultyRenameat(int fromFolder, char const* from, int toFolder, char const* to) __asm__("renameat");
int faultyRenameat2(int fromFolder, char const* from, int toFolder, char const* to,
                    unsigned flags) __asm__("renameat2");
int faultyLink(char const* from, char const* to) __asm__("link");
int faultyLinkat(int fromFolder, char const* from, int toFolder, char const* to, int flags) __asm__("linkat");
int faultyUnlink(char const* path) __asm__("unlink");
int faultyUnlinkat(int folder, char const* path, int flags) __asm__("unlinkat");
int faultyRmdir(char const* path) __asm__("rmdir");
int faultyRemove(char const* path) __asm__("remove");
int faultyMkdir(char const* path, mode_t mode) __asm__("mkdir");
int faultyMkdirat(int folder, char const* path, mode_t mode) __asm__("mkdirat");
int faultySymlink(char const* target, char const* path) __asm__("symlink");
int faultySymlinkat(char const* target, int folder, char const* path) __asm__("symlinkat");
int faultyMknod(char const* path, mode_t mode, dev_t device) __asm__("mknod");
int faultyMknodat(int folder, char const* path, mode_t mode, dev_t device) __asm__("mknodat");
ssize_t faultyReadlink(char const* path, char* text, std::size_t size) __asm__("readlink");
ssize_t faultyReadlinkat(int folder, char const* path, char* text, std::size_t size) __asm__("readlinkat");
char* faultyRealpath(char const* path, char* resolved) __asm__("realpath");
char* faultyGetcwd(char* path, std::size_t size) __asm__("getcwd");
int faultyChdir(char const* path) __asm__("chdir");
int faultyFchdir(int folder) __asm__("fchdir");
DIR* faultyOpendir(char const* path) __asm__("opendir");
DIR* faultyFdopendir(int folder) __asm__("fdopendir");
dirent* faultyReaddir(DIR* folder) __asm__("readdir");
ssize_t faultyGetdents64(int folder, void* entries, std::size_t size) __asm__("getdents64");

int faultyRename(char const* from, char const* to) {
    static Call call{"rename"};
    return passed<int>(call, from, to);
}
int faultyRenameat(int fromFolder, char const* from, int toFolder, char const* to) {
    static Call call{"renameat"};
    return passed<int>(call, fromFolder, from, toFolder, to);
}
int faultyRenameat2(int fromFolder, char const* from, int toFolder, char const* to, unsigned flags) {
    static Call call{"renameat2"};
    if (flags != 0 && refusesExclusiveRename()) {
        errno = EINVAL;
        return -1;
    }
    return passed<int>(call, fromFolder, from, toFolder, to, flags);
}
int faultyLink(char const* from, char const* to) {
    static Call call{"link"};
    return passed<int>(call, from, to);
}
int faultyLinkat(int fromFolder, char const* from, int toFolder, char const* to, int flags) {
    static Call call{"linkat"};
    return passed<int>(call, fromFolder, from, toFolder, to, flags);
}
int faultyUnlink(char const* path) {
    static Call call{"unlink"};
    return passed<int>(call, path);
}
int faultyUnlinkat(int folder, char const* path, int flags) {
    static Call call{"unlinkat"};
    return passed<int>(call, folder, path, flags);
}
int faultyRmdir(char const* path) {
    static Call call{"rmdir"};
    return passed<int>(call, path);
}
int faultyRemove(char const* path) {
    static Call call{"remove"};
    return passed<int>(call, path);
}
int faultyMkdir(char const* path, mode_t mode) {
    static Call call{"mkdir"};
    return passed<int>(call, path, mode);
}
int faultyMkdirat(int folder, char const* path, mode_t mode) {
    static Call call{"mkdirat"};
    return passed<int>(call, folder, path, mode);
}
int faultySymlink(char const* target, char const* path) {
    static Call call{"symlink"};
    return passed<int>(call, target, path);
}
int faultySymlinkat(char const* target, int folder, char const* path) {
    static Call call{"symlinkat"};
    return passed<int>(call, target, folder, path);
}
int faultyMknod(char const* path, mode_t mode, dev_t device) {
    static Call call{"mknod"};
    return passed<int>(call, path, mode, device);
}
int faultyMknodat(int folder, char const* path, mode_t mode, dev_t device) {
    static Call call{"mknodat"};
    return passed<int>(call, folder, path, mode, device);
}
ssize_t faultyReadlink(char const* path, char* text, std::size_t size) {
    static Call call{"readlink"};
    return passed<ssize_t>(call, path, text, size);
}
ssize_t faultyReadlinkat(int folder, char const* path, char* text, std::size_t size) {
    static Call call{"readlinkat"};
    return passed<ssize_t>(call, folder, path, text, size);
}
char* faultyRealpath(char const* path, char* resolved) {
    static Call call{"realpath"};
    return passed<char*>(call, path, resolved);
}
char* faultyGetcwd(char* path, std::size_t size) {
    static Call call{"getcwd"};
    return passed<char*>(call, path, size);
}
int faultyChdir(char const* path) {
    static Call call{"chdir"};
    return passed<int>(call, path);
}
int faultyFchdir(int folder) {
    static Call call{"fchdir"};
    return passed<int>(call, folder);
}
DIR* faultyOpendir(char const* path) {
    static Call call{"opendir"};
    return passed<DIR*>(call, path);
}
DIR* faultyFdopendir(int folder) {
    static Call call{"fdopendir"};
    return passed<DIR*>(call, folder);
}
dirent* faultyReaddir(DIR* folder) {
    static Call call{"readdir"};
    return passed<dirent*>(call, folder);
}
ssize_t faultyGetdents64(int folder, void* entries, std::size_t size) {
    static Call call{"getdents64"};
    return passed<ssize_t>(call, folder, entries, size);
}

} // extern "C"

} // namespace mac::faults

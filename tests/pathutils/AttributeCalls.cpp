#include "tests/pathutils/AttributeCalls.h"
#include <cstddef>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

namespace mac::test {

namespace {

AttributeCalls* s_current = nullptr;

} // namespace

AttributeCalls::AttributeCalls(std::function<void(unsigned)> before) : m_before(std::move(before)) { s_current = this; }

AttributeCalls::~AttributeCalls() { s_current = nullptr; }

void AttributeCalls::tell() {
    if (!s_current || s_current->m_isTelling) return;
    s_current->m_isTelling = true;
    s_current->m_before(++s_current->m_count);
    s_current->m_isTelling = false;
}

} // namespace mac::test

// These take the place of the C library's, and then ask the system as those do.

extern "C" ssize_t listxattr(char const* path, char* list, std::size_t size) noexcept {
    mac::test::AttributeCalls::tell();
    return ::syscall(SYS_listxattr, path, list, size);
}

extern "C" ssize_t getxattr(char const* path, char const* name, void* value, std::size_t size) noexcept {
    mac::test::AttributeCalls::tell();
    return ::syscall(SYS_getxattr, path, name, value, size);
}

extern "C" ssize_t llistxattr(char const* path, char* list, std::size_t size) noexcept {
    mac::test::AttributeCalls::tell();
    return ::syscall(SYS_llistxattr, path, list, size);
}

extern "C" ssize_t lgetxattr(char const* path, char const* name, void* value, std::size_t size) noexcept {
    mac::test::AttributeCalls::tell();
    return ::syscall(SYS_lgetxattr, path, name, value, size);
}

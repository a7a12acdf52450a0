#include "tests/support/OrdinaryUser.h"
#include <cstdlib>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac::test {

namespace {

// A set of 64 capabilities in two halves, each beside what may be had and what is handed on.
struct ThreadCapabilities {
    __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
    __user_cap_data_struct halves[_LINUX_CAPABILITY_U32S_3]{};

    ThreadCapabilities() {
        if (::syscall(SYS_capget, &header, halves) != 0) std::abort();
    }
    std::uint64_t inUse() const { return std::uint64_t{halves[1].effective} << 32U | halves[0].effective; }
    void use(std::uint64_t set) {
        halves[0].effective = static_cast<std::uint32_t>(set);
        halves[1].effective = static_cast<std::uint32_t>(set >> 32U);
        if (::syscall(SYS_capset, &header, halves) != 0) std::abort();
    }
};

void become(uid_t user) {
    if (::seteuid(user) != 0) std::abort();
}

} // namespace

OrdinaryUser::OrdinaryUser() {
    if (m_isAnother) become(ID);
    if (::geteuid() != 0) return;
    ThreadCapabilities capabilities;
    m_capabilities = capabilities.inUse();
    capabilities.use(0);
}

OrdinaryUser::~OrdinaryUser() {
    if (m_isAnother) become(0);
    if (m_capabilities) ThreadCapabilities().use(*m_capabilities);
}

bool OrdinaryUser::isAnother() {
    if (::geteuid() != 0 || ::seteuid(ID) != 0) return false;
    become(0);
    return true;
}

void OrdinaryUser::own(std::string const& path) {
    if (isAnother() && ::lchown(path.c_str(), ID, ID) != 0) std::abort();
}

} // namespace mac::test

#pragma once

#include <cstdlib>
#include <string>
#include <unistd.h>

namespace mac::test {

// Takes root's rights away from this process for a while; nothing for others.
class OrdinaryUser {
public:
    static constexpr unsigned ID = 65534;

    OrdinaryUser() {
        if (::geteuid() == 0) m_changed = ::seteuid(ID) == 0;
    }
    ~OrdinaryUser() {
        if (m_changed && ::seteuid(0) != 0) std::abort();
    }
    OrdinaryUser(OrdinaryUser const&) = delete;
    OrdinaryUser& operator=(OrdinaryUser const&) = delete;

    // What root made is theirs from now on.
    static void own(std::string const& path) {
        if (::geteuid() == 0 && ::lchown(path.c_str(), ID, ID) != 0) std::abort();
    }

private:
    bool m_changed{false};
};

} // namespace mac::test

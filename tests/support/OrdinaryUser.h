#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace mac::test {

// Takes root's rights away from this thread for the object's life: the thread becomes another user or, if the system
// does not allow that, loses its capabilities. Changes nothing for a process without root's rights.
class OrdinaryUser {
public:
    static constexpr unsigned ID = 65534;

    OrdinaryUser();
    ~OrdinaryUser();
    OrdinaryUser(OrdinaryUser const&) = delete;
    OrdinaryUser& operator=(OrdinaryUser const&) = delete;

    // Whether it is another user than the one who runs the tests, to whom their files do not belong. Root is alone in a
    // user namespace made by an ordinary user (tests/support/with-own-processes).
    static bool isAnother();
    // Gives what root made to the other user, if there is one.
    static void own(std::string const& path);

private:
    bool m_isAnother{isAnother()};
    std::optional<std::uint64_t> m_capabilities{};
};

} // namespace mac::test

#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace mac::test {

// Takes root's rights away from the thread for a while: it becomes another user, or, where the system lets root play
// nobody else, loses its capabilities. Changes nothing for others.
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

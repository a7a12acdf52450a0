#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

namespace mac {

// A folder held open by a descriptor, or none. Closes it when it goes away.
class OpenFolder {
public:
    OpenFolder() = default;
    OpenFolder(OpenFolder&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, none)) {}
    OpenFolder& operator=(OpenFolder&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~OpenFolder() { close(); }

    // Each opens without following a link in the last component and answers a closed folder with errno set on failure.
    static OpenFolder inside(OpenFolder const& parent, char const* name);
    // Follows a link in the last component. Takes paths of any length, also past what one call of the system takes.
    static OpenFolder atPath(std::string_view path);
    OpenFolder duplicate() const;

    bool isOpen() const { return m_descriptor != none; }
    int descriptor() const { return m_descriptor; }
    void close();

private:
    static constexpr int none = -1;
    explicit OpenFolder(int descriptor) : m_descriptor(descriptor) {}
    int m_descriptor = none;
};

// Which folder it is, whatever its path is now.
struct FolderIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    bool operator==(FolderIdentity const&) const = default;
};

struct FolderFacts {
    int error = 0; // as errno; the rest holds only without one
    bool isFolder = false;
    std::uint64_t mount = 0; // the mount it is reached through, 0 where the system does not tell
    std::uint32_t linkCount = 0;
    FolderIdentity identity{};
};

// Looks without opening, without following a link, without mounting on demand and without asking a server.
FolderFacts factsInside(OpenFolder const& parent, char const* name);
FolderFacts factsOf(OpenFolder const& folder);

// An item that was listed a moment ago and now is gone, or is no folder any more.
bool meansVanished(int error);

} // namespace mac

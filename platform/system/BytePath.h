#pragma once

#include <string>
#include <string_view>

namespace mac {

// A path in the file system's bytes, told apart by its text alone: nothing is looked up, "." and ".." are names like
// others. Like std::string_view it does not own the bytes. Slashes at the end of a path do not count.
class BytePath {
public:
    BytePath(std::string_view bytes) : m_bytes(withoutTrailingSlashes(bytes)) {}
    BytePath(std::string const& bytes) : BytePath(std::string_view(bytes)) {}
    BytePath(char const* bytes) : BytePath(std::string_view(bytes)) {}

    // Without slashes at its end; "/" for the root.
    std::string_view bytes() const { return m_bytes; }
    bool isAbsolute() const { return m_bytes.starts_with('/'); }

    // "c" of "/a/b/c"; empty for the root.
    std::string_view leaf() const { return m_bytes.substr(leafPosition()); }
    // "/a/b" of "/a/b/c", "/" of "/a" and of the root; empty for a path without slash.
    std::string_view parent() const {
        std::size_t const end = leafPosition();
        return end == 0 ? std::string_view() : withoutTrailingSlashes(m_bytes.substr(0, end));
    }

    // The path with a slash and the component behind it: "/a" and "b" give "/a/b", "/" and "b" give "/b", an empty path
    // and "b" give "b".
    std::string joined(std::string_view component) const;

    // Whether it is the folder's path, or begins with all of the folder's components: "/a/b" is below "/a" and below
    // "/", "/ab" is not below "/a".
    bool isAtOrBelow(BytePath folder) const { return m_bytes == folder.m_bytes || isBelow(folder); }
    bool isBelow(BytePath folder) const { return !belowFolder(folder).empty(); }
    // "b/c" of "/a/b/c" below "/a"; empty for a path that is not below the folder.
    std::string_view belowFolder(BytePath folder) const;

private:
    static std::string_view withoutTrailingSlashes(std::string_view bytes) {
        while (bytes.size() > 1 && bytes.ends_with('/'))
            bytes.remove_suffix(1);
        return bytes;
    }
    std::size_t leafPosition() const { return m_bytes == "/" ? 1 : m_bytes.rfind('/') + 1; }

    std::string_view m_bytes;
};

// Appends a component in place: "/a" becomes "/a/b", "/" becomes "/b", an empty path becomes "b".
void appendComponent(std::string& path, std::string_view component);

} // namespace mac

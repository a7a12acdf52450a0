#pragma once

#include <string>
#include <string_view>

namespace mac::test {

// Lets the owner list and change the folder and all folders in it, on the same volume, so that they can be removed.
void openFolders(std::string const& path);

// A fresh folder that goes, with everything in it, when the object does, also what its permissions close to its owner.
// Names are bytes.
class TemporaryFolder {
public:
    TemporaryFolder();
    // Makes the fresh folder in the given one.
    explicit TemporaryFolder(std::string const& base);
    ~TemporaryFolder();
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;

    std::string const& path() const { return m_path; }
    // The path of something in the folder.
    std::string path(std::string_view relative) const { return m_path + "/" + std::string(relative); }
    // Makes the folder and those above it; answers its path.
    std::string makeFolder(std::string_view relative) const;
    // Writes a file, with the folders above it; answers its path.
    std::string makeFile(std::string_view relative, std::string_view contents) const;
    // Makes a bundle with a Contents/Info.plist of the given text; answers its path.
    std::string makeBundle(std::string_view relative, std::string_view informationFile) const;

private:
    std::string m_path;
};

// An XML information file of an application with these values; empty ones are left out.
std::string informationFile(std::string_view identifier, std::string_view shortVersion, std::string_view version);

} // namespace mac::test

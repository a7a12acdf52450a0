#pragma once

#include "platform/foundation/text/Encodings.h"
#include "tests/support/Commands.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <algorithm>

namespace mac::applescript::test {

// A home of its own with a few files, for scripts that tell applications about files.
class ScriptHome {
public:
    ScriptHome() {
        m_folder.makeFolder("Desktop");
        m_folder.makeFolder("Empty");
        m_folder.makeFile("Documents/f1.txt", "1");
        m_folder.makeFile("Documents/f2.txt", "22");
        m_folder.makeFile("Documents/f10.txt", "1010101010");
        m_folder.makeFile("Documents/Inner/deep.md", "deep");
        m_folder.makeFile("Desktop/Mirror.app/Contents/Info.plist", "");
    }

    std::string const& path() const { return m_folder.path(); }
    std::string path(std::string_view relative) const { return m_folder.path(relative); }
    mac::test::TemporaryFolder const& folder() const { return m_folder; }
    // The user's list of the desktop's folders: XDG_DESKTOP_DIR="$HOME/Schreibtisch".
    void setDesktopFolders(std::string const& list) const { m_folder.makeFile(".config/user-dirs.dirs", list); }

private:
    mac::test::TemporaryFolder m_folder{};
    mac::test::EnvironmentVariable m_home{"HOME", m_folder.path()};
    mac::test::EnvironmentVariable m_data{"XDG_DATA_HOME", m_folder.path(".local/share")};
    mac::test::EnvironmentVariable m_settings{"XDG_CONFIG_HOME", m_folder.path(".config")};
    // Nothing that the computer starts at log-in.
    mac::test::EnvironmentVariable m_otherSettings{"XDG_CONFIG_DIRS", m_folder.path("none")};
    // The trashes of other volumes are not this home's.
    mac::test::EnvironmentVariable m_computer{"FRAMEKEEPER_LOCAL_COMPUTER", m_folder.path()};
    // No program of this computer.
    mac::test::EnvironmentVariable m_otherData{"XDG_DATA_DIRS", m_folder.path("none")};
    mac::test::EnvironmentVariable m_programs{"PATH", m_folder.path("bin")};
    // What folders of the desktop there are, only this home's own list says.
    mac::test::EnvironmentVariable m_desktop{"XDG_DESKTOP_DIR", ""};
};

// What HFS paths on this computer begin with, as another program tells it: the label of the volume at the root, or
// "Macintosh HD" for one without. A colon, which would end the name, is a slash there.
inline std::u16string const& nameOfStartupVolume() {
    static std::u16string const name = [] {
        std::string label = mac::test::outputOf({"/usr/bin/findmnt", "--noheadings", "--output", "LABEL", "/"});
        label.erase(std::min(label.find('\n'), label.size()));
        std::u16string units = label.empty() ? u"Macintosh HD" : unitsFromFileSystemBytes(label);
        std::ranges::replace(units, u':', u'/');
        return units;
    }();
    return name;
}

} // namespace mac::applescript::test

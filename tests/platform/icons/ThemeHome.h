#pragma once

#include "platform/icons/Picture.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <gtest/gtest.h>

namespace mac::test {

// A home whose icon themes are those that the test puts there; none is chosen.
class ThemeHome : public testing::Test {
protected:
    // A PNG file of one colour.
    static std::string pictureFile(int side, std::uint32_t pixel) {
        Picture picture = emptyPicture(side, side);
        picture.pixels.assign(picture.pixels.size(), pixel);
        std::vector<std::byte> const bytes = contentsOfPNG(picture);
        return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
    }
    // A theme with a folder for pictures of 16 pixels and one for those of 48; further lines of the index's first
    // group.
    void makeTheme(std::string const& name, std::string const& lines = "") const {
        m_folder.makeFile(
            "data/icons/" + name + "/index.theme",
            "[Icon Theme]\nName=" + name + "\nDirectories=small,large\n" + lines +
                "\n[small]\nSize=16\nType=Fixed\n[large]\nSize=48\nType=Scalable\nMinSize=40\nMaxSize=64\n");
    }
    void makeIcon(std::string const& place, int side, std::uint32_t pixel) const {
        m_folder.makeFile("data/icons/" + place + ".png", pictureFile(side, pixel));
    }
    // The first pixel of the pictures of 16 pixels; 0 for no pictures.
    static std::uint32_t pixelOf(std::vector<SharedPicture> const& pictures) {
        return pictures.empty() ? 0 : pictures.front()->pixels.front();
    }

    TemporaryFolder const m_folder{};

private:
    EnvironmentVariable const m_home{"HOME", m_folder.path()};
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.path("data")};
    EnvironmentVariable const m_dataFolders{"XDG_DATA_DIRS", m_folder.path("none")};
    EnvironmentVariable const m_config{"XDG_CONFIG_HOME", m_folder.path("config")};
    EnvironmentVariable const m_configFolders{"XDG_CONFIG_DIRS", m_folder.path("none")};
    EnvironmentVariable const m_desktop{"XDG_CURRENT_DESKTOP", std::nullopt};
};

} // namespace mac::test

#pragma once

#include "platform/desktop/autostart/Autostart.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryFolder.h"
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace mac::test {

// Folders of autostart entries that hold only what the test puts there.
class AutostartFolders : public testing::Test {
protected:
    static std::string entry(std::string const& command, std::string const& rest = "") {
        return "[Desktop Entry]\nType=Application\nName=Item\nExec=" + command + "\n" + rest;
    }
    void addOfUser(std::string const& name, std::string const& text) const {
        m_folder.makeFile("config/autostart/" + name, text);
    }
    void addOfSystem(std::string const& name, std::string const& text) const {
        m_folder.makeFile("system/autostart/" + name, text);
    }
    std::string pathOfUser(std::string const& name) const { return m_folder.path("config/autostart/" + name); }
    static std::string contentsOf(std::string const& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    std::vector<std::string> namesOfUser() const {
        std::vector<std::string> names;
        for (auto const& file : std::filesystem::directory_iterator(m_folder.path("config/autostart")))
            names.push_back(file.path().filename());
        return names;
    }
    // The names of the items' files without ".desktop", in their order.
    static std::vector<std::string> items() {
        std::vector<std::string> names;
        for (AutostartItem const& item : autostartItems().items)
            names.push_back(item.fileName.substr(0, item.fileName.rfind('.')));
        return names;
    }

    TemporaryFolder const m_folder{};

private:
    EnvironmentVariable const m_config{"XDG_CONFIG_HOME", m_folder.path("config")};
    EnvironmentVariable const m_configFolders{"XDG_CONFIG_DIRS", m_folder.path("system")};
    EnvironmentVariable const m_data{"XDG_DATA_HOME", m_folder.path("data")};
    EnvironmentVariable const m_dataFolders{"XDG_DATA_DIRS", m_folder.path("share")};
    EnvironmentVariable const m_desktop{"XDG_CURRENT_DESKTOP", ""};
};

using Names = std::vector<std::string>;

} // namespace mac::test

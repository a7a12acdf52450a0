#pragma once

#include "tests/support/TemporaryFolder.h"
#include "tests/support/Texts.h"
#include <gtest/gtest.h>
#include <stdexcept>
#include <unistd.h>

namespace mac::test {

// A fixture with a file in a folder, links to both, and a link that leads nowhere.
class FolderWithLinks : public testing::Test {
protected:
    FolderWithLinks() {
        m_folder.makeFile("folder/file", "contents");
        link("folder/file", "link");
        link("folder", "folderLink");
        link("nowhere", "lost");
    }

    void link(char const* target, char const* name) const {
        if (::symlink(target, m_folder.path(name).c_str()) != 0) throw std::runtime_error("no link");
    }
    NSString at(std::string_view name) const { return path(m_folder.path(name)); }

    TemporaryFolder const m_folder{};
};

} // namespace mac::test

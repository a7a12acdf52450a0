#pragma once

#include "platform/foundation/text/Localization.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace framekeeper::test {

// The program's catalogue for German, for as long as it lives.
class InGerman {
public:
    InGerman() {
        std::string const folder = mac::localizationFolder(std::filesystem::read_symlink("/proc/self/exe"));
        EXPECT_EQ(mac::loadLocalization(folder, {"de"}), "de");
    }
    ~InGerman() { mac::loadLocalization("", {}); }
    InGerman(InGerman const&) = delete;
    InGerman& operator=(InGerman const&) = delete;
};

} // namespace framekeeper::test

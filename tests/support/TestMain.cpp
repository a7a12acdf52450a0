#include "tests/support/TemporaryFolder.h"
#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>

// Every test program gets a home of its own, and takes the locale that it is run under.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    std::setlocale(LC_ALL, "");
    mac::test::TemporaryFolder const home;
    ::setenv("HOME", home.path().c_str(), 1);
    for (char const* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"})
        ::unsetenv(name);
    return RUN_ALL_TESTS();
}

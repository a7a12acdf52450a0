#include "tests/support/TestRun.h"
#include "tests/support/TemporaryFolder.h"
#include <clocale>
#include <cstdlib>

namespace mac::test {

int runTests(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    std::setlocale(LC_ALL, "");
    TemporaryFolder const home;
    ::setenv("HOME", home.path().c_str(), 1);
    for (char const* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"})
        ::unsetenv(name);
    return RUN_ALL_TESTS();
}

} // namespace mac::test

#include "tests/app/PathSources.h"

namespace framekeeper::test {

INSTANTIATE_TEST_SUITE_P(ToolbarItems, PathSources,
                         testing::Values(PathSource{"ToolbarItems", "isInToolbarPaths", "toolbarItem",
                                                    &AppController::syncIsInToolbar}));

} // namespace framekeeper::test

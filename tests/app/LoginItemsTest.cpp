#include "tests/app/PathSources.h"

namespace framekeeper::test {

INSTANTIATE_TEST_SUITE_P(LoginItems, PathSources,
                         testing::Values(PathSource{"LoginItems", "isAutolaunchedPaths", "autolaunchItem",
                                                    &AppController::syncIsAutolaunched}));

} // namespace framekeeper::test

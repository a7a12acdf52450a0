#include "command/Outcome.h"
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace framekeeper::test {
namespace {

TEST(CommandOutcome, HasAnExitStatusAndANameForEachStatus) {
    std::set<int> exits;
    std::set<std::string> found;
    for (int status = 0; status <= static_cast<int>(Status::Interrupted); ++status) {
        exits.insert(exitStatusOf(static_cast<Status>(status)));
        found.insert(nameOf(static_cast<Status>(status)));
    }
    EXPECT_EQ(exits, (std::set{0, 1, 3, 4, 5, 6, 130}));
    EXPECT_EQ(found.size(), exits.size());
    EXPECT_EQ(exitStatusOf(Status::Done), 0);
}

TEST(CommandOutcome, IsTheWorstOfSeveral) {
    EXPECT_EQ(worse(Status::Done, Status::NotShown), Status::NotShown);
    EXPECT_EQ(worse(Status::Failed, Status::NoSuchCopy), Status::Failed);
    EXPECT_EQ(worse(Status::Interrupted, Status::Failed), Status::Interrupted);
}

} // namespace
} // namespace framekeeper::test

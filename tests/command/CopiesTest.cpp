#include "command/Copies.h"
#include "tests/command/CommandRun.h"

namespace framekeeper::test {
namespace {

class CommandCopies : public CommandTest {};

TEST_F(CommandCopies, AreThereWhenTheSearchEnds) {
    copyAt("a", "1");
    copyAt("b", "2");
    Copies const copies;
    EXPECT_TRUE(copies.search([](std::size_t) {}));
    copies.finishSearch();
    ASSERT_EQ(copies.records().count(), 2U);
    EXPECT_EQ(text(as<NSString>(copies.records().objectAtIndex_(0).valueForKey_("version"))), "2");
}

TEST_F(CommandCopies, AreLookedAtWithoutASearch) {
    NSString const path = pathString(copyAt("a"));
    copyAt("b");
    Copies const copies;
    copies.look(NSArray::arrayWithObject_(path));
    EXPECT_EQ(copies.records().count(), 1U);
    EXPECT_FALSE(copies.recordOf(path) == nil);
    EXPECT_TRUE(copies.recordOf("/elsewhere") == nil);
    EXPECT_TRUE(copies.select(NSArray::arrayWithObject_(path)));
    EXPECT_FALSE(copies.select(NSArray::arrayWithObject_("/elsewhere")));
    EXPECT_TRUE(isCopyAt(path));
    EXPECT_FALSE(isCopyAt("/elsewhere"));
    EXPECT_FALSE(isCopyAt(nil));
}

TEST_F(CommandCopies, AreFoundByTheVeryPathFirst) {
    NSString const path = pathString(copyAt("a"));
    NSString const same = pathString(home("./a/Mirror Frame.app"));
    Copies const copies;
    copies.look(NSArray::arrayWithObjects_({same, path}));
    ASSERT_EQ(copies.records().count(), 2U);
    EXPECT_EQ(text(as<NSString>(copies.recordOf(path).objectForKey_("path"))), text(path));
    EXPECT_EQ(text(as<NSString>(copies.recordOf(same).objectForKey_("path"))), text(same));
    copies.look(NSArray::arrayWithObject_(same));
    EXPECT_EQ(text(as<NSString>(copies.recordOf(path).objectForKey_("path"))), text(same));
}

TEST_F(CommandCopies, HaveTheBytesOfTheirPaths) {
    EXPECT_EQ(bytesOfPath(absolutePath("/nonexistent/\xff")), "/nonexistent/\xff");
    EXPECT_EQ(bytesOfPath(absolutePath(home("/"))), bytesOfPath(absolutePath(home())));
    EXPECT_EQ(bytesOfPath(nil), "");
}

} // namespace
} // namespace framekeeper::test

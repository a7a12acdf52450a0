#include "platform/appkit/arrangement/NSArrayController.h"
#include "platform/appkit/arrangement/KeyPathObserver.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Exceptions.h"
#include "tests/platform/appkit/interface/FakeController.h"
#include "tests/support/ObjectTexts.h"
#include <gtest/gtest.h>

namespace mac::test {
namespace {

NSArrayController makeController(std::initializer_list<char const*> paths) {
    NSArrayController const controller = NSArrayController::alloc().init();
    controller.setIdentityKeyPath("path");
    controller.setSortDescriptors_(
        NSArray::arrayWithObject_(NSSortDescriptor::sortDescriptorWithKey_ascending_("path", YES)));
    controller.setContent_(makeRecords(paths));
    return controller;
}

std::string pathsOf(NSArray const& records) { return joined(as<NSArray>(records.valueForKey_("path"))); }

NSArray recordsNamed(NSArrayController const& controller, std::initializer_list<char const*> paths) {
    NSMutableArray const result = NSMutableArray::array();
    for (id const& record : controller.arrangedObjects()) {
        for (char const* const path : paths) {
            if (as<NSString>(record.valueForKey_("path")).isEqualToString_(NSString::stringWithUTF8String_(path)))
                result.addObject_(record);
        }
    }
    return result;
}

TEST(NSArrayController, SortsItsContent) {
    EXPECT_EQ(pathsOf(makeController({"/c", "/a", "/b"}).arrangedObjects()), "/a /b /c");
}

TEST(NSArrayController, KeepsTheOrderOfAnArrayWithoutSortDescriptors) {
    NSArrayController const controller = NSArrayController::alloc().init();
    controller.setContent_(NSArray::arrayWithObjects_({"b", "a", "b"}));
    EXPECT_EQ(joined(controller.arrangedObjects()), "b a b");
}

TEST(NSArrayController, KeepsAnObjectThatStandsTwiceInItsContentTwiceWhenSorted) {
    NSArrayController const controller = makeController({});
    NSMutableDictionary const record = makeRecord("/b");
    controller.setContent_(NSArray::arrayWithObjects_({record, makeRecord("/a"), record}));
    EXPECT_EQ(pathsOf(controller.arrangedObjects()), "/a /b /b");
}

TEST(NSArrayController, FollowsTheKeyPathItIsBoundTo) {
    FakeController const source = FakeController::alloc().init();
    NSArrayController const controller = makeController({});
    controller.bind_toObject_withKeyPath_options_("contentSet", source, "paths", nil);
    source.setPaths_(makeRecords({"/b", "/a"}));
    EXPECT_EQ(pathsOf(controller.arrangedObjects()), "/a /b");
    source.setValue_forKey_(makeRecords({"/c"}), "paths");
    EXPECT_EQ(pathsOf(controller.arrangedObjects()), "/c");
    source.setPaths_(nil);
    EXPECT_EQ(controller.arrangedObjects().count(), 0U);
    EXPECT_TRUE(controller.content() == nil);
}

TEST(NSArrayController, StopsFollowingWhenUnbound) {
    FakeController const source = FakeController::alloc().init();
    NSArrayController const controller = makeController({});
    controller.bind_toObject_withKeyPath_options_("contentSet", source, "paths", nil);
    source.setPaths_(makeRecords({"/a"}));
    controller.unbind_("contentSet");
    source.setPaths_(makeRecords({"/b"}));
    EXPECT_EQ(pathsOf(controller.arrangedObjects()), "/a");
}

TEST(NSArrayController, RaisesForABindingItDoesNotHave) {
    NSArrayController const controller = makeController({});
    EXPECT_THROW(controller.bind_toObject_withKeyPath_options_("contents", controller, "content", nil),
                 NSInvalidArgumentException);
}

TEST(NSArrayController, RaisesForContentThatIsNoCollectionAndKeepsTheOldOne) {
    NSArrayController const controller = makeController({"/a"});
    EXPECT_THROW(controller.setContent_("text"), NSInvalidArgumentException);
    EXPECT_EQ(pathsOf(controller.arrangedObjects()), "/a");
}

TEST(NSArrayController, SelectsNothingByItself) {
    NSArrayController const controller = makeController({"/a"});
    EXPECT_EQ(controller.selectedObjects().count(), 0U);
    EXPECT_EQ(controller.selectionIndex(), NSNotFound);
}

TEST(NSArrayController, AnswersTheSelectedObjectsInTheirOrder) {
    NSArrayController const controller = makeController({"/a", "/b", "/c"});
    EXPECT_TRUE(controller.setSelectedObjects_(recordsNamed(controller, {"/c", "/b"})));
    EXPECT_EQ(pathsOf(controller.selectedObjects()), "/b /c");
    EXPECT_EQ(controller.selectionIndex(), 1U);
}

TEST(NSArrayController, RefusesToSelectObjectsThatAreNotArranged) {
    NSArrayController const controller = makeController({"/a"});
    controller.setSelectedObjects_(recordsNamed(controller, {"/a"}));
    EXPECT_FALSE(controller.setSelectedObjects_(NSArray::arrayWithObject_(makeRecord("/x"))));
    EXPECT_EQ(pathsOf(controller.selectedObjects()), "/a");
}

TEST(NSArrayController, SelectsTheNewObjectOfTheSameIdentityWhenTheContentIsReplaced) {
    NSArrayController const controller = makeController({"/b", "/c"});
    controller.setSelectedObjects_(recordsNamed(controller, {"/b"}));
    id const before = controller.selectedObjects().objectAtIndex_(0);
    controller.setContent_(makeRecords({"/a", "/b", "/c"}));
    EXPECT_EQ(pathsOf(controller.selectedObjects()), "/b");
    EXPECT_EQ(controller.selectionIndex(), 1U);
    EXPECT_FALSE(isSame(controller.selectedObjects().objectAtIndex_(0), before));
}

TEST(NSArrayController, ForgetsTheSelectionOfRemovedObjects) {
    NSArrayController const controller = makeController({"/a", "/b"});
    controller.setSelectedObjects_(recordsNamed(controller, {"/b"}));
    controller.setContent_(makeRecords({"/a"}));
    controller.setContent_(makeRecords({"/a", "/b"}));
    EXPECT_EQ(controller.selectedObjects().count(), 0U);
}

TEST(NSArrayController, SelectsAgainWhatComesBackAfterTheContentWasUnknown) {
    NSArrayController const controller = makeController({"/a", "/b", "/c"});
    controller.setSelectedObjects_(recordsNamed(controller, {"/a", "/c"}));
    controller.setContent_(nil);
    EXPECT_EQ(controller.selectedObjects().count(), 0U);
    controller.setContent_(makeRecords({}));
    controller.setContent_(makeRecords({"/b", "/c"}));
    EXPECT_EQ(pathsOf(controller.selectedObjects()), "/c");
    controller.setContent_(makeRecords({"/a", "/b", "/c"}));
    EXPECT_EQ(pathsOf(controller.selectedObjects()), "/a /c");
}

TEST(NSArrayController, StopsAwaitingOnceSomethingIsSelected) {
    NSArrayController const controller = makeController({"/a", "/b"});
    controller.setSelectedObjects_(recordsNamed(controller, {"/a"}));
    controller.setContent_(nil);
    controller.setContent_(makeRecords({"/b"}));
    controller.setSelectedObjects_(recordsNamed(controller, {"/b"}));
    controller.setContent_(makeRecords({"/a", "/b"}));
    EXPECT_EQ(pathsOf(controller.selectedObjects()), "/b");
}

TEST(NSArrayController, WithoutAnIdentityKeepsOnlyTheVerySameObjectSelected) {
    NSArrayController const controller = NSArrayController::alloc().init();
    NSMutableDictionary const kept = makeRecord("/a");
    controller.setContent_(NSArray::arrayWithObjects_({kept, makeRecord("/b")}));
    controller.setSelectedObjects_(controller.arrangedObjects());
    controller.setContent_(NSArray::arrayWithObjects_({makeRecord("/b"), kept}));
    EXPECT_EQ(pathsOf(controller.selectedObjects()), "/a");
}

TEST(NSArrayController, ShowsWhatPassesTheFilter) {
    NSArrayController const controller = makeController({"/a", "/b"});
    controller.setFilterPredicate_(NSPredicate::predicateWithFormat_("path == %@", "/b"));
    EXPECT_EQ(pathsOf(controller.arrangedObjects()), "/b");
    controller.setFilterPredicate_(nil);
    EXPECT_EQ(pathsOf(controller.arrangedObjects()), "/a /b");
}

TEST(NSArrayController, SelectsNothingThatTheFilterHides) {
    NSArrayController const controller = makeController({"/a", "/b"});
    controller.setSelectedObjects_(controller.arrangedObjects());
    controller.setFilterPredicate_(NSPredicate::predicateWithFormat_("path == %@", "/b"));
    EXPECT_EQ(pathsOf(controller.selectedObjects()), "/b");
    controller.setFilterPredicate_(nil);
    EXPECT_EQ(pathsOf(controller.selectedObjects()), "/b");
}

TEST(NSArrayController, KeepsTheSelectionWhenTheOrderChanges) {
    NSArrayController const controller = makeController({"/a", "/b", "/c"});
    controller.setSelectedObjects_(recordsNamed(controller, {"/a"}));
    controller.setSortDescriptors_(
        NSArray::arrayWithObject_(NSSortDescriptor::sortDescriptorWithKey_ascending_("path", NO)));
    EXPECT_EQ(pathsOf(controller.arrangedObjects()), "/c /b /a");
    EXPECT_EQ(controller.selectionIndex(), 2U);
}

TEST(NSArrayController, StaysAsItWasWhenAFilterCannotBeEvaluated) {
    NSArrayController const controller = NSArrayController::alloc().init();
    controller.setContent_(NSArray::arrayWithObject_(FakeQuery(adopt<FakeQuery>())));
    EXPECT_THROW(controller.setFilterPredicate_(NSPredicate::predicateWithFormat_("colour == 1")),
                 NSUndefinedKeyException);
    EXPECT_TRUE(controller.filterPredicate() == nil);
    EXPECT_EQ(controller.arrangedObjects().count(), 1U);
}

TEST(NSArrayController, RearrangesObjectsThatWereChangedInPlace) {
    NSArrayController const controller = makeController({"/a", "/b"});
    controller.arrangedObjects().objectAtIndex_(0).setValue_forKey_("/z", "path");
    EXPECT_EQ(pathsOf(controller.arrangedObjects()), "/z /b");
    controller.rearrangeObjects();
    EXPECT_EQ(pathsOf(controller.arrangedObjects()), "/b /z");
}

struct Change {
    char const* key;
    char const* cause;
};

class NSArrayControllerKey : public testing::TestWithParam<Change> {};

TEST_P(NSArrayControllerKey, IsToldToObserversOncePerChange) {
    NSArrayController const controller = makeController({"/a"});
    int told = 0;
    KeyPathObserver const observer(controller, NSString::stringWithUTF8String_(GetParam().key), [&] { ++told; });
    std::string const cause = GetParam().cause;
    if (cause == "content") controller.setContent_(makeRecords({"/b"}));
    if (cause == "selection") controller.setSelectedObjects_(controller.arrangedObjects());
    if (cause == "filter") controller.setFilterPredicate_(NSPredicate::predicateWithValue_(NO));
    if (cause == "order") controller.setSortDescriptors_(NSArray::array());
    EXPECT_EQ(told, 1);
}

INSTANTIATE_TEST_SUITE_P(All, NSArrayControllerKey,
                         testing::Values(Change{"content", "content"}, Change{"arrangedObjects", "content"},
                                         Change{"arrangedObjects", "filter"}, Change{"arrangedObjects", "order"},
                                         Change{"sortDescriptors", "order"}, Change{"filterPredicate", "filter"},
                                         Change{"count", "filter"}, Change{"contentCount", "content"},
                                         Change{"isEmpty", "content"}, Change{"isFilteredToNothing", "filter"},
                                         Change{"selectedObjects", "selection"}, Change{"selectionIndex", "selection"},
                                         Change{"selectionCount", "selection"}, Change{"hasSelection", "selection"},
                                         Change{"hasSingleSelection", "selection"}),
                         [](auto const& tested) { return std::string(tested.param.key) + "_" + tested.param.cause; });

TEST(NSArrayController, CountsForLabelsAndButtons) {
    NSArrayController const controller = makeController({"/a", "/b"});
    auto const number = [&](char const* key) {
        return as<NSNumber>(controller.valueForKey_(NSString::stringWithUTF8String_(key))).intValue();
    };
    controller.setFilterPredicate_(NSPredicate::predicateWithFormat_("path == %@", "/b"));
    controller.setSelectedObjects_(controller.arrangedObjects());
    EXPECT_EQ(number("contentCount"), 2);
    EXPECT_EQ(number("count"), 1);
    EXPECT_EQ(number("selectionCount"), 1);
    EXPECT_EQ(number("hasSingleSelection"), 1);
    EXPECT_EQ(number("isFilteredToNothing"), 0);
    controller.setFilterPredicate_(NSPredicate::predicateWithValue_(NO));
    EXPECT_EQ(number("isFilteredToNothing"), 1);
    EXPECT_EQ(number("isEmpty"), 0);
    EXPECT_EQ(number("hasSelection"), 0);
}

TEST(NSArrayController, AnswersNothingForNil) {
    NSArrayController const controller = nil;
    controller.setContent_(NSArray::array());
    EXPECT_TRUE(controller.arrangedObjects() == nil);
    EXPECT_TRUE(controller.selectedObjects() == nil);
    EXPECT_FALSE(controller.setSelectedObjects_(NSArray::array()));
}

} // namespace
} // namespace mac::test

#include "platform/foundation/numbers/NSNumber.h"
#include "tests/platform/appkit/arrangement/NumberedRecords.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/RunUntil.h"
#include <QHeaderView>
#include <QLineEdit>
#include <QTest>
#include <gtest/gtest.h>
#include <string>

namespace mac::test {
namespace {

class ArrayControllerSteps : public testing::Test {
protected:
    void SetUp() override {
        needApplication();
        m_controller.setIdentityKeyPath("path");
        m_controller.setSortDescriptors_(byNumber(YES));
        m_controller.setContent_(numberedRecords(ManyRows));
    }

    void filterInSteps(char const* version) {
        bodyOf(m_controller)
            ->changeInSteps({.filter = NSPredicate::predicateWithFormat_("version == %@",
                                                                         NSString::stringWithUTF8String_(version))});
    }
    void sortInSteps(BOOL ascending) { bodyOf(m_controller)->changeInSteps({.sortDescriptors = byNumber(ascending)}); }
    NSUInteger count() const { return m_controller.arrangedObjects().count(); }
    std::string pathAt(NSUInteger row) const {
        return text(m_controller.arrangedObjects().objectAtIndex_(row).valueForKey_("path"));
    }
    bool runUntilCount(NSUInteger wanted) const {
        return runUntil([&] { return count() == wanted; });
    }

    NSArrayController m_controller = NSArrayController::alloc().init();
};

TEST_F(ArrayControllerSteps, FilterManyObjectsBetweenEventsAndKeepTheSelection) {
    filterInSteps("1");
    EXPECT_EQ(count(), static_cast<NSUInteger>(ManyRows)) << "the first step shows nothing yet";
    EXPECT_TRUE(m_controller.filterPredicate() == nil);
    // A selection that the user makes between two steps is kept.
    m_controller.setSelectedObjects_(NSArray::arrayWithObjects_(
        {m_controller.arrangedObjects().objectAtIndex_(4), m_controller.arrangedObjects().objectAtIndex_(5)}));
    ASSERT_TRUE(runUntilCount(ManyRows / 2));
    EXPECT_FALSE(m_controller.filterPredicate() == nil);
    EXPECT_EQ(pathAt(0), "/copies/100001");
    EXPECT_EQ(pathAt(1), "/copies/100003");
    ASSERT_EQ(m_controller.selectedObjects().count(), 1U);
    EXPECT_EQ(text(m_controller.selectedObjects().objectAtIndex_(0).valueForKey_("path")), "/copies/100005");
}

TEST_F(ArrayControllerSteps, SortManyObjectsBetweenEvents) {
    sortInSteps(NO);
    EXPECT_EQ(pathAt(0), "/copies/100000");
    EXPECT_TRUE(m_controller.sortDescriptors().isEqual_(byNumber(YES)));
    EXPECT_TRUE(bodyOf(m_controller)->wantedSortDescriptors().isEqual_(byNumber(NO)));
    ASSERT_TRUE(runUntil([&] { return m_controller.sortDescriptors().isEqual_(byNumber(NO)); }));
    NSArray const arranged = m_controller.arrangedObjects();
    ASSERT_EQ(arranged.count(), static_cast<NSUInteger>(ManyRows));
    EXPECT_TRUE(arranged.isEqualToArray_(
        as<NSSet>(m_controller.content()).allObjects().sortedArrayUsingDescriptors_(byNumber(NO))));
}

TEST_F(ArrayControllerSteps, AddWhatIsAskedForMeanwhile) {
    filterInSteps("0");
    sortInSteps(NO);
    filterInSteps("1");
    ASSERT_TRUE(runUntilCount(ManyRows / 2));
    EXPECT_EQ(pathAt(1), "/copies/" + std::to_string(100'000 + ManyRows - 4));
    EXPECT_TRUE(m_controller.sortDescriptors().isEqual_(byNumber(NO)));
}

TEST_F(ArrayControllerSteps, BeginAnewWithAContentThatIsSetMeanwhile) {
    filterInSteps("1");
    m_controller.setContent_(numberedRecords(ManyRows + 2));
    EXPECT_EQ(count(), static_cast<NSUInteger>(ManyRows + 2)) << "it is shown as before at first";
    ASSERT_TRUE(runUntilCount(ManyRows / 2 + 1));
    EXPECT_EQ(pathAt(0), "/copies/100001");
}

TEST_F(ArrayControllerSteps, AreFinishedByASetterAtOnce) {
    sortInSteps(NO);
    m_controller.setFilterPredicate_(NSPredicate::predicateWithFormat_("version == '1'"));
    EXPECT_EQ(count(), static_cast<NSUInteger>(ManyRows / 2));
    EXPECT_TRUE(m_controller.sortDescriptors().isEqual_(byNumber(NO)));
}

TEST_F(ArrayControllerSteps, ShowFewObjectsAtOnce) {
    m_controller.setContent_(numberedRecords(10));
    filterInSteps("1");
    EXPECT_EQ(count(), 5U);
    sortInSteps(NO);
    EXPECT_EQ(pathAt(0), "/copies/100009");
}

TEST_F(ArrayControllerSteps, LeaveEverythingAsItWasWhenAnObjectCannotBeRead) {
    NSArrayController const controller = NSArrayController::alloc().init();
    controller.setContent_(NSArray::arrayWithObject_(FakeQuery(adopt<FakeQuery>())));
    EXPECT_ANY_THROW(bodyOf(controller)->changeInSteps({.filter = NSPredicate::predicateWithFormat_("colour == 1")}));
    EXPECT_TRUE(controller.filterPredicate() == nil);
    EXPECT_EQ(controller.arrangedObjects().count(), 1U);
    bodyOf(controller)->changeInSteps({.filter = NSPredicate::predicateWithValue_(NO)});
    EXPECT_EQ(controller.arrangedObjects().count(), 0U);
}

// The window: a click on a header that comes again before the first one is worked off turns the order round.
TEST_F(ArrayControllerSteps, AnswerTwoClicksOnAHeaderInTurn) {
    LoadedWindow const window;
    window.controller().setPaths_(numberedRecords(ManyRows));
    QHeaderView* const header = window.table()->horizontalHeader();
    Q_EMIT header->sectionClicked(PathColumn);
    Q_EMIT header->sectionClicked(PathColumn);
    std::string const last = "/copies/" + std::to_string(100'000 + ManyRows - 1);
    EXPECT_TRUE(runUntil(
        [&] { return window.table()->model()->index(0, PathColumn).data().toString().toStdString() == last; }));
}

TEST_F(ArrayControllerSteps, TakeTheKeysOfAFilterAsTheyAreTyped) {
    LoadedWindow const window;
    window.controller().setPaths_(numberedRecords(ManyRows));
    auto* const field = window.find<QLineEdit>("filterField");
    QTest::keyClicks(field, "100012");
    EXPECT_EQ(field->text(), "100012");
    EXPECT_TRUE(runUntil([&] { return window.table()->model()->rowCount() == 1; }));
}

} // namespace
} // namespace mac::test

#include "platform/appkit/arrangement/ArrayControllerBody.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "tests/platform/appkit/interface/FakeController.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/RunUntil.h"
#include <QEventLoop>
#include <QHeaderView>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace mac::test {
namespace {

// Several steps.
constexpr int ManyRows = static_cast<int>(2 * NSArrayController::Body::RowsInStep + 7);

NSArray byNumber(BOOL ascending) {
    return NSArray::arrayWithObject_(NSSortDescriptor::sortDescriptorWithKey_ascending_("path", ascending));
}

// Paths of one length, so that their order as text is that of their numbers; odd ones have version 1, the others 0.
NSMutableDictionary numberedRecord(int number) {
    return makeRecord(NSString::stringWithFormat_("/copies/%d", 100'000 + number),
                      NSString::stringWithFormat_("%d", number % 2));
}

NSMutableSet numberedRecords(int count) {
    NSMutableSet const records = NSMutableSet::set();
    for (int number = 0; number < count; ++number)
        records.addObject_(numberedRecord(number));
    return records;
}

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

// Does the work in an event of a loop, as what the program does for its user is done.
void inEvent(std::function<void()> const& work) {
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] {
        work();
        loop.quit();
    });
    loop.exec();
}

// What a bound array controller shows, time after time.
class BoundContentInSteps : public testing::Test {
protected:
    void SetUp() override {
        m_controller.setIdentityKeyPath("path");
        m_controller.setSortDescriptors_(byNumber(YES));
        m_controller.bind_toObject_withKeyPath_options_("contentSet", m_owner, "paths", nil);
        m_counts.clear();
    }

    std::string pathAt(NSUInteger row) const {
        return text(m_controller.arrangedObjects().objectAtIndex_(row).valueForKey_("path"));
    }

    LoadedWindow m_window;
    FakeController m_owner = m_window.controller();
    NSArrayController m_controller = NSArrayController::alloc().init();
    std::vector<NSUInteger> m_counts;
    KeyPathObserver m_observer{m_controller, "arrangedObjects",
                               [this] { m_counts.push_back(m_controller.arrangedObjects().count()); }};
};

TEST_F(BoundContentInSteps, IsShownBetweenEventsWithTheSelectionOfThatTime) {
    m_owner.setPaths_(numberedRecords(10));
    inEvent([&] {
        m_owner.setPaths_(numberedRecords(ManyRows));
        EXPECT_EQ(m_controller.arrangedObjects().count(), 10U) << "the first step shows nothing yet";
        EXPECT_EQ(as<NSSet>(m_controller.content()).count(), 10U);
        m_controller.setSelectedObjects_(NSArray::arrayWithObject_(m_controller.arrangedObjects().objectAtIndex_(4)));
    });
    ASSERT_TRUE(runUntil([&] { return m_counts.back() == static_cast<NSUInteger>(ManyRows); }));
    EXPECT_EQ(m_counts, (std::vector<NSUInteger>{10, static_cast<NSUInteger>(ManyRows)}));
    EXPECT_TRUE(isSame(m_controller.content(), m_owner.paths()));
    EXPECT_EQ(pathAt(0), "/copies/100000");
    EXPECT_EQ(pathAt(ManyRows - 1), "/copies/" + std::to_string(100'000 + ManyRows - 1));
    ASSERT_EQ(m_controller.selectedObjects().count(), 1U);
    EXPECT_EQ(text(m_controller.selectedObjects().objectAtIndex_(0).valueForKey_("path")), "/copies/100004");
}

// Else a search that finds more and more copies would never show one.
TEST_F(BoundContentInSteps, IsWorkedOffBeforeTheLastOfThoseThatCameMeanwhile) {
    inEvent([&] {
        for (int const further : {0, 1, 2})
            m_owner.setPaths_(numberedRecords(ManyRows + further));
    });
    constexpr auto last = static_cast<NSUInteger>(ManyRows + 2);
    ASSERT_TRUE(runUntil([&] { return m_controller.arrangedObjects().count() == last; }));
    EXPECT_EQ(m_counts, (std::vector<NSUInteger>{ManyRows, last}));
}

TEST_F(BoundContentInSteps, GivesWayAtOnceToOneWithFewObjects) {
    inEvent([&] {
        m_owner.setPaths_(numberedRecords(ManyRows));
        m_owner.setPaths_(numberedRecords(ManyRows + 1));
        m_owner.setPaths_(numberedRecords(3));
        EXPECT_EQ(m_controller.arrangedObjects().count(), 3U);
        m_owner.setPaths_(nil);
        EXPECT_EQ(m_controller.arrangedObjects().count(), 0U);
        m_owner.setPaths_(numberedRecords(ManyRows + 2));
    });
    constexpr auto last = static_cast<NSUInteger>(ManyRows + 2);
    ASSERT_TRUE(runUntil([&] { return m_controller.arrangedObjects().count() == last; }));
    EXPECT_EQ(m_counts, (std::vector<NSUInteger>{3, 0, last}));
}

// An action that the user asks for once more must not find what the first one has done away with.
TEST_F(BoundContentInSteps, IsShownAtOnceWhileAnObjectIsSelected) {
    m_owner.setPaths_(numberedRecords(ManyRows));
    m_controller.setSelectedObjects_(NSArray::arrayWithObject_(m_controller.arrangedObjects().objectAtIndex_(4)));
    inEvent([&] {
        NSMutableSet const fewer = NSMutableSet::set();
        for (id const& record : m_owner.paths().allObjects()) {
            if (text(record.valueForKey_("path")) != "/copies/100004") fewer.addObject_(record);
        }
        m_owner.setPaths_(fewer);
        EXPECT_EQ(m_controller.arrangedObjects().count(), static_cast<NSUInteger>(ManyRows - 1));
        EXPECT_EQ(m_controller.selectedObjects().count(), 0U);
    });
}

TEST_F(BoundContentInSteps, IsShownThoughTheOneBeforeCannotBeRead) {
    NSMutableArray const unreadable = NSMutableArray::array();
    for (id const& record : numberedRecords(ManyRows).allObjects())
        unreadable.addObject_(record);
    // It has no path.
    unreadable.addObject_(FakeQuery(adopt<FakeQuery>()));
    inEvent([&] {
        bodyOf(m_controller)->changeContentInSteps(unreadable);
        m_owner.setPaths_(numberedRecords(ManyRows + 1));
    });
    constexpr auto last = static_cast<NSUInteger>(ManyRows + 1);
    ASSERT_TRUE(runUntil([&] { return m_controller.arrangedObjects().count() == last; }));
    EXPECT_EQ(m_counts, (std::vector<NSUInteger>{last}));
}

TEST_F(BoundContentInSteps, IsShownInTheOrderAndWithTheFilterThatWereAskedForMeanwhile) {
    inEvent([&] {
        m_owner.setPaths_(numberedRecords(ManyRows));
        bodyOf(m_controller)
            ->changeInSteps(
                {.sortDescriptors = byNumber(NO), .filter = NSPredicate::predicateWithFormat_("version == '1'")});
        EXPECT_EQ(m_controller.arrangedObjects().count(), 0U);
    });
    ASSERT_TRUE(runUntil([&] { return m_controller.arrangedObjects().count() > 0; }));
    EXPECT_EQ(m_counts, (std::vector<NSUInteger>{ManyRows / 2}));
    EXPECT_EQ(pathAt(0), "/copies/" + std::to_string(100'000 + ManyRows - 2));
    EXPECT_TRUE(m_controller.sortDescriptors().isEqual_(byNumber(NO)));
}

TEST_F(BoundContentInSteps, KeepsTheOrderWithoutSortingWhereLittleChanged) {
    m_owner.setPaths_(numberedRecords(ManyRows));
    inEvent([&] { m_owner.setPaths_(numberedRecords(ManyRows + 5)); });
    constexpr auto last = static_cast<NSUInteger>(ManyRows + 5);
    ASSERT_TRUE(runUntil([&] { return m_controller.arrangedObjects().count() == last; }));
    EXPECT_TRUE(m_controller.arrangedObjects().isEqualToArray_(
        m_owner.paths().allObjects().sortedArrayUsingDescriptors_(byNumber(YES))));
}

} // namespace
} // namespace mac::test

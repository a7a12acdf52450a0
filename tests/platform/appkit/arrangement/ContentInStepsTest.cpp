#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Method.h"
#include "tests/platform/appkit/arrangement/NumberedRecords.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/ObjectTexts.h"
#include "tests/support/RunUntil.h"
#include <QEventLoop>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace mac::test {
namespace {

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
    void select(std::vector<NSUInteger> rows) const { bodyOf(m_controller)->setSelectedRows(std::move(rows)); }
    // Empty unless one object is selected.
    std::string selectedPath() const {
        NSArray const selected = m_controller.selectedObjects();
        return selected.count() == 1 ? text(selected.objectAtIndex_(0).valueForKey_("path")) : "";
    }
    // The records of the owner without the one of that path.
    NSMutableSet recordsWithout(std::string const& path) const {
        NSMutableSet const others = NSMutableSet::set();
        for (id const& record : m_owner.paths().allObjects()) {
            if (text(record.valueForKey_("path")) != path) others.addObject_(record);
        }
        return others;
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
TEST_F(BoundContentInSteps, DeselectsAtOnceWhatHasGone) {
    m_owner.setPaths_(numberedRecords(ManyRows));
    select({4, 5});
    std::vector<NSUInteger> selected;
    KeyPathObserver const observer(m_controller, "selectedObjects",
                                   [&] { selected.push_back(m_controller.selectedObjects().count()); });
    inEvent([&] {
        m_owner.setPaths_(recordsWithout("/copies/100004"));
        EXPECT_EQ(selected, std::vector<NSUInteger>{1});
        EXPECT_EQ(m_controller.arrangedObjects().count(), static_cast<NSUInteger>(ManyRows)) << "rows follow in steps";
        EXPECT_EQ(selectedPath(), "/copies/100005");
    });
    ASSERT_TRUE(runUntil([&] { return m_counts.back() == static_cast<NSUInteger>(ManyRows - 1); }));
    EXPECT_EQ(m_counts, (std::vector<NSUInteger>{ManyRows, ManyRows - 1}));
    EXPECT_EQ(selectedPath(), "/copies/100005");
    EXPECT_EQ(bodyOf(m_controller)->selectedRows()[0], 4U);
}

TEST_F(BoundContentInSteps, GivesTheNewStateOfWhatIsSelectedAtOnce) {
    m_owner.setPaths_(numberedRecords(ManyRows));
    select({4});
    inEvent([&] {
        NSMutableSet const other = recordsWithout("/copies/100004");
        NSMutableDictionary const changed = makeRecord("/copies/100004", "9");
        other.addObject_(changed);
        m_owner.setPaths_(other);
        ASSERT_EQ(m_controller.selectedObjects().count(), 1U);
        EXPECT_TRUE(isSame(m_controller.selectedObjects().objectAtIndex_(0), changed));
        EXPECT_EQ(text(m_controller.valueForKeyPath_("selection.version")), "9");
    });
    ASSERT_TRUE(runUntil([&] { return m_counts.size() == 2; }));
    EXPECT_EQ(text(m_controller.valueForKeyPath_("selection.version")), "9");
}

// So it is with what the user selects while another content is being read or sorted.
TEST_F(BoundContentInSteps, DoesNotLeaveSelectedWhatHasGone) {
    m_owner.setPaths_(numberedRecords(ManyRows));
    inEvent([&] {
        m_owner.setPaths_(recordsWithout("/copies/100004"));
        select({4, 5});
        EXPECT_EQ(selectedPath(), "/copies/100005");
        select({4});
        EXPECT_EQ(m_controller.selectedObjects().count(), 0U);
    });
    ASSERT_TRUE(runUntil([&] { return m_counts.back() == static_cast<NSUInteger>(ManyRows - 1); }));
    EXPECT_EQ(m_controller.selectedObjects().count(), 0U);
}

TEST_F(BoundContentInSteps, IsShownAtOnceIfAnObjectIsSelectedAndAnotherOneIsUnderWay) {
    inEvent([&] {
        m_owner.setPaths_(numberedRecords(10));
        m_owner.setPaths_(numberedRecords(ManyRows));
        select({4});
        m_owner.setPaths_(numberedRecords(ManyRows + 1));
        EXPECT_EQ(m_counts.back(), static_cast<NSUInteger>(ManyRows + 1));
        m_owner.setPaths_(numberedRecords(ManyRows + 2));
        select({});
        m_owner.setPaths_(numberedRecords(ManyRows + 3));
        EXPECT_EQ(m_counts.back(), static_cast<NSUInteger>(ManyRows + 1));
        select({5});
        EXPECT_EQ(m_counts.back(), static_cast<NSUInteger>(ManyRows + 3));
        EXPECT_EQ(selectedPath(), "/copies/100005");
    });
}

// A selection that comes back with a content is of the one that was known last.
TEST_F(BoundContentInSteps, DoesNotSelectAgainWhatALaterContentLacks) {
    m_owner.setPaths_(numberedRecords(ManyRows));
    select({4});
    bool isStale = false;
    inEvent([&] {
        NSMutableSet const later = recordsWithout("/copies/100004");
        m_owner.setPaths_(nil);
        m_owner.setPaths_(numberedRecords(ManyRows));
        m_owner.setPaths_(later);
    });
    ASSERT_TRUE(runUntil([&] {
        isStale = isStale || m_controller.selectedObjects().count() > 0;
        return m_counts.back() == static_cast<NSUInteger>(ManyRows - 1);
    }));
    EXPECT_FALSE(isStale);
}

// What an action brings back it selects at once.
TEST_F(BoundContentInSteps, SelectsWhatWasToBeSelectedBeforeItIsShown) {
    m_owner.setPaths_(numberedRecords(ManyRows));
    inEvent([&] {
        m_owner.setPaths_(numberedRecords(ManyRows + 1));
        m_owner.setPaths_(numberedRecords(ManyRows + 2));
        EXPECT_FALSE(m_controller.setSelectedObjects_(NSArray::arrayWithObject_(numberedRecord(ManyRows + 1))));
        EXPECT_EQ(m_controller.selectedObjects().count(), 0U);
    });
    ASSERT_TRUE(runUntil([&] { return m_counts.back() == static_cast<NSUInteger>(ManyRows + 2); }));
    EXPECT_EQ(m_counts, (std::vector<NSUInteger>{ManyRows, ManyRows + 1, ManyRows + 2}));
    EXPECT_EQ(selectedPath(), "/copies/" + std::to_string(100'000 + ManyRows + 1));
}

TEST_F(BoundContentInSteps, KeepsWhatTheUserSelectsMeanwhile) {
    m_owner.setPaths_(numberedRecords(ManyRows));
    inEvent([&] {
        m_owner.setPaths_(numberedRecords(ManyRows + 1));
        m_controller.setSelectedObjects_(NSArray::arrayWithObject_(numberedRecord(ManyRows)));
        select({4});
    });
    ASSERT_TRUE(runUntil([&] { return m_counts.back() == static_cast<NSUInteger>(ManyRows + 1); }));
    EXPECT_EQ(selectedPath(), "/copies/100004");
}

// A selection out of the blue would be the target of the next action.
TEST_F(BoundContentInSteps, SelectsNothingLaterThatWasToBeSelectedAndWasNotShown) {
    m_owner.setPaths_(numberedRecords(ManyRows));
    inEvent([&] {
        m_owner.setPaths_(numberedRecords(ManyRows + 1));
        m_controller.setSelectedObjects_(NSArray::arrayWithObject_(numberedRecord(ManyRows + 1)));
    });
    ASSERT_TRUE(runUntil([&] { return m_counts.back() == static_cast<NSUInteger>(ManyRows + 1); }));
    m_controller.setSelectedObjects_(NSArray::arrayWithObject_(numberedRecord(ManyRows + 1)));
    m_owner.setPaths_(numberedRecords(ManyRows + 2));
    EXPECT_EQ(m_controller.arrangedObjects().count(), static_cast<NSUInteger>(ManyRows + 2));
    EXPECT_EQ(m_controller.selectedObjects().count(), 0U);
}

// Selected objects are awaited while nothing is known.
TEST_F(BoundContentInSteps, AwaitsAsLongAsNothingIsKnownWhatWasToBeSelected) {
    m_owner.setPaths_(numberedRecords(ManyRows));
    inEvent([&] {
        m_owner.setPaths_(numberedRecords(ManyRows + 1));
        m_controller.setSelectedObjects_(NSArray::arrayWithObject_(numberedRecord(ManyRows)));
        m_owner.setPaths_(nil);
    });
    for (int const count : {3, ManyRows + 1})
        m_owner.setPaths_(numberedRecords(count));
    EXPECT_EQ(selectedPath(), "/copies/" + std::to_string(100'000 + ManyRows));
}

// Else the window would say for a moment that there are no copies.
TEST_F(BoundContentInSteps, IsNotEmptyWhileTheFirstObjectsAreRead) {
    std::vector<bool> told;
    auto const isEmpty = [&] { return as<NSNumber>(m_controller.valueForKey_("isEmpty")).boolValue(); };
    KeyPathObserver const observer(m_controller, "isEmpty", [&] { told.push_back(isEmpty()); });
    EXPECT_TRUE(isEmpty());
    inEvent([&] {
        m_owner.setPaths_(numberedRecords(ManyRows));
        EXPECT_EQ(m_controller.arrangedObjects().count(), 0U);
        EXPECT_FALSE(isEmpty());
        EXPECT_EQ(told, std::vector<bool>{false});
    });
    ASSERT_TRUE(runUntil([&] { return !m_counts.empty(); }));
    EXPECT_FALSE(isEmpty());
    m_owner.setPaths_(nil);
    EXPECT_TRUE(isEmpty());
    NSMutableArray const unreadable = NSMutableArray::array();
    for (id const& record : numberedRecords(ManyRows).allObjects())
        unreadable.addObject_(record);
    unreadable.addObject_(FakeQuery(adopt<FakeQuery>()));
    inEvent([&] { bodyOf(m_controller)->changeContentInSteps(unreadable); });
    EXPECT_TRUE(runUntil(isEmpty)) << "it cannot be read";
}

// An object that does something when its path is read, once.
class AskedObject : public Handle<AskedObject, NSObject> {
public:
    class Body;
    using Handle::Handle;
    static ClassDescription describeClass();
    NSString path() const;
};

class AskedObject::Body : public ObjectBody {
public:
    explicit Body(std::function<void()> whenAsked) : m_whenAsked(std::move(whenAsked)) {}
    std::function<void()> m_whenAsked;
};

ClassDescription AskedObject::describeClass() {
    return {.name = "AskedObject",
            .superclass = classOf<NSObject>(),
            .properties = {readOnlyProperty<&AskedObject::path>("path")}};
}

NSString AskedObject::path() const {
    if (std::function<void()> const asked = std::exchange(bodyOf(*this)->m_whenAsked, {})) asked();
    return "/asked";
}

TEST_F(BoundContentInSteps, IsReadBeforeItIsChangedByReadingIt) {
    for (bool const isInSteps : {true, false}) {
        NSMutableSet const records = numberedRecords(isInSteps ? ManyRows : 100);
        records.addObject_(AskedObject(adopt<AskedObject>([&] {
            bodyOf(m_controller)->changeInSteps({.sortDescriptors = byNumber(NO)});
            m_controller.rearrangeObjects();
            m_controller.setIdentityKeyPath("path");
            m_controller.setContent_(numberedRecords(3));
        })));
        inEvent([&] { bodyOf(m_controller)->changeContentInSteps(records); });
        ASSERT_TRUE(runUntil([&] {
            return m_controller.arrangedObjects().count() == 3 && pathAt(0) == "/copies/100002";
        })) << isInSteps;
        m_controller.setSortDescriptors_(byNumber(YES));
        m_controller.setContent_(nil);
    }
}

TEST_F(BoundContentInSteps, IsFilteredBeforeItIsChangedByAnObjectThatIsAsked) {
    NSMutableSet const records = numberedRecords(ManyRows);
    AskedObject const asked = adopt<AskedObject>([] {});
    records.addObject_(asked);
    m_controller.setContent_(records);
    bodyOf(asked)->m_whenAsked = [&] { m_owner.setPaths_(numberedRecords(ManyRows + 5)); };
    inEvent([&] {
        bodyOf(m_controller)->changeInSteps({.filter = NSPredicate::predicateWithFormat_("path BEGINSWITH '/copies'")});
    });
    constexpr auto last = static_cast<NSUInteger>(ManyRows + 5);
    ASSERT_TRUE(runUntil([&] { return m_controller.arrangedObjects().count() == last; }));
    EXPECT_TRUE(m_controller.filterPredicate() != nil);
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

#include "platform/appkit/interface/TableModel.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/SeededRandom.h"
#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
#include <functional>
#include <gtest/gtest.h>
#include <random>

namespace mac::test {
namespace {

TableColumn column(QString const& keyPath) { return TableColumn::fromLines(keyPath, {"keyPath=" + keyPath}); }

NSArray numbers(std::vector<int> const& values) {
    NSMutableArray const result = NSMutableArray::array();
    for (int const value : values)
        result.addObject_(NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithInt_(value), "value"));
    return result;
}

std::vector<int> shown(TableModel const& model) {
    std::vector<int> values;
    for (int row = 0; row < model.rowCount(); ++row)
        values.push_back(model.index(row, 0).data().toInt());
    return values;
}

std::vector<NSUInteger> previousRows(std::vector<int> const& before, std::vector<int> const& after) {
    std::vector<NSUInteger> rows;
    for (int const value : after) {
        auto const found = std::find(before.begin(), before.end(), value);
        rows.push_back(found == before.end() ? NSNotFound : static_cast<NSUInteger>(found - before.begin()));
    }
    return rows;
}

TEST(TableModel, TellsViewsEveryReplacementAsMovesRemovalsAndAdditions) {
    needApplication();
    TableModel model({column("value")});
    QAbstractItemModelTester const tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    std::mt19937 random = seededRandom(5);
    std::vector<int> before;
    model.resetRows(numbers(before));
    for (int round = 0; round < 200; ++round) {
        std::vector<int> after;
        for (int value = 0; value < 12; ++value) {
            if (random() % 3 != 0) after.push_back(value);
        }
        std::shuffle(after.begin(), after.end(), random);
        QList<QPersistentModelIndex> followed;
        for (int row = 0; row < model.rowCount(); ++row)
            followed.append(model.index(row, 0));
        model.replaceRows(numbers(after), previousRows(before, after));
        ASSERT_EQ(shown(model), after);
        for (std::size_t i = 0; i < before.size(); ++i) {
            auto const place = std::find(after.begin(), after.end(), before[i]);
            int const expected = place == after.end() ? -1 : static_cast<int>(place - after.begin());
            ASSERT_EQ(followed[static_cast<qsizetype>(i)].row(), expected);
        }
        before = after;
    }
}

// A copy that a script has just moved is known by such a path; the other rows look as before.
TEST(TableModel, ShowsThePathOfAFolderWithoutTheSlashAtItsEnd) {
    needApplication();
    TableModel model({TableColumn::fromLines("path", {"keyPath=path", "elides=commonPath"}), column("path")});
    model.setFileKeyPath("path");
    auto const row = [](NSString const& path) { return NSDictionary::dictionaryWithObject_forKey_(path, "path"); };
    model.resetRows(NSArray::arrayWithObjects_(
        {row("/copies/a/M.app"), row("/copies/b/M.app/"), row("/copies/c/M.app//"), row("/")}));
    EXPECT_EQ(model.index(1, 0).data().toString(), "/copies/b/M.app");
    EXPECT_EQ(model.index(2, 0).data().toString(), "/copies/c/M.app");
    EXPECT_EQ(model.index(3, 0).data().toString(), "/");
    EXPECT_EQ(model.index(1, 1).data().toString(), "/copies/b/M.app/") << "a column of another kind";
    EXPECT_EQ(model.pathsOf({0, 1}), (std::vector<std::string>{"/copies/a/M.app", "/copies/b/M.app"}));
    model.resetRows(NSArray::arrayWithObjects_({row("/copies/a/M.app"), row("/copies/b/M.app/")}));
    EXPECT_EQ(model.commonPath(0).start, 8);
    EXPECT_EQ(model.commonPath(0).end, 6);
}

TEST(TableModel, ShowsNewObjectsInOldRows) {
    needApplication();
    TableModel model({column("name")});
    auto const row = [](NSString const& name) {
        return NSArray::arrayWithObject_(NSDictionary::dictionaryWithObject_forKey_(name, "name"));
    };
    model.resetRows(row("old"));
    int changes = 0;
    QObject::connect(&model, &QAbstractItemModel::dataChanged, [&] { ++changes; });
    std::vector<NSUInteger> const same{0};
    model.replaceRows(row("new"), same);
    EXPECT_EQ(model.index(0, 0).data().toString(), "new");
    EXPECT_EQ(changes, 1);
}

TEST(TableModel, LogsAnUnknownKeyOnceAndShowsNothing) {
    needApplication();
    TableModel model({column("colour"), column("isGathering")});
    model.resetRows(NSArray::arrayWithObjects_({adopt<FakeQuery>(), adopt<FakeQuery>()}));
    LoggedLines const lines;
    for (int painting = 0; painting < 3; ++painting) {
        EXPECT_FALSE(model.index(0, 0).data().isValid());
        EXPECT_FALSE(model.index(1, 0).data().isValid());
    }
    EXPECT_EQ(lines.count(), 1U);
    EXPECT_TRUE(lines.contains("NSUnknownKeyException"));
    EXPECT_EQ(model.index(0, 1).data().toString(), "0");
}

TEST(TableModel, LeavesACellEmptyForAMissingValue) {
    needApplication();
    TableModel model({column("value")});
    model.resetRows(NSArray::arrayWithObject_(NSDictionary::dictionary()));
    EXPECT_EQ(model.index(0, 0).data().toString(), "");
}

// A row that counts how often its path is read.
class CountingRow : public Handle<CountingRow, NSObject> {
public:
    using Handle::Handle;

    class Body : public ObjectBody {
    public:
        Body(NSString path, int& readings) : m_path(std::move(path)), m_readings(readings) {}
        id valueForKey(NSString const&) override {
            ++m_readings;
            return m_path;
        }

    private:
        NSString m_path;
        int& m_readings;
    };

    static ClassDescription describeClass() { return {.name = "CountingRow", .superclass = classOf<NSObject>()}; }
};

TEST(TableModel, ReadsNoPathForWhatAllHaveInCommonBeforeThatIsAskedFor) {
    needApplication();
    TableModel model({TableColumn::fromLines("path", {"keyPath=path", "elides=commonPath"})});
    int readings = 0;
    NSMutableArray const rows = NSMutableArray::array();
    for (char const* const path : {"/copies/a/M.app", "/copies/b/M.app"})
        rows.addObject_(adopt<CountingRow>(NSString::stringWithUTF8String_(path), readings));
    model.resetRows(rows);
    EXPECT_EQ(readings, 0);
    EXPECT_EQ(model.commonPath(0).start, 8);
    EXPECT_EQ(model.commonPath(0).end, 6);
    EXPECT_EQ(readings, 2);
    rows.addObject_(adopt<CountingRow>("/other/M.app", readings));
    std::vector<NSUInteger> const added{0, 1, NSNotFound};
    model.replaceRows(rows, added);
    EXPECT_EQ(readings, 2);
    EXPECT_EQ(model.commonPath(0).start, 1);
    EXPECT_EQ(readings, 5);
    rows.removeObjectAtIndex_(2);
    std::vector<NSUInteger> const removed{0, 1};
    model.replaceRows(rows, removed);
    EXPECT_EQ(readings, 5);
    EXPECT_EQ(model.commonPath(0).start, 8) << "it grows when what differed has gone";
}

TEST(TableModel, KnowsWhatPathsHaveInCommonOnlyOnceItWasFound) {
    needApplication();
    TableModel model({TableColumn::fromLines("path", {"keyPath=path", "elides=commonPath"})});
    int readings = 0;
    NSMutableArray const rows = NSMutableArray::array();
    for (char const* const path : {"/copies/a/M.app", "/copies/b/M.app"})
        rows.addObject_(adopt<CountingRow>(NSString::stringWithUTF8String_(path), readings));
    model.resetRows(rows);
    EXPECT_FALSE(model.knownCommonPath(0));
    EXPECT_EQ(readings, 0);
    EXPECT_EQ(model.commonPath(0).start, 8);
    ASSERT_TRUE(model.knownCommonPath(0));
    EXPECT_EQ(model.knownCommonPath(0)->start, 8);
    model.resetRows(rows);
    EXPECT_FALSE(model.knownCommonPath(0));
    EXPECT_EQ(readings, 2);
}

TEST(TableModel, FindsWhatPathsHaveInCommonLittleByLittle) {
    needApplication();
    TableModel model({TableColumn::fromLines("path", {"keyPath=path", "elides=commonPath"})});
    int readings = 0;
    NSMutableArray const rows = NSMutableArray::array();
    for (char const* const path : {"/copies/a/M.app", "/copies/b/M.app", "/copies/c/M.app"})
        rows.addObject_(adopt<CountingRow>(NSString::stringWithUTF8String_(path), readings));
    model.resetRows(rows);
    EXPECT_FALSE(model.findCommonPaths(2));
    EXPECT_EQ(readings, 2);
    EXPECT_FALSE(model.knownCommonPath(0));
    model.resetRows(rows);
    EXPECT_FALSE(model.findCommonPaths(2)) << "rows that have changed are read anew";
    EXPECT_TRUE(model.findCommonPaths(2));
    EXPECT_EQ(readings, 5);
    ASSERT_TRUE(model.knownCommonPath(0));
    EXPECT_EQ(model.knownCommonPath(0)->start, 8);
    EXPECT_TRUE(model.findCommonPaths(2));
    EXPECT_EQ(readings, 5);
}

// The start of what all paths have in common, as a listener to the model's signals is told.
TEST(TableModel, TellsListenersWhatTheRowsThatTheySeeHaveInCommon) {
    needApplication();
    TableModel model({TableColumn::fromLines("path", {"keyPath=path", "elides=commonPath"})});
    int readings = 0;
    std::vector<qsizetype> told;
    auto const listen = [&] { told.push_back(model.commonPath(0).start); };
    QObject::connect(&model, &QAbstractItemModel::rowsInserted, listen);
    QObject::connect(&model, &QAbstractItemModel::rowsRemoved, listen);
    NSMutableArray const rows = NSMutableArray::array();
    for (char const* const path : {"/copies/a/M.app", "/copies/b/M.app"})
        rows.addObject_(adopt<CountingRow>(NSString::stringWithUTF8String_(path), readings));
    model.resetRows(rows);
    EXPECT_EQ(model.commonPath(0).start, 8);
    rows.addObject_(adopt<CountingRow>("/other/M.app", readings));
    std::vector<NSUInteger> const added{0, 1, NSNotFound};
    model.replaceRows(rows, added);
    rows.removeObjectAtIndex_(2);
    std::vector<NSUInteger> const removed{0, 1};
    model.replaceRows(rows, removed);
    EXPECT_EQ(told, (std::vector<qsizetype>{1, 8}));
}

// A row that does something when its path is read.
class ActingRow : public Handle<ActingRow, NSObject> {
public:
    using Handle::Handle;

    class Body : public ObjectBody {
    public:
        Body(NSString path, std::function<void()> action) : m_path(std::move(path)), m_action(std::move(action)) {}
        id valueForKey(NSString const&) override {
            m_action();
            return m_path;
        }

    private:
        NSString m_path;
        std::function<void()> m_action;
    };

    static ClassDescription describeClass() { return {.name = "ActingRow", .superclass = classOf<NSObject>()}; }
};

TEST(TableModel, ForgetsWhatRowsHadInCommonThatChangedWhileTheyWereRead) {
    needApplication();
    TableModel model({TableColumn::fromLines("path", {"keyPath=path", "elides=commonPath"})});
    int readings = 0;
    NSMutableArray const others = NSMutableArray::array();
    for (char const* const path : {"/a/1/M.app", "/a/2/M.app", "/a/3/M.app"})
        others.addObject_(adopt<CountingRow>(NSString::stringWithUTF8String_(path), readings));
    std::function<void()> const change = [&] {
        model.resetRows(others);
        EXPECT_EQ(model.commonPath(0).start, 0) << "they are being read";
    };
    NSMutableArray const rows = NSMutableArray::array();
    for (char const* const path : {"/copies/a/M.app", "/copies/b/M.app"})
        rows.addObject_(adopt<ActingRow>(NSString::stringWithUTF8String_(path), change));
    model.resetRows(rows);
    EXPECT_EQ(model.commonPath(0).start, 0);
    EXPECT_FALSE(model.knownCommonPath(0));
    EXPECT_EQ(model.commonPath(0).start, 3);
    EXPECT_EQ(readings, 3);
}

TEST(TableColumn, LogsLinesAndTransformersThatDoNotExist) {
    LoggedLines const lines;
    TableColumn const made =
        TableColumn::fromLines("state", {"keyPath=x", "colour=red", "nonsense", "textTransformer=Missing"});
    EXPECT_EQ(lines.count(), 3U);
    EXPECT_TRUE(lines.contains("colour=red"));
    EXPECT_TRUE(lines.contains("nonsense"));
    EXPECT_TRUE(lines.contains("\"Missing\""));
    EXPECT_EQ(made.textOf(NSDictionary::dictionaryWithObject_forKey_("text", "x")), "text");
}

} // namespace
} // namespace mac::test

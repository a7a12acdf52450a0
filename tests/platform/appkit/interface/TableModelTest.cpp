#include "platform/appkit/interface/TableModel.h"
#include "platform/foundation/collections/NSSet.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/SeededRandom.h"
#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
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

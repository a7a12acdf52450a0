#include "platform/appkit/interface/PathElision.h"
#include "platform/appkit/interface/TableCellDelegate.h"
#include "platform/appkit/interface/TableModel.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/RunUntil.h"
#include <QCoreApplication>
#include <QHeaderView>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionHeader>
#include <QTest>
#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace mac::test {
namespace {

CommonPath commonOf(std::initializer_list<char16_t const*> paths) {
    CommonPathFinder finder;
    for (char16_t const* const path : paths)
        finder.add(path);
    return finder.result();
}

void expectCommon(std::initializer_list<char16_t const*> paths, QString const& start, QString const& end) {
    CommonPath const common = commonOf(paths);
    QString const first = QString::fromUtf16(*paths.begin());
    EXPECT_EQ(first.first(common.start).toStdString(), start.toStdString());
    EXPECT_EQ(first.last(common.end).toStdString(), end.toStdString());
}

TEST(PathElision, FindsTheFoldersAndTheNamesInCommon) {
    expectCommon({u"/home/a/x/M.app", u"/home/a/y/M.app", u"/home/a/z/w/M.app"}, "/home/a/", "/M.app");
    expectCommon({u"/home/ab/M.app", u"/home/ac/M.app"}, "/home/", "/M.app");
    expectCommon({u"/a/M.app", u"/a/b/M.app"}, "/a/", "/M.app");
    expectCommon({u"/a/oM.app", u"/a/bM.app"}, "/a/", "");
    expectCommon({u"/x", u"/y"}, "/", "");
    expectCommon({u"one", u"two"}, "", "");
    expectCommon({u"/a/b"}, "", "");
}

TEST(PathElision, KnowsWhenNothingIsInCommonAnyMore) {
    CommonPathFinder finder;
    finder.add(u"/a/x");
    EXPECT_FALSE(finder.isEmpty());
    finder.add(u"/a/y");
    EXPECT_FALSE(finder.isEmpty());
    finder.add(u"/b/z");
    EXPECT_TRUE(finder.isEmpty()) << "the first slash is never left out";
}

TEST(PathElision, LeavesAPathAloneThatIsShorterThanWhatIsInCommon) {
    EXPECT_EQ(differingPart("/short", {.start = 1'200, .end = 0}), "/short");
}

TEST(PathElision, ShowsWhatDiffersAndNeverLess) {
    CommonPath const common = commonOf({u"/home/a/x/M.app", u"/home/a/z/w/M.app", u"/home/a/M.app"});
    EXPECT_EQ(differingPart("/home/a/x/M.app", common), "…/x/…");
    EXPECT_EQ(differingPart("/home/a/z/w/M.app", common), "…/z/w/…");
    EXPECT_EQ(differingPart("/home/a/M.app", common), "…/M.app");
    EXPECT_EQ(differingPart("/x/M.app", {}), "/x/M.app");
    EXPECT_EQ(differingPart("/x", commonOf({u"/x", u"/y"})), "/x");
}

TEST(PathElision, LeavesOutWhatTheListLeavesOut) {
    QString const path = "/home/someone/Downloads/Old Versions/Mirror Frame.app";
    CommonPath const common = commonOf(
        {u"/home/someone/Downloads/Old Versions/Mirror Frame.app", u"/home/someone/Applications/Mirror Frame.app"});
    EXPECT_EQ(shownPath(path, common, PathExtent::Whole), path);
    EXPECT_EQ(shownPath(path, common, PathExtent::WithoutCommonFolders), "…/Downloads/Old Versions/Mirror Frame.app");
    EXPECT_EQ(shownPath(path, common, PathExtent::DifferingPart), "…/Downloads/Old Versions/…");
}

TEST(PathElision, LosesItsMiddleOnlyWhereItIsTooWideAsItIs) {
    needApplication();
    QFontMetrics const metrics{QFont()};
    QString const path = "/home/someone/Downloads/Old Versions/Mirror Frame.app";
    CommonPath const common = commonOf(
        {u"/home/someone/Downloads/Old Versions/Mirror Frame.app", u"/home/someone/Applications/Mirror Frame.app"});
    for (PathExtent const extent : {PathExtent::Whole, PathExtent::WithoutCommonFolders, PathExtent::DifferingPart}) {
        QString const shown = shownPath(path, common, extent);
        int const width = metrics.horizontalAdvance(shown);
        EXPECT_EQ(elidedPath(path, common, extent, metrics, width), shown);
        QString const cut = elidedPath(path, common, extent, metrics, width / 2);
        EXPECT_NE(cut, shown);
        EXPECT_TRUE(cut.contains(QChar(0x2026)));
        EXPECT_LE(metrics.horizontalAdvance(cut), width / 2);
    }
}

class PathsInTheWindow : public testing::Test {
protected:
    QHeaderView* header() const { return m_window.table()->horizontalHeader(); }
    TableModel const& model() const { return *static_cast<TableModel const*>(m_window.table()->model()); }

    LoadedWindow const m_window{};
};

TEST_F(PathsInTheWindow, KeepTheirDifferingPartWholeInASmallWindow) {
    std::string const deep = "/volumes/a/" + std::string(70, 'n') + "/Mirror Frame.app";
    m_window.controller().setPaths_(makeRecords({deep.c_str(), "/volumes/a/b/Mirror Frame.app"}));
    m_window.widget()->resize(m_window.widget()->minimumSize());
    QCoreApplication::processEvents();
    CommonPath const common = model().commonPath(PathColumn);
    QString const path = QString::fromStdString(deep);
    QString const shown = elidedPath(path, common, model().pathExtent(PathColumn), m_window.table()->fontMetrics(),
                                     header()->sectionSize(PathColumn) - 2 * TableCellMargin);
    EXPECT_TRUE(shown.contains(QString(70, 'n'))) << shown.toStdString();
    EXPECT_TRUE(m_window.column(PathColumn).contains(path)) << "the cell's text is the path";
}

TEST_F(PathsInTheWindow, AreAllWholeOrAllWithoutWhatTheyHaveInCommon) {
    m_window.controller().setPaths_(
        makeRecords({"/home/someone/Downloads/Old Versions/1.4/Mirror Frame.app",
                     "/home/someone/Applications/Mirror Frame.app", "/home/someone/Documents/1/Mirror Frame.app"}));
    CommonPath const common = model().commonPath(PathColumn);
    QFontMetrics const metrics = m_window.table()->fontMetrics();
    std::set<PathExtent> seen;
    int narrowest = 0;
    for (int width = 1'200; width > narrowest; width -= 7) {
        header()->resizeSection(PathColumn, width);
        PathExtent const extent = model().pathExtent(PathColumn);
        seen.insert(extent);
        int widest = 0;
        for (QString const& path : m_window.column(PathColumn)) {
            widest = std::max(widest, metrics.horizontalAdvance(shownPath(path, common, extent)));
            QString const shown = elidedPath(path, common, extent, metrics, width - 2 * TableCellMargin);
            EXPECT_EQ(shown.toStdString(), shownPath(path, common, extent).toStdString()) << width;
        }
        narrowest = extent == PathExtent::DifferingPart ? widest + 20 : 0;
    }
    EXPECT_EQ(seen.size(), 3U);
}

// So many that their common folders are found by an event of its own.
constexpr int ManyPaths = 10'001;

NSMutableSet recordsOfManyPaths(std::string const& folder) {
    NSMutableSet const records = NSMutableSet::set();
    for (int number = 0; number < ManyPaths; ++number)
        records.unionSet_(makeRecords({(folder + std::to_string(number) + "/Mirror Frame.app").c_str()}));
    return records;
}

TEST_F(PathsInTheWindow, KeepTheirDifferingPartWholeAmongVeryMany) {
    std::string const deep = "/volumes/a/" + std::string(70, 'n') + "/Mirror Frame.app";
    NSMutableSet const records = recordsOfManyPaths("/volumes/a/");
    records.unionSet_(makeRecords({deep.c_str()}));
    m_window.widget()->resize(m_window.widget()->minimumSize());
    m_window.controller().setPaths_(records);
    m_window.table()->scrollToBottom();
    QString shown;
    EXPECT_TRUE(runUntil([&] {
        shown = elidedPath(QString::fromStdString(deep), model().commonPath(PathColumn), model().pathExtent(PathColumn),
                           m_window.table()->fontMetrics(), header()->sectionSize(PathColumn) - 2 * TableCellMargin);
        return shown.contains(QString(70, 'n'));
    })) << shown.toStdString();
    EXPECT_EQ(model().commonPath(PathColumn).start, 11);
}

// Whatever reads all of them also knows afterwards what they have in common.
TEST_F(PathsInTheWindow, AreNotAllReadInTheEventThatChangesThem) {
    QTableView& table = *m_window.table();
    NSMutableSet const records = recordsOfManyPaths("/volumes/a/");
    m_window.controller().setPaths_(records);
    ASSERT_TRUE(runUntil([&] { return model().knownCommonPath(PathColumn).has_value(); }));
    table.verticalScrollBar()->setValue(table.verticalScrollBar()->maximum() / 2);
    m_window.selectRow(table.rowAt(table.viewport()->height() / 2));
    // The table follows the selected row, then the first one in sight. The new ones go before both.
    for (char const* const path : {"/a/1/Mirror Frame.app", "/a/2/Mirror Frame.app"}) {
        NSMutableSet const more = NSMutableSet::set();
        records.unionSet_(makeRecords({path}));
        more.unionSet_(records);
        int const before = table.verticalScrollBar()->value();
        m_window.controller().setPaths_(more);
        EXPECT_GT(table.verticalScrollBar()->value(), before);
        EXPECT_FALSE(model().knownCommonPath(PathColumn));
        EXPECT_FALSE(m_window.widget()->grab().isNull());
        EXPECT_FALSE(model().knownCommonPath(PathColumn)) << "painting does not read them either";
        table.verticalScrollBar()->setValue(before - 1);
        EXPECT_FALSE(model().knownCommonPath(PathColumn)) << "nor does scrolling";
        EXPECT_TRUE(runUntil([&] { return model().knownCommonPath(PathColumn).has_value(); }));
        EXPECT_EQ(model().commonPath(PathColumn).start, 1);
        table.clearSelection();
    }
}

TEST_F(PathsInTheWindow, MayBeReplacedBeforeVeryManyWereLookedAt) {
    m_window.controller().setPaths_(recordsOfManyPaths("/volumes/a/"));
    m_window.controller().setPaths_(recordsOfManyPaths("/other/"));
    EXPECT_EQ(model().commonPath(PathColumn).start, 7);
    m_window.controller().setPaths_(makeRecords({"/volumes/a/1/Mirror Frame.app", "/volumes/b/2/Mirror Frame.app"}));
    QCoreApplication::processEvents();
    EXPECT_EQ(model().commonPath(PathColumn).start, 9);
    m_window.controller().setPaths_(recordsOfManyPaths("/volumes/a/"));
    m_window.controller().setPaths_(NSMutableSet::set());
    QCoreApplication::processEvents();
    EXPECT_EQ(model().rowCount(), 0);
    EXPECT_EQ(model().commonPath(PathColumn).start, 0);
}

TEST_F(PathsInTheWindow, MayGoWithTheirWindowBeforeVeryManyWereLookedAt) {
    {
        LoadedWindow const another;
        another.controller().setPaths_(recordsOfManyPaths("/volumes/a/"));
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(model().rowCount(), 0);
}

// A cell shortens texts beyond a thousand characters before it draws them.
TEST_F(PathsInTheWindow, MayShareMoreThanACellShows) {
    std::string const folder = "/volumes/" + std::string(1'200, 'n') + "/";
    m_window.controller().setPaths_(
        makeRecords({(folder + "a/Mirror Frame.app").c_str(), (folder + "b/Mirror Frame.app").c_str()}));
    EXPECT_GT(model().commonPath(PathColumn).start, 1'000);
    EXPECT_FALSE(m_window.widget()->grab().isNull());
}

TEST_F(PathsInTheWindow, TakeTheWidthThatTheUserGives) {
    m_window.controller().setPaths_(makeRecords({"/a/b", "/a/c"}));
    int const before = header()->sectionSize(PathColumn);
    QPoint const edge(header()->sectionViewportPosition(PathColumn) + before - 2, header()->height() / 2);
    QWidget* const place = header()->viewport();
    QTest::mousePress(place, Qt::LeftButton, {}, edge);
    QTest::mouseMove(place, edge - QPoint(60, 0));
    QTest::mouseRelease(place, Qt::LeftButton, {}, edge - QPoint(60, 0));
    EXPECT_EQ(header()->sectionSize(PathColumn), before - 60);
    m_window.widget()->resize(m_window.widget()->size() + QSize(40, 0));
    QCoreApplication::processEvents();
    EXPECT_EQ(header()->sectionSize(PathColumn), before - 60) << "it stays as the user made it";
    m_window.action("resetColumnsAction")->trigger();
    EXPECT_EQ(header()->length(), m_window.table()->viewport()->width());
}

TEST_F(PathsInTheWindow, StandUnderTitlesThatAreNeverCut) {
    QFont font = header()->font();
    // The mark grows with the header's height.
    for (int const size : {9, 18, 36}) {
        font.setPointSize(size);
        header()->setFont(font);
        QCoreApplication::processEvents();
        for (int section = 0; section < header()->count(); ++section) {
            header()->resizeSection(section, 5);
            header()->setSortIndicator(section, Qt::AscendingOrder);
            QString const title = model().headerData(section, Qt::Horizontal).toString();
            QStyleOptionHeader option;
            option.initFrom(header());
            option.rect = QRect(0, 0, header()->sectionSize(section), header()->height());
            option.sortIndicator = QStyleOptionHeader::SortUp;
            option.text = title;
            QRect const room = header()->style()->subElementRect(QStyle::SE_HeaderLabel, &option, header());
            EXPECT_GE(room.width(), header()->fontMetrics().horizontalAdvance(title))
                << title.toStdString() << " " << size;
        }
    }
}

TEST_F(PathsInTheWindow, LeaveTheRoomOfTheSortMarkToTheColumnThatHasIt) {
    m_window.controller().setPaths_(makeRecords({"/a/b", "/a/c"}));
    header()->setSortIndicator(VersionColumn, Qt::AscendingOrder);
    int const before = header()->sectionSize(RunningColumn);
    header()->setSortIndicator(RunningColumn, Qt::AscendingOrder);
    EXPECT_GT(header()->sectionSize(RunningColumn), before);
    EXPECT_EQ(header()->length(), m_window.table()->viewport()->width());
    header()->setSortIndicator(PathColumn, Qt::AscendingOrder);
    EXPECT_EQ(header()->sectionSize(RunningColumn), before);
    EXPECT_EQ(header()->length(), m_window.table()->viewport()->width());
}

TEST_F(PathsInTheWindow, StandBesideVersionsWithADashForWhatIsMissing) {
    NSMutableSet const records = NSMutableSet::set();
    records.addObject_(makeRecord("/(null)/b", "210", "(null) (210)"));
    m_window.controller().setPaths_(records);
    EXPECT_EQ(m_window.column(VersionColumn), QStringList("– (210)"));
    EXPECT_EQ(m_window.column(PathColumn), QStringList("/(null)/b"));
    m_window.find<QLineEdit>("filterField")->setText("(null) (");
    EXPECT_EQ(m_window.column(VersionColumn).size(), 1) << "the filter knows the record's text";
}

} // namespace
} // namespace mac::test

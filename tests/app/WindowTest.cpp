#include "app/AppControllerBody.h"
#include "platform/appkit/interface/InterfaceFile.h"
#include "platform/appkit/views/NSApplication.h"
#include "platform/foundation/collections/NSSortDescriptor.h"
#include "platform/foundation/objects/Method.h"
#include "platform/spotlight/QueryBody.h"
#include "tests/app/Controller.h"
#include "tests/app/OpenedWindow.h"
#include "tests/support/Companion.h"
#include "tests/support/Environment.h"
#include <QAction>
#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QMouseEvent>
#include <QPointer>
#include <QTest>
#include <QToolBar>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>

// The program's own window, from its own interface file, on a disk of its own.

namespace framekeeper::test {
namespace {

using mac::test::EnvironmentVariable;

double luminance(QColor const& color) {
    auto const linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(QColor const& first, QColor const& second) {
    double const one = luminance(first);
    double const other = luminance(second);
    return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

TEST_F(Window, ConnectsItsOutletsAndStartsToSearch) {
    open();
    EXPECT_FALSE(controller().pathsArrayController() == nil);
    EXPECT_FALSE(controller().pathsTableView() == nil);
    EXPECT_FALSE(controller().window() == nil);
    EXPECT_TRUE(controller().query().isStarted());
}

TEST_F(Window, IsEmptyUntilTheQueryTellsOfItsStart) {
    makeCopy(m_folder, "a");
    open();
    EXPECT_TRUE(controller().paths() == nil);
    EXPECT_EQ(table()->model()->rowCount(), 0);
    ASSERT_TRUE(gathered());
    EXPECT_EQ(table()->model()->rowCount(), 1);
}

TEST_F(Window, ListsTheCopiesByVersionThenPath) {
    makeCopy(m_folder, "b", "2.1", "210");
    makeCopy(m_folder, "A", "2.1", "210");
    makeCopy(m_folder, "c", "1.9", "99");
    open();
    ASSERT_TRUE(gathered());
    // As text "99" comes above "210"; among equal versions the paths go without regard to case.
    EXPECT_EQ(columnTexts(Version), (std::vector<std::string>{"1.9 (99)", "2.1 (210)", "2.1 (210)"}));
    EXPECT_EQ(columnTexts(Path),
              (std::vector<std::string>{m_folder.path("c/Mirror Frame.app"), m_folder.path("A/Mirror Frame.app"),
                                        m_folder.path("b/Mirror Frame.app")}));
}

TEST_F(Window, GivesTheTableTheSpecifiedSortDescriptors) {
    open();
    NSArray const descriptors = controller().pathsTableView().sortDescriptors();
    ASSERT_EQ(descriptors.count(), 2U);
    NSSortDescriptor const version = as<NSSortDescriptor>(descriptors.objectAtIndex_(0));
    NSSortDescriptor const path = as<NSSortDescriptor>(descriptors.objectAtIndex_(1));
    EXPECT_EQ(text(version.key()), "version");
    EXPECT_FALSE(version.ascending());
    EXPECT_TRUE(version.selector() == SEL("compare:"));
    EXPECT_EQ(text(path.key()), "displayPath");
    EXPECT_TRUE(path.ascending());
    EXPECT_TRUE(path.selector() == SEL("caseInsensitiveCompare:"));
}

TEST_F(Window, SortsByAClickOnAHeader) {
    makeCopy(m_folder, "b", "2.1", "210");
    makeCopy(m_folder, "a", "1.9", "99");
    makeCopy(m_folder, "c", "2.0", "200");
    open();
    ASSERT_TRUE(gathered());
    std::vector<std::string> const byPath{m_folder.path("a/Mirror Frame.app"), m_folder.path("b/Mirror Frame.app"),
                                          m_folder.path("c/Mirror Frame.app")};
    clickHeader(Path);
    EXPECT_EQ(columnTexts(Path), byPath);
    clickHeader(Path);
    EXPECT_EQ(columnTexts(Path), (std::vector<std::string>{byPath[2], byPath[1], byPath[0]}));
}

TEST_F(Window, ShowsItsFlagsAsTextAndColour) {
    makeCopy(m_folder, "a");
    open();
    ASSERT_TRUE(gathered());
    EXPECT_EQ(cellText(0, Exists), "Yes");
    EXPECT_EQ(cellText(0, Running), "No");
    EXPECT_EQ(cellText(0, LoginItem), "No");
    EXPECT_EQ(cellText(0, InToolbar), "No");
    QColor const yes = cell(0, Exists, Qt::ForegroundRole).value<QBrush>().color();
    QColor const no = cell(0, Running, Qt::ForegroundRole).value<QBrush>().color();
    EXPECT_NE(yes, no);
    QColor const background = table()->palette().color(QPalette::Base);
    EXPECT_GE(contrast(yes, background), 4.5);
    EXPECT_GE(contrast(no, background), 4.5);
}

TEST_F(Window, ChangesOnlyBecausePathsAreObserved) {
    open();
    ASSERT_TRUE(gathered());
    NSMutableDictionary const record = NSMutableDictionary::dictionary();
    record.setObject_forKey_("/put/here/Mirror Frame.app", "path");
    record.setObject_forKey_("/put/here/Mirror Frame.app", "displayPath");
    NSMutableSet const records = NSMutableSet::set();
    records.addObject_(record);
    controller().setValue_forKey_(records, "paths");
    EXPECT_EQ(columnTexts(Path), std::vector<std::string>{"/put/here/Mirror Frame.app"});

    // A change in place is no change of the key.
    records.addObject_(NSMutableDictionary::dictionary());
    EXPECT_EQ(table()->model()->rowCount(), 1);
    controller().setPaths_(nil);
    EXPECT_EQ(table()->model()->rowCount(), 0);
}

TEST_F(Window, KeepsItsSelectionOverARescan) {
    makeCopy(m_folder, "a");
    makeCopy(m_folder, "b");
    open();
    ASSERT_TRUE(gathered());
    table()->selectRow(1);
    std::vector<std::string> const selected = selectedPaths();
    ASSERT_EQ(selected, std::vector<std::string>{m_folder.path("b/Mirror Frame.app")});
    makeCopy(m_folder, "0");
    trigger("scanAction");
    EXPECT_EQ(table()->model()->rowCount(), 0);
    ASSERT_TRUE(gathered());
    EXPECT_EQ(table()->model()->rowCount(), 3);
    EXPECT_EQ(selectedPaths(), selected);
}

TEST_F(Window, KeepsItsRowsWhenTheSearchIsStopped) {
    makeCopy(m_folder, "a");
    open();
    ASSERT_TRUE(runUntil([this] { return table()->model()->rowCount() == 1; }));
    controller().stopAction_(nil);
    EXPECT_TRUE(controller().query().isStopped());
    EXPECT_EQ(table()->model()->rowCount(), 1);
}

// Presses the button as soon as the query tells of its first finds: the events of the mouse are queued behind what that
// has begun.
class ClickAtProgress : public Handle<ClickAtProgress, NSObject> {
public:
    class Body : public ObjectBody {
    public:
        explicit Body(QWidget* button) : m_button(button) {}

        void click() {
            if (!m_button) return;
            QPointF const place = m_button->rect().center();
            for (QEvent::Type const type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
                Qt::MouseButtons const held = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
                auto event = std::make_unique<QMouseEvent>(type, place, m_button->mapToGlobal(place), Qt::LeftButton,
                                                           held, Qt::NoModifier);
                QCoreApplication::postEvent(m_button, event.release());
            }
            m_button = nullptr;
        }

    private:
        QPointer<QWidget> m_button;
    };
    using Handle::Handle;

    static ClassDescription describeClass() {
        return {.name = "ClickAtProgress",
                .superclass = classOf<NSObject>(),
                .methods = {{"click:", [](id const& object, std::span<id const>) {
                                 bodyOf(uncheckedCast<ClickAtProgress>(object))->click();
                                 return id();
                             }}}};
    }
};

TEST_F(Window, AnswersAClickOnStopBeforeManyCopiesAreTakenIn) {
    // Several steps of the query, and of the inventory for what the first of its batches holds.
    constexpr NSUInteger copies = 3 * SyncStep{}.paths;
    std::string const information = mac::test::informationFile("com.tidelark.mirrorframe", "2.1", "210");
    for (NSUInteger index = 0; index < copies; ++index)
        m_folder.makeFile(std::to_string(index) + "/Mirror Frame.app/Info.plist", information);
    open();
    controller().query().disableUpdates();
    auto const* const bar = find<QToolBar>("copyToolBar");
    ClickAtProgress const click = adopt<ClickAtProgress>(bar->widgetForAction(find<QAction>("stopAction")));
    NSNotificationCenter::defaultCenter().addObserver_selector_name_object_(
        click, "click:", NSMetadataQueryGatheringProgressNotification, controller().query());
    // The walk finds everything before the query tells of anything.
    ASSERT_TRUE(runUntil(
        [this] { return !(controller().paths() == nil) && bodyOf(controller().query())->progress().isFinished; }));
    controller().query().enableUpdates();
    ASSERT_TRUE(runUntil([this] { return controller().query().isStopped(); }));
    NSUInteger const found = controller().query().resultCount();
    ASSERT_GT(found, SyncStep{}.paths);
    EXPECT_LT(controller().paths().count(), found) << "the click came between two steps";
    EXPECT_TRUE(runUntil([&] { return table()->model()->rowCount() == static_cast<int>(found); }))
        << "what was found stays";
    NSNotificationCenter::defaultCenter().removeObserver_(click);
}

TEST_F(Window, QuitsTheSelectedCopy) {
    mac::test::RunningCompanion copy("willing");
    open();
    ASSERT_TRUE(gathered());
    std::vector<std::string> const paths = columnTexts(Path);
    auto const found = std::ranges::find(paths, text(copy.bundle()));
    ASSERT_NE(found, paths.end());
    int const row = static_cast<int>(found - paths.begin());
    EXPECT_EQ(cellText(row, Running), "Yes");
    table()->selectRow(row);
    trigger("quitAction");
    EXPECT_EQ(copy.process().wait(), 0);
    EXPECT_EQ(table()->model()->rowCount(), static_cast<int>(paths.size()) - 1) << "it was known by its process alone";
}

TEST_F(Window, NamesEveryActionAndGivesTheDangerousOnesNoShortcut) {
    open();
    int count = 0;
    for (QAction const* const action : m_file->widget()->findChildren<QAction*>()) {
        if (!action->property("action").isValid()) continue;
        ++count;
        EXPECT_FALSE(action->text().isEmpty()) << action->objectName().toStdString();
        EXPECT_FALSE(action->toolTip().isEmpty()) << action->objectName().toStdString();
        EXPECT_FALSE(action->icon().isNull()) << action->objectName().toStdString();
    }
    EXPECT_EQ(count, 17);
    EXPECT_TRUE(find<QAction>("logOutAction")->shortcut().isEmpty());
    EXPECT_TRUE(find<QAction>("quitFinderAction")->shortcut().isEmpty());
    EXPECT_EQ(find<QAction>("trashAction")->shortcut(), QKeySequence(Qt::Key_Delete));
    EXPECT_EQ(find<QAction>("deleteAction")->shortcut(), QKeySequence(Qt::SHIFT | Qt::Key_Delete));
}

TEST_F(Window, FiltersByPath) {
    makeCopy(m_folder, "needle");
    makeCopy(m_folder, "hay");
    open();
    ASSERT_TRUE(gathered());
    QTest::keyClicks(find<QLineEdit>("filterField"), "NEEDLE");
    ASSERT_TRUE(runUntil([this] { return table()->model()->rowCount() == 1; }));
    EXPECT_EQ(cellText(0, Path), m_folder.path("needle/Mirror Frame.app"));
}

TEST_F(Window, ShowsBytesThatAreNoTextWithoutLosingThem) {
    NSString const path = makeCopy(m_folder, "caf\xE9");
    open();
    ASSERT_TRUE(gathered());
    ASSERT_EQ(table()->model()->rowCount(), 1);
    EXPECT_NE(cell(0, Path).toString().indexOf(QChar(0xFFFD)), -1);
    EXPECT_TRUE(recordOf(controller(), path).valueForKey_("path").isEqual_(path));
}

TEST_F(Window, EndsTheProgramWhenItIsClosed) {
    open();
    NSApplication const application = NSApplication::sharedApplication();
    application.setDelegate_(controller());
    performOnMainRunLoop([this] { m_file->widget()->close(); });
    application.run();
    EXPECT_FALSE(controller().window().isVisible());
}

TEST_F(Window, OpensWithAMissingHomeAndDoesNotMakeIt) {
    makeCopy(m_folder, "a");
    EnvironmentVariable const home("HOME", m_folder.path("no home"));
    useToTheEnd();
    EXPECT_FALSE(std::filesystem::exists(m_folder.path("no home")));
}

// The home that the system's list of users names stays untouched: what would be written there goes below the folder.
TEST_F(Window, OpensWithoutAHomeVariableAndWritesNothingButItsIndexOfFolders) {
    makeCopy(m_folder, "a");
    EnvironmentVariable const home("HOME", std::nullopt);
    EnvironmentVariable const config("XDG_CONFIG_HOME", m_folder.path("config"));
    EnvironmentVariable const data("XDG_DATA_HOME", m_folder.path("data"));
    EnvironmentVariable const cache("XDG_CACHE_HOME", m_folder.path("cache"));
    EnvironmentVariable const state("XDG_STATE_HOME", m_folder.path("state"));
    useToTheEnd();
    std::vector<std::string> names;
    for (auto const& item : std::filesystem::directory_iterator(m_folder.path()))
        names.push_back(item.path().filename());
    // A search that is left before its index is written keeps none.
    if (std::erase(names, "cache") > 0) {
        for (auto const& item : std::filesystem::recursive_directory_iterator(m_folder.path("cache")))
            names.push_back(item.path().lexically_relative(m_folder.path()));
        std::erase(names, "cache/framekeeper");
        std::erase(names, "cache/framekeeper/scanned-folders");
    }
    EXPECT_EQ(names, std::vector<std::string>{"a"});
}

TEST_F(Window, TakesAHundredThousandRows) {
    open();
    ASSERT_TRUE(gathered());
    NSMutableSet const records = NSMutableSet::set();
    for (int index = 0; index < 100'000; ++index) {
        NSString const path = NSString::stringWithFormat_("/copies/%d/Mirror Frame.app", index);
        NSMutableDictionary const record = NSMutableDictionary::dictionary();
        record.setObject_forKey_(path, "path");
        record.setObject_forKey_(path, "displayPath");
        record.setObject_forKey_(NSString::stringWithFormat_("%d", index % 300), "version");
        records.addObject_(record);
    }
    controller().setPaths_(records);
    EXPECT_EQ(table()->model()->rowCount(), 100'000);
}

TEST_F(Window, DoesNotOfferToStartACopyInTheTrashAtLogin) {
    mac::test::EnvironmentVariable const data{"XDG_DATA_HOME", m_folder.makeFolder("data")};
    makeCopy(m_folder, "data/Trash/files");
    makeCopy(m_folder, "a");
    open();
    ASSERT_TRUE(gathered());
    ASSERT_EQ(table()->model()->rowCount(), 2);
    auto* const action = find<QAction>("addToAutoLaunchAction");
    for (int const row : {0, 1}) {
        bool const isInTrash = cellText(row, Path).find("/Trash/") != std::string::npos;
        table()->selectRow(row);
        EXPECT_TRUE(runUntil([&] { return action->isEnabled() != isInTrash; })) << cellText(row, Path);
        EXPECT_EQ(action->toolTip().contains("In the trash"), isInTrash) << action->toolTip().toStdString();
    }
}

} // namespace
} // namespace framekeeper::test

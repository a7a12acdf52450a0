#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/Texts.h"
#include <QLabel>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

std::string const Controller = stringProperty("controllerClass", "AppController");

std::string reasonFor(std::string const& form) {
    std::string reason;
    EXPECT_EQ(loadForm(form, &reason), nullptr);
    return reason;
}

TEST(InterfaceFile, SaysThatAFileIsMissing) {
    needApplication();
    TemporaryFolder const folder;
    auto const loaded = InterfaceFile::load(path(folder.path("none/Window.ui")));
    EXPECT_EQ(std::get<std::string>(loaded), "it cannot be read");
}

TEST(InterfaceFile, SaysThatAFileIsNoForm) {
    EXPECT_NE(reasonFor("no form").find("it is no form"), std::string::npos);
    EXPECT_NE(reasonFor("").find("it is no form"), std::string::npos);
    EXPECT_NE(reasonFor("<ui version=\"4.0\"><widget class=\"QWidget\"").find("it is no form"), std::string::npos);
    EXPECT_NE(reasonFor("<plist/>").find("it is no form"), std::string::npos);
}

TEST(InterfaceFile, SaysThatItsControllerCannotBeMade) {
    EXPECT_EQ(reasonFor(formWith("")), "it names no controllerClass");
    EXPECT_EQ(reasonFor(formWith(stringProperty("controllerClass", "Nobody"))),
              "its controllerClass Nobody does not exist");
    nextInitAnswersNil = true;
    EXPECT_EQ(reasonFor(formWith(Controller)), "init of its controllerClass AppController answered nil");
}

TEST(InterfaceFile, LogsAnOutletThatTheControllerDoesNotKnowAndLoadsTheRest) {
    LoggedLines const lines;
    auto const file = loadForm(formWith(Controller + stringProperty("outlet", "window"),
                                        R"(<widget class="QPushButton" name="button">)" +
                                            stringProperty("outlet", "steeringWheel") + "</widget>"));
    ASSERT_TRUE(file);
    EXPECT_TRUE(lines.contains("\"steeringWheel\""));
    EXPECT_FALSE(as<FakeController>(file->controller()).window() == nil);
}

TEST(InterfaceFile, LogsAWidgetClassThatDoesNotExistAndLoadsTheRest) {
    LoggedLines const lines;
    auto const file = loadForm(formWith(Controller, "<widget class=\"QSteeringWheel\" name=\"wheel\"/>"
                                                    "<widget class=\"QLabel\" name=\"label\"/>"));
    ASSERT_TRUE(file);
    EXPECT_TRUE(lines.contains("\"QSteeringWheel\""));
    EXPECT_TRUE(file->widget()->findChild<QLabel*>("label"));
}

TEST(InterfaceFile, LogsAnUnknownKeyPathAndTakesItForNo) {
    LoggedLines const lines;
    auto const file = loadForm(formWith(
        Controller, R"(<widget class="QLabel" name="label">)" + listProperty("visibleWhen", {"query.isSinging"}) +
                        "</widget>" + R"(<widget class="QLabel" name="other">)" +
                        listProperty("visibleWhen", {"!query.isGathering"}) + "</widget>"));
    ASSERT_TRUE(file);
    EXPECT_TRUE(lines.contains("query.isSinging"));
    EXPECT_TRUE(file->widget()->findChild<QLabel*>("label")->isHidden());
    EXPECT_FALSE(file->widget()->findChild<QLabel*>("other")->isHidden());
}

TEST(InterfaceFile, LogsATableWithoutAnArrayController) {
    LoggedLines const lines;
    auto const file = loadForm(formWith(Controller, R"(<widget class="QTableView" name="table">)" +
                                                        stringProperty("rows", "nobody") + "</widget>"));
    ASSERT_TRUE(file);
    EXPECT_TRUE(lines.contains("\"table\""));
}

TEST(InterfaceFile, LogsABindingThatTheControllerDoesNotKnow) {
    LoggedLines const lines;
    auto const file = loadForm(formWith(Controller + listProperty("arrayControllers", {"pathsArrayController"}) +
                                        listProperty("pathsArrayController", {"contentSet=wheels", "colour=red"})));
    ASSERT_TRUE(file);
    EXPECT_TRUE(lines.contains("wheels"));
    EXPECT_TRUE(lines.contains("colour=red"));
}

TEST(InterfaceFile, LogsAGlyphThatIsNoPath) {
    LoggedLines const lines;
    auto const file = loadForm(formWith(Controller, "<action name=\"odd\">" + stringProperty("glyph", "M1 wheel") +
                                                        "</action><addaction name=\"odd\"/>"));
    ASSERT_TRUE(file);
    EXPECT_TRUE(lines.contains("\"odd\""));
}

TEST(InterfaceFile, FillsAPatternWithTheValuesOfItsKeyPathsAsPlainText) {
    auto const file = loadForm(
        formWith(Controller, R"(<widget class="QLabel" name="label">)" +
                                 stringProperty("displayPattern", "%@ of %n%d%s &lt;b&gt;") +
                                 listProperty("displayKeyPaths", {"query.unreadableFolderCount"}) + "</widget>"));
    ASSERT_TRUE(file);
    auto* const label = file->widget()->findChild<QLabel*>("label");
    as<FakeController>(file->controller()).query().setUnreadableFolderCount_(3);
    EXPECT_TRUE(label->text().startsWith("3 of "));
    EXPECT_TRUE(label->text().endsWith("<b>"));
    EXPECT_EQ(label->textFormat(), Qt::PlainText);
}

TEST(InterfaceFile, ReleasesTheControllerWithTheWindow) {
    Weak<FakeController> controller;
    {
        auto const file = loadForm(formWith(Controller));
        controller = as<FakeController>(file->controller());
        EXPECT_FALSE(controller.load() == nil);
    }
    EXPECT_TRUE(controller.load() == nil);
}

} // namespace
} // namespace mac::test

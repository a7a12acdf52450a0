#include "tests/app/ProgramInASession.h"
#include <algorithm>
#include <set>

// What assistive technology reads of the program's window on its bus.

namespace framekeeper::test {
namespace {

std::vector<std::vector<std::string>> tableOfTabs(std::string const& text) {
    std::vector<std::vector<std::string>> rows;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::vector<std::string> fields(1);
        for (char const character : line) {
            if (character == '\t')
                fields.emplace_back();
            else
                fields.back() += character;
        }
        rows.push_back(std::move(fields));
    }
    return rows;
}

class AccessibilityInASession : public ProgramInASession {
protected:
    void SetUp() override {
        ProgramInASession::SetUp();
        if (IsSkipped()) return;
        startProgram();
        EXPECT_TRUE(lists(pathOfCopy("Applications")));
        EXPECT_TRUE(isDisabled("Stop", "No search is running")) << "nothing changes any more while it is read";
    }
};

TEST_F(AccessibilityInASession, NamesEveryElementOfTheWindow) {
    EXPECT_TRUE(waitUntil([&] {
        return use({"tree"}).find("6 copies") != std::string::npos ||
               use({"tree"}).find("7 copies") != std::string::npos;
    })) << use({"tree"});
    std::vector<std::vector<std::string>> const elements = tableOfTabs(use({"tree"}));
    ASSERT_GT(elements.size(), 20U);
    EXPECT_EQ(elements[0], (std::vector<std::string>{"frame", "Framekeeper", ""}));
    std::set<std::string> roles;
    for (std::vector<std::string> const& element : elements) {
        ASSERT_EQ(element.size(), 3U);
        roles.insert(element[0]);
        bool const wantsName = element[2] == "focusable" || element[0] == "label" || element[0] == "push button" ||
                               element[0] == "menu item" || element[0] == "status bar" || element[0] == "text";
        EXPECT_FALSE(wantsName && element[1].empty()) << element[0] << " in\n" << use({"tree"});
        EXPECT_NE(element[0], "unknown") << element[1];
        EXPECT_NE(element[0], "invalid") << element[1];
    }
    for (char const* const role : {"menu bar", "push button", "text", "table", "label", "status bar"})
        EXPECT_TRUE(roles.contains(role)) << role;
}

TEST_F(AccessibilityInASession, TellsRowColumnAndStateOfEachCell) {
    select(pathOfCopy("Applications"));
    std::vector<std::vector<std::string>> const cells = tableOfTabs(use({"cells"}));
    ASSERT_GE(cells.size(), 12U);
    std::vector<std::string> const titles{"Version", "Path", "Exists", "Running", "Login Item", "In Toolbar"};
    std::set<std::string> selectedRows;
    for (std::size_t index = 0; index < cells.size(); ++index) {
        ASSERT_EQ(cells[index].size(), 5U);
        EXPECT_EQ(cells[index][0], std::to_string(index / titles.size()));
        EXPECT_EQ(cells[index][1], std::to_string(index % titles.size()));
        EXPECT_EQ(cells[index][2], titles[index % titles.size()]);
        EXPECT_FALSE(cells[index][3].empty());
        if (cells[index][4] == "selected") selectedRows.insert(cells[index][0]);
    }
    EXPECT_EQ(selectedRows.size(), 1U);
}

TEST_F(AccessibilityInASession, EndsByTheKeyThatPeopleKnow) {
    select(pathOfCopy("Applications"));
    press("ctrl+q");
    EXPECT_EQ(m_program->wait(), 0);
}

} // namespace
} // namespace framekeeper::test

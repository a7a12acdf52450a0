#pragma once

#include "platform/appkit/interface/InterfaceFile.h"
#include "platform/appkit/views/NSApplication.h"
#include "tests/app/Controller.h"
#include "tests/support/Companion.h"
#include "tests/support/Environment.h"
#include <QAction>
#include <QHeaderView>
#include <QTableView>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace framekeeper::test {

// The program's own window, from its own interface file, on a disk of its own.
enum Column { Version, Path, Exists, Running, LoginItem, InToolbar };

class Window : public OnlyOwnCopies {
protected:
    void SetUp() override {
        OnlyOwnCopies::SetUp();
        NSApplication::sharedApplication();
        ::setenv("FRAMEKEEPER_LOCAL_COMPUTER", m_folder.path().c_str(), 1);
    }
    void TearDown() override {
        if (m_file) controller().query().stopQuery();
        ::unsetenv("FRAMEKEEPER_LOCAL_COMPUTER");
    }

    void open() {
        auto loaded = InterfaceFile::load(NSString::stringWithUTF8String_(MAIN_MENU));
        ASSERT_TRUE(std::holds_alternative<std::unique_ptr<InterfaceFile>>(loaded)) << std::get<std::string>(loaded);
        m_file = std::move(std::get<std::unique_ptr<InterfaceFile>>(loaded));
        m_file->window().makeKeyAndOrderFront_(nil);
    }
    // Opens the window, shows the one copy and closes it.
    void useToTheEnd() {
        open();
        ASSERT_TRUE(gathered());
        EXPECT_EQ(table()->model()->rowCount(), 1);
        controller().query().stopQuery();
        m_file.reset();
    }
    bool gathered() const {
        return runUntil([this] { return !controller().query().isGathering(); });
    }

    AppController controller() const { return as<AppController>(m_file->controller()); }
    template <class Widget>
    Widget* find(char const* name) const {
        return m_file->widget()->findChild<Widget*>(name);
    }
    QTableView* table() const { return find<QTableView>("pathsTable"); }
    QVariant cell(int row, int column, int role = Qt::DisplayRole) const {
        return table()->model()->index(row, column).data(role);
    }
    std::string cellText(int row, int column) const { return cell(row, column).toString().toStdString(); }
    std::vector<std::string> columnTexts(int column) const {
        std::vector<std::string> texts;
        for (int row = 0; row < table()->model()->rowCount(); ++row)
            texts.push_back(cellText(row, column));
        return texts;
    }
    std::vector<std::string> selectedPaths() const {
        std::vector<std::string> paths;
        for (id const& record : controller().pathsArrayController().selectedObjects())
            paths.push_back(text(record.valueForKey_("path")));
        return paths;
    }
    void clickHeader(int column) const {
        QHeaderView* const header = table()->horizontalHeader();
        QPoint const place(header->sectionViewportPosition(column) + header->sectionSize(column) / 2,
                           header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, place);
    }
    void trigger(char const* name) const { find<QAction>(name)->trigger(); }

    TemporaryFolder m_folder;
    std::unique_ptr<InterfaceFile> m_file;
};

} // namespace framekeeper::test

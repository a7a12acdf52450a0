#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "platform/appkit/views/NSApplication.h"
#include "platform/preferences/NSUserDefaults.h"
#include <QApplication>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QTest>
#include <algorithm>
#include <cstdlib>

namespace mac::test {

void needApplication() {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    NSApplication::sharedApplication();
    // The interface file finds the class by its name.
    classOf<FakeController>();
}

LoadedWindow::LoadedWindow(Settings settings) {
    needApplication();
    if (settings == Settings::Forgotten) {
        for (char const* const key : {FrameKey, ZoomedKey, ColumnsKey})
            NSUserDefaults::standardUserDefaults().removeObjectForKey_(NSString::stringWithUTF8String_(key));
    }
    auto loaded = InterfaceFile::load(MAIN_INTERFACE_FILE);
    m_file = std::move(std::get<std::unique_ptr<InterfaceFile>>(loaded));
    m_file->window().makeKeyAndOrderFront_(nil);
    static_cast<void>(QTest::qWaitForWindowActive(m_file->widget()));
}

FakeController LoadedWindow::controller() const { return as<FakeController>(m_file->controller()); }

QStringList LoadedWindow::column(int section) const {
    QStringList texts;
    QAbstractItemModel const& model = *table()->model();
    for (int row = 0; row < model.rowCount(); ++row)
        texts.append(model.index(row, section).data().toString());
    return texts;
}

void LoadedWindow::clickHeader(int section) const {
    QHeaderView* const header = table()->horizontalHeader();
    QPoint const place(header->sectionViewportPosition(section) + 8, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, place);
}

void LoadedWindow::selectRow(int row) const {
    table()->selectionModel()->setCurrentIndex(table()->model()->index(row, 0),
                                               QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

bool LoggedLines::contains(std::string const& part) const {
    return std::any_of(m_lines.begin(), m_lines.end(),
                       [&](std::string const& line) { return line.find(part) != std::string::npos; });
}

std::unique_ptr<InterfaceFile> loadForm(std::string const& text, std::string* reason) {
    needApplication();
    TemporaryFolder const folder;
    std::string const path = folder.makeFile("Window.ui", text);
    auto loaded = InterfaceFile::load(NSString::stringWithFileSystemRepresentation_(path));
    if (std::string const* const said = std::get_if<std::string>(&loaded)) {
        if (reason) *reason = *said;
        return nullptr;
    }
    return std::move(std::get<std::unique_ptr<InterfaceFile>>(loaded));
}

std::string formWith(std::string const& properties, std::string const& widgets) {
    return R"(<ui version="4.0"><class>Window</class><widget class="QWidget" name="window">)" + properties + widgets +
           "</widget></ui>";
}

std::string stringProperty(std::string const& name, std::string const& value) {
    return "<property name=\"" + name + R"(" stdset="0"><string notr="true">)" + value + "</string></property>";
}

std::string listProperty(std::string const& name, std::vector<std::string> const& values) {
    std::string text = "<property name=\"" + name + R"(" stdset="0"><stringlist notr="true">)";
    for (std::string const& value : values)
        text += "<string>" + value + "</string>";
    return text + "</stringlist></property>";
}

} // namespace mac::test

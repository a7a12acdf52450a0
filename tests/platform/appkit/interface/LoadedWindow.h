#pragma once

#include "platform/appkit/interface/InterfaceFile.h"
#include "platform/foundation/running/Log.h"
#include "tests/platform/appkit/interface/FakeController.h"
#include "tests/support/TemporaryFolder.h"
#include <QStringList>
#include <string>
#include <vector>

namespace mac::test {

// Makes the toolkit's application, once, on the offscreen platform unless another is set.
void needApplication();

// The program's window with a controller that stands in for the program's, on the screen.
class LoadedWindow {
public:
    // Whether the settings that an earlier window left are forgotten; they are kept where a test is about them.
    enum class Settings { Forgotten, Kept };
    explicit LoadedWindow(Settings settings = Settings::Forgotten);

    FakeController controller() const;
    QTableView* table() const { return find<QTableView>("pathsTable"); }
    QAction* action(char const* name) const { return find<QAction>(name); }
    template <class Widget>
    Widget* find(char const* name) const {
        return m_file->widget()->findChild<Widget*>(name);
    }
    QWidget* widget() const { return m_file->widget(); }
    InterfaceFile const& file() const { return *m_file; }
    // The texts of a column, from the top.
    QStringList column(int section) const;
    void clickHeader(int section) const;
    // The row alone, whatever keys an earlier test left pressed.
    void selectRow(int row) const;

private:
    std::unique_ptr<InterfaceFile> m_file;
};

// Where the window keeps its size and the widths of its columns.
inline constexpr char FrameKey[] = "NSWindow Frame MainWindow";
inline constexpr char ZoomedKey[] = "NSWindow Frame MainWindow Zoomed";
inline constexpr char ColumnsKey[] = "NSTableView Columns Copies";

inline constexpr int VersionColumn = 0;
inline constexpr int PathColumn = 1;
inline constexpr int ExistsColumn = 2;
inline constexpr int RunningColumn = 3;

// The lines logged while it lives.
class LoggedLines {
public:
    bool contains(std::string const& part) const;
    std::size_t count() const { return m_lines.size(); }

private:
    std::vector<std::string> m_lines;
    LogListener m_listener{[this](NSString const& line) { m_lines.push_back(line.UTF8String()); }};
};

// Loads a form of the given text. Nothing, and the reason, where it cannot be used.
std::unique_ptr<InterfaceFile> loadForm(std::string const& text, std::string* reason = nullptr);
// A form around the properties and widgets of its window.
std::string formWith(std::string const& properties, std::string const& widgets = {});
// Properties of a form as it writes them.
std::string stringProperty(std::string const& name, std::string const& value);
std::string listProperty(std::string const& name, std::vector<std::string> const& values);

} // namespace mac::test

#pragma once

#include "platform/appkit/arrangement/NSArrayController.h"
#include "platform/appkit/interface/ActionSending.h"
#include "platform/appkit/interface/KeyPathScope.h"
#include "platform/appkit/interface/NSWindow.h"
#include "platform/appkit/interface/TableCover.h"
#include "platform/appkit/views/NSControl.h"
#include <QAbstractButton>
#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QScrollArea>
#include <QTableView>
#include <QWidget>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace mac {

// The objects of an interface file, a form of Qt Designer whose dynamic properties say how they hang together; docs of
// the properties stand in InterfaceFile.cpp. The window and the controller live as long as this does. Main thread.
class InterfaceFile {
public:
    // The interface, or why it cannot be used: the file, the controller's class or its init. Anything else in the file
    // that is not known is logged and left out.
    static std::variant<std::unique_ptr<InterfaceFile>, std::string> load(NSString const& path);
    // For load; the window is not connected yet.
    explicit InterfaceFile(std::unique_ptr<QWidget> window);
    ~InterfaceFile();
    InterfaceFile(InterfaceFile const&) = delete;
    InterfaceFile& operator=(InterfaceFile const&) = delete;

    id const& controller() const { return m_controller; }
    NSWindow const& window() const { return m_windowObject; }
    QWidget* widget() const { return m_window.get(); }
    // Whether the controller wants to be the application's delegate.
    bool controllerIsDelegate() const;
    // The array controller of that name, or nil.
    NSArrayController arrayControllerNamed(QString const& name) const;

private:
    // The reason when there is no controller.
    std::optional<std::string> makeController();
    void makeArrayControllers();
    void makeArrayController(QString const& name);
    void bindArrayControllers();
    void makeTable(QTableView* table);
    void connectActivation(QTableView* table);
    void connectOutlet(QString const& key, id const& object);
    void connectAction(QAction* action);
    void connectCommand(QAction* action);
    void fillMenu(QMenu* menu);
    void connectButton(QAbstractButton* button);
    void connectFilter(QLineEdit* field);
    void connectWidgets();
    void connectConditions(QWidget* widget, TableCover* cover);
    // The part that covers the rows of the table that the widget names; null if it names none.
    TableCover* coverRows(QWidget* widget);
    void connectSidePane(QScrollArea* pane);
    // The object that gets the owner's selector: the controller unless the property target names another.
    id targetOf(QObject const* owner);
    template <class Owner, class Signal>
    void followCheck(Owner* owner, Signal signal);
    // Enabled while the target responds and the requirements of the property enabledWhen are met.
    void enableWhenUsable(QObject* owner, NSControl const& control);
    NSControl makeControl(NSControl control, QObject* owner, id const& target, QString const& selector);
    template <class Part, class... Arguments>
    Part* keep(Arguments&&... arguments) {
        auto part = std::make_shared<Part>(std::forward<Arguments>(arguments)...);
        m_parts.push_back(part);
        return part.get();
    }

    struct ContentBinding {
        NSArrayController arrayController;
        NSString binding;
        NSString keyPath;
    };

    std::unique_ptr<QWidget> m_window;
    NSWindow m_windowObject;
    id m_controller;
    KeyPathScope m_scope;
    std::vector<ContentBinding> m_contentBindings;
    // Outlets, controls and whatever else lives as long as the window.
    std::vector<id> m_objects;
    std::vector<std::shared_ptr<void>> m_parts;
    ActionSending m_sending;
    QObject m_connections;
};

} // namespace mac

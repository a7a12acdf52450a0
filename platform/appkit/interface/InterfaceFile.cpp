#include "platform/appkit/interface/InterfaceFile.h"
#include "platform/appkit/arrangement/ArrayControllerBody.h"
#include "platform/appkit/interface/BoundLabels.h"
#include "platform/appkit/interface/FilterField.h"
#include "platform/appkit/interface/Forms.h"
#include "platform/appkit/interface/SidePane.h"
#include "platform/appkit/interface/StatusLine.h"
#include "platform/appkit/interface/TableViewBody.h"
#include "platform/appkit/interface/VisibleText.h"
#include "platform/appkit/interface/WindowBody.h"
#include "platform/appkit/views/NSApplication.h"
#include "platform/foundation/objects/Exceptions.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/Log.h"
#include <QGroupBox>
#include <QMenu>

// The dynamic properties, by the widgets they stand on. Lists are lists of strings, one entry a line.
//
// window          controllerClass      class of the controller, which the file makes
//                 applicationDelegate  the controller is the application's delegate
//                 arrayControllers     names; for each a list property of that name with lines contentSet=KEYPATH or
//                                      contentArray=KEYPATH, identityKeyPath=KEYPATH, and outlet=none for
//                                      one that the controller has no key for
//                 initialFocus         name of the widget that gets the keyboard first
//                 glyph                outline of its icon
//                 autosaveName         keeps its size in the defaults, a table its columns' widths
// any widget      outlet               the controller's key under which it gets this object
//                 visibleWhen          key paths that must all be true, "!" negates; visibleDelay in milliseconds
//                 coversRows           name of the table over whose rows it lies
// scroll area     beside               name of the table beside or below which it stands, see SidePane.h
// table           rows                 name of the array controller
//                 columns              names; for each a list property NAMEColumn, see TableColumn.cpp
//                 files                key path of the files that rows stand for, see TableFiles.h
//                 activates            name of the action that a double click on a row and the Return key trigger
// action, button  action               selector sent to the controller; not answered: disabled
//                 target               key path of the object that gets the selector in the controller's place
//                 checkedWhen          key paths that must all be true for it to be checked; its selector changes them
//                 enabledWhen          see Requirements.h
//                 busyText             see ActionSending.h, worksWhileBusy too
//                 moreShortcuts        further key sequences
//                 themeIcon            name of its icon in the theme. Not the property icon: for a name that the theme
//                 lacks
//                                      the toolkit takes a folder for the icon's file, and reads the types of files
//                 glyph                outline of the icon; for all actions if the theme lacks the icon of one
//                 focuses, clears      name of the field that gets the keyboard, or is emptied; clearingKey: see
//                                      FilterField.h
// action          command              "RECEIVER SELECTOR": sent to "application", "window" or the table of that name
//                 shows                "about" or "shortcuts": see HelpPanels.h
// menu            sorts                name of the table whose columns it offers to sort by
// field           filters              name of the array controller, and filterKeyPaths
// label, button   displayPattern       see BoundLabels.h
// label           iconKeyPath          see BoundLabels.h
//                 showsLog             see StatusLine.h

namespace mac {

namespace {

NSString nameOf(QObject const* object) { return stringOf(object->objectName()); }

NSView viewForOutlet(QWidget* widget) {
    return qobject_cast<QGroupBox*>(widget) ? viewOfWidget(widget) : NSView(adopt<NSControl>(widget));
}

} // namespace

InterfaceFile::InterfaceFile(std::unique_ptr<QWidget> window)
    : m_window(std::move(window)), m_windowObject(adopt<NSWindow>(m_window.get())), m_sending(m_window.get()) {}

InterfaceFile::~InterfaceFile() = default;

bool InterfaceFile::controllerIsDelegate() const { return formProperty<bool>(m_window.get(), "applicationDelegate"); }

NSArrayController InterfaceFile::arrayControllerNamed(QString const& name) const {
    return as<NSArrayController>(m_scope.objectNamed(name));
}

std::variant<std::unique_ptr<InterfaceFile>, std::string> InterfaceFile::load(NSString const& path) {
    QString error;
    std::unique_ptr<QWidget> window = readForm(path, error);
    if (!window) return error.toStdString();
    auto file = std::make_unique<InterfaceFile>(std::move(window));
    if (std::optional<std::string> const reason = file->makeController()) return *reason;
    file->m_scope.add("application", NSApplication::sharedApplication());
    file->m_scope.add("window", file->m_windowObject);
    file->makeArrayControllers();
    // Requirements take over the tool tips as they are by then.
    styleWindow(file->widget());
    file->connectWidgets();
    file->bindArrayControllers();
    if (hasFormProperty(file->widget(), "autosaveName"))
        file->m_windowObject.setFrameAutosaveName_(stringOf(formProperty<QString>(file->widget(), "autosaveName")));
    if (file->m_controller.respondsToSelector_("awakeFromNib"))
        guarded([&] { file->m_controller.performSelector_("awakeFromNib"); });
    return file;
}

std::optional<std::string> InterfaceFile::makeController() {
    QString const name = formProperty<QString>(m_window.get(), "controllerClass");
    if (name.isEmpty()) return "it names no controllerClass";
    Class const controllerClass = NSClassFromString(stringOf(name));
    if (controllerClass == nil) return "its controllerClass " + name.toStdString() + " does not exist";
    guarded([&] { m_controller = controllerClass.alloc().performSelector_("init"); });
    if (m_controller == nil) return "init of its controllerClass " + name.toStdString() + " answered nil";
    m_scope.setController(m_controller);
    return std::nullopt;
}

void InterfaceFile::connectOutlet(QString const& key, id const& object) {
    m_objects.push_back(object);
    try {
        m_controller.setValue_forKey_(object, stringOf(key));
    } catch (NSUndefinedKeyException const& exception) {
        NSLog("Interface file: the outlet \"%@\" cannot be connected: %s", stringOf(key), exception.reason());
    }
}

void InterfaceFile::makeArrayControllers() {
    for (QString const& name : formProperty<QStringList>(m_window.get(), "arrayControllers"))
        makeArrayController(name);
}

void InterfaceFile::makeArrayController(QString const& name) {
    NSArrayController const arrayController = NSArrayController::alloc().init();
    NSString outlet = "";
    m_scope.add(name, arrayController);
    for (QString const& line : formProperty<QStringList>(m_window.get(), name.toUtf8().constData())) {
        QString const key = line.section('=', 0, 0).trimmed();
        NSString const value = stringOf(line.section('=', 1).trimmed());
        if (key == "contentSet" || key == "contentArray")
            m_contentBindings.push_back({arrayController, stringOf(key), value});
        else if (key == "outlet")
            outlet = value;
        else if (key == "identityKeyPath")
            arrayController.setIdentityKeyPath(value);
        else
            NSLog("Interface file: the array controller \"%@\" has a line that is not known: %@", stringOf(name),
                  stringOf(line));
    }
    if (!outlet.isEqualToString_("none")) connectOutlet(name, arrayController);
}

void InterfaceFile::bindArrayControllers() {
    for (ContentBinding const& binding : m_contentBindings)
        guarded([&] {
            binding.arrayController.bind_toObject_withKeyPath_options_(binding.binding, m_controller, binding.keyPath,
                                                                       nil);
        });
}

void InterfaceFile::makeTable(QTableView* table) {
    NSArrayController const rows = arrayControllerNamed(formProperty<QString>(table, "rows"));
    if (rows == nil) {
        NSLog("Interface file: the table \"%@\" names no array controller as its rows", nameOf(table));
        return;
    }
    std::vector<TableColumn> columns;
    for (QString const& name : formProperty<QStringList>(table, "columns"))
        columns.push_back(
            TableColumn::fromLines(name, formProperty<QStringList>(table, (name + "Column").toUtf8().constData())));
    NSTableView const object = adopt<NSTableView>(table, std::move(columns), rows);
    m_objects.push_back(object);
    m_scope.add(table->objectName(), object);
    if (hasFormProperty(table, "files"))
        bodyOf(object)->setFileKeyPath(stringOf(formProperty<QString>(table, "files")));
    if (hasFormProperty(table, "autosaveName"))
        object.setAutosaveName_(stringOf(formProperty<QString>(table, "autosaveName")));
    if (hasFormProperty(table, "outlet")) connectOutlet(formProperty<QString>(table, "outlet"), object);
    connectActivation(table);
}

void InterfaceFile::connectFilter(QLineEdit* field) {
    NSArrayController const rows = arrayControllerNamed(formProperty<QString>(field, "filters"));
    QStringList const keyPaths = formProperty<QStringList>(field, "filterKeyPaths");
    if (rows == nil || keyPaths.isEmpty()) {
        NSLog("Interface file: the field \"%@\" filters no array controller that the file makes, or by no key path",
              nameOf(field));
        return;
    }
    QObject::connect(field, &QLineEdit::textChanged, &m_connections, [rows, keyPaths](QString const& text) {
        guarded([&] { bodyOf(rows)->changeInSteps({.filter = predicateFor(text, keyPaths)}); });
    });
}

void InterfaceFile::connectConditions(QWidget* widget, TableCover* cover) {
    if (!hasFormProperty(widget, "visibleWhen")) return;
    QPointer<QWidget> const watched = widget;
    keep<Condition>(m_scope, formProperty<QStringList>(widget, "visibleWhen"),
                    formProperty<int>(widget, "visibleDelay"), [watched, cover](bool isTrue) {
                        if (watched && cover) return cover->setVisible(isTrue);
                        if (watched) watched->setVisible(isTrue);
                    });
}

TableCover* InterfaceFile::coverRows(QWidget* widget) {
    QString const name = formProperty<QString>(widget, "coversRows");
    if (name.isEmpty()) return nullptr;
    if (auto* const table = m_window->findChild<QTableView*>(name)) return keep<TableCover>(widget, table);
    NSLog(R"(Interface file: "%@" covers the rows of "%@", which does not exist)", nameOf(widget), stringOf(name));
    return nullptr;
}

void InterfaceFile::connectSidePane(QScrollArea* pane) {
    QString const name = formProperty<QString>(pane, "beside");
    if (name.isEmpty()) return;
    NSTableView const table = as<NSTableView>(m_scope.objectNamed(name));
    auto* const view = m_window->findChild<QTableView*>(name);
    if (table == nil || !view) {
        NSLog(R"(Interface file: "%@" stands beside "%@", which does not exist)", nameOf(pane), stringOf(name));
        return;
    }
    keep<SidePane>(pane, view, [table] { return bodyOf(table)->widthNeeded(); });
}

void InterfaceFile::connectWidgets() {
    if (hasFormProperty(m_window.get(), "outlet"))
        connectOutlet(formProperty<QString>(m_window.get(), "outlet"), m_windowObject);
    for (QWidget* const widget : m_window->findChildren<QWidget*>()) {
        auto* const label = qobject_cast<QLabel*>(widget);
        if (auto* const table = qobject_cast<QTableView*>(widget); table && hasFormProperty(table, "rows"))
            makeTable(table);
        else if (hasFormProperty(widget, "outlet"))
            connectOutlet(formProperty<QString>(widget, "outlet"), viewForOutlet(widget));
        if (auto* const button = qobject_cast<QAbstractButton*>(widget)) connectButton(button);
        if (auto* const field = qobject_cast<QLineEdit*>(widget); field && hasFormProperty(field, "filters"))
            connectFilter(field);
        if (hasFormProperty(widget, "displayPattern")) keep<BoundText>(widget, m_scope);
        if (label && hasFormProperty(label, "iconKeyPath")) keep<BoundIcon>(label, m_scope);
        if (label && formProperty<bool>(label, "showsLog")) m_sending.setStatusLine(keep<StatusLine>(label, m_scope));
        connectConditions(widget, coverRows(widget));
    }
    for (QScrollArea* const pane : m_window->findChildren<QScrollArea*>())
        connectSidePane(pane);
    for (QAction* const action : m_window->findChildren<QAction*>())
        connectAction(action);
    for (QMenu* const menu : m_window->findChildren<QMenu*>())
        fillMenu(menu);
}

} // namespace mac

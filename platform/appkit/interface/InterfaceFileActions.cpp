#include "platform/appkit/interface/FilterField.h"
#include "platform/appkit/interface/Forms.h"
#include "platform/appkit/interface/HelpPanels.h"
#include "platform/appkit/interface/InterfaceFile.h"
#include "platform/appkit/interface/Requirements.h"
#include "platform/appkit/interface/TableViewBody.h"
#include "platform/appkit/interface/VisibleText.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/Log.h"
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QShortcut>

// The actions, buttons and menus of an interface file. The properties stand in InterfaceFile.cpp.

namespace mac {

namespace {

// The toolkit tells of a double click whatever button made it; views see those of the left one alone.
class LeftDoubleClicks : public QObject {
public:
    explicit LeftDoubleClicks(QWidget* viewport) : QObject(viewport) { viewport->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override {
        bool const isOther = event->type() == QEvent::MouseButtonDblClick &&
                             static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton;
        return isOther || QObject::eventFilter(watched, event);
    }
};

} // namespace

void InterfaceFile::connectActivation(QTableView* table) {
    QString const name = formProperty<QString>(table, "activates");
    if (name.isEmpty()) return;
    auto* const action = m_window->findChild<QAction*>(name);
    if (!action) {
        NSLog(R"(Interface file: the table "%@" activates "%@", which does not exist)", stringOf(table->objectName()),
              stringOf(name));
        return;
    }
    // It belongs to the view.
    (void)std::make_unique<LeftDoubleClicks>(table->viewport()).release();
    QObject::connect(table, &QTableView::doubleClicked, action, &QAction::trigger);
    for (Qt::Key const key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto* const shortcut = new QShortcut(QKeySequence(key), table);
        shortcut->setContext(Qt::WidgetShortcut);
        shortcut->setAutoRepeat(false);
        QObject::connect(shortcut, &QShortcut::activated, action, &QAction::trigger);
    }
}

void InterfaceFile::enableWhenUsable(QObject* owner, NSControl const& control) {
    if (!control.target().respondsToSelector_(control.action())) return control.setEnabled_(NO);
    if (hasFormProperty(owner, "enabledWhen")) keep<Requirements>(owner, control, m_scope);
}

NSControl InterfaceFile::makeControl(NSControl control, QObject* owner, id const& target, QString const& selector) {
    m_objects.push_back(control);
    control.setTarget_(target);
    control.setAction_(SEL(selector.toStdString()));
    enableWhenUsable(owner, control);
    return control;
}

id InterfaceFile::targetOf(QObject const* owner) {
    QString const keyPath = formProperty<QString>(owner, "target");
    if (keyPath.isEmpty()) return m_controller;
    // The control does not keep its target.
    m_objects.push_back(BoundValue(m_scope, keyPath, [] {}).value());
    return m_objects.back();
}

template <class Owner, class Signal>
void InterfaceFile::followCheck(Owner* owner, Signal signal) {
    QStringList const keyPaths = formProperty<QStringList>(owner, "checkedWhen");
    if (keyPaths.isEmpty()) return;
    owner->setCheckable(true);
    QPointer<Owner> const watched = owner;
    auto* const condition = keep<Condition>(m_scope, keyPaths, 0, [watched](bool isTrue) {
        if (watched) watched->setChecked(isTrue);
    });
    // The toolkit has turned the mark before the selector was sent, which may have changed nothing.
    QObject::connect(owner, signal, &m_connections, [owner, condition] { owner->setChecked(condition->isTrue()); });
}

void InterfaceFile::connectAction(QAction* action) {
    if (QString const name = formProperty<QString>(action, "focuses"); !name.isEmpty()) {
        auto* const field = m_window->findChild<QWidget*>(name);
        if (field) QObject::connect(action, &QAction::triggered, field, [field] { focusOn(field); });
    }
    if (QString const name = formProperty<QString>(action, "clears"); !name.isEmpty()) {
        auto* const field = m_window->findChild<QLineEdit*>(name);
        // Owned by the action.
        if (field) (void)std::make_unique<FieldClearing>(action, field).release();
    }
    QString const panel = formProperty<QString>(action, "shows");
    if (panel == "about")
        QObject::connect(action, &QAction::triggered, &m_connections, [this] { showAboutPanel(widget()); });
    if (panel == "shortcuts")
        QObject::connect(action, &QAction::triggered, &m_connections, [this] { showKeysOf(widget()); });
    if (hasFormProperty(action, "command")) connectCommand(action);
    if (!hasFormProperty(action, "action")) return;
    // A key that is held down would delete one copy after another.
    action->setAutoRepeat(false);
    NSControl const control = makeControl(adopt<NSControl>(nullptr, action), action, targetOf(action),
                                          formProperty<QString>(action, "action"));
    QObject::connect(action, &QAction::triggered, &m_connections,
                     [this, control, action] { m_sending.send(control, action); });
    followCheck(action, &QAction::triggered);
}

void InterfaceFile::connectCommand(QAction* action) {
    QString const command = formProperty<QString>(action, "command");
    id const receiver = m_scope.objectNamed(command.section(' ', 0, 0));
    if (receiver == nil)
        NSLog(R"(Interface file: the command "%@" of "%@" names no receiver)", stringOf(command),
              stringOf(action->objectName()));
    NSControl const control = makeControl(adopt<NSControl>(nullptr, action), action, receiver, command.section(' ', 1));
    QObject::connect(action, &QAction::triggered, &m_connections,
                     [control] { guarded([&] { control.sendAction_to_(control.action(), control.target()); }); });
}

void InterfaceFile::fillMenu(QMenu* menu) {
    NSTableView const table = as<NSTableView>(m_scope.objectNamed(formProperty<QString>(menu, "sorts")));
    if (table != nil) menu->addActions(bodyOf(table)->sortActions());
}

void InterfaceFile::connectButton(QAbstractButton* button) {
    if (QString const name = formProperty<QString>(button, "clears"); !name.isEmpty()) {
        auto* const field = m_window->findChild<QLineEdit*>(name);
        if (field)
            QObject::connect(button, &QAbstractButton::clicked, field, [field] {
                field->clear();
                focusOn(field);
            });
    }
    if (!hasFormProperty(button, "action")) return;
    NSControl const control =
        makeControl(adopt<NSControl>(button), button, targetOf(button), formProperty<QString>(button, "action"));
    QObject::connect(button, &QAbstractButton::clicked, &m_connections,
                     [this, control, button] { m_sending.send(control, button); });
    followCheck(button, &QAbstractButton::clicked);
}

} // namespace mac

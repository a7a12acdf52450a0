#include "platform/appkit/interface/Forms.h"
#include "platform/appkit/interface/ContextMenuKeys.h"
#include "platform/appkit/interface/InterfaceIcons.h"
#include "platform/appkit/interface/LeadingLabels.h"
#include "platform/appkit/interface/LegiblePalette.h"
#include "platform/appkit/interface/VisibleEdges.h"
#include "platform/appkit/interface/VisibleText.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/running/Log.h"
#include <QAbstractButton>
#include <QAction>
#include <QBuffer>
#include <QCoreApplication>
#include <QLineEdit>
#include <QTableView>
#include <QToolBar>
#include <QToolButton>
#include <QUiLoader>
#include <algorithm>

namespace mac {

namespace {

// Home and End go to the first and the last row, as in a list: rows are selected whole, not cells.
class RowsTable : public QTableView {
public:
    using QTableView::QTableView;

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override {
        int const rows = model() ? model()->rowCount() : 0;
        bool const isToEnd = action == MoveHome || action == MoveEnd;
        if (!isToEnd || rows == 0) return QTableView::moveCursor(action, modifiers);
        return model()->index(action == MoveHome ? 0 : rows - 1, std::max(currentIndex().column(), 0));
    }
};

class FormLoader : public QUiLoader {
public:
    QWidget* createWidget(QString const& className, QWidget* parent, QString const& name) override {
        if (className == "QTableView") {
            auto table = std::make_unique<RowsTable>(parent);
            table->setObjectName(name);
            // Owned by the parent.
            return table.release();
        }
        if (QWidget* const widget = QUiLoader::createWidget(className, parent, name)) return widget;
        NSLog("Interface file: there is no widget class \"%@\"", stringOf(className));
        return QUiLoader::createWidget("QWidget", parent, name);
    }
};

// While an object of this class exists, Qt looks for no plugins: a loader would load all those that Designer has on
// this machine.
class WithoutPlugins {
public:
    WithoutPlugins() : m_paths(QCoreApplication::libraryPaths()) { QCoreApplication::setLibraryPaths({}); }
    ~WithoutPlugins() { QCoreApplication::setLibraryPaths(m_paths); }
    WithoutPlugins(WithoutPlugins const&) = delete;
    WithoutPlugins& operator=(WithoutPlugins const&) = delete;

private:
    QStringList m_paths;
};

} // namespace

std::unique_ptr<QWidget> readForm(NSString const& path, QString& error) {
    NSData const data = NSData::dataWithContentsOfFile_(path);
    if (data == nil) {
        error = "it cannot be read";
        return nullptr;
    }
    QByteArray const bytes(reinterpret_cast<char const*>(data.bytes()), static_cast<qsizetype>(data.length()));
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    WithoutPlugins const without;
    FormLoader loader;
    std::unique_ptr<QWidget> window(loader.load(&buffer));
    if (!window) error = "it is no form: " + loader.errorString();
    return window;
}

namespace {

QString glyphOf(QObject const* object) { return object->property("glyph").toString(); }

QString themeIconOf(QObject const* object) { return object->property("themeIcon").toString(); }

QIcon glyphIcon(QObject const* object) {
    QIcon const icon = drawnIcon(glyphOf(object));
    if (icon.isNull()) NSLog("Interface file: the glyph of \"%@\" is no path", stringOf(object->objectName()));
    return icon;
}

// Icons of two families side by side look broken, so the theme serves all actions or none.
void giveIcons(QWidget* window) {
    QList<QAction*> actions = window->findChildren<QAction*>();
    actions.removeIf([](QAction const* action) { return glyphOf(action).isEmpty(); });
    bool const isThemeComplete = std::ranges::all_of(actions, [](QAction const* action) {
        QString const name = themeIconOf(action);
        return !name.isEmpty() && QIcon::hasThemeIcon(name);
    });
    for (QAction* const action : actions)
        action->setIcon(isThemeComplete ? QIcon::fromTheme(themeIconOf(action)) : glyphIcon(action));
    for (QWidget* const widget : window->findChildren<QWidget*>()) {
        if (glyphOf(widget).isEmpty()) continue;
        if (auto* const button = qobject_cast<QAbstractButton*>(widget)) button->setIcon(glyphIcon(widget));
        if (auto* const field = qobject_cast<QLineEdit*>(widget))
            field->addAction(glyphIcon(widget), QLineEdit::LeadingPosition)->setText(field->accessibleName());
    }
}

void tellShortcuts(QAction* action) {
    QList<QKeySequence> shortcuts = action->shortcuts();
    for (QString const& further : action->property("moreShortcuts").toStringList())
        shortcuts.append(QKeySequence(further));
    if (shortcuts.isEmpty()) return;
    action->setShortcuts(shortcuts);
    QString const keys = shortcuts.first().toString(QKeySequence::NativeText);
    action->setToolTip(plainToolTip(QString("%1 (%2)").arg(action->toolTip(), keys)));
}

// A tool bar keeps the keyboard from its buttons, and they leave the mnemonics of their actions out.
void makeReachable(QToolButton* button) {
    QAction* const action = button->defaultAction();
    if (!action) return;
    button->setFocusPolicy(Qt::TabFocus);
    if (!action->text().contains('&')) return;
    button->setText(action->text());
    QObject::connect(action, &QAction::changed, button, [button, action] { button->setText(action->text()); });
}

// The button behind which a narrow tool bar hides actions; the toolkit's own picture of it is black on any theme.
void makeReachableOverflow(QToolBar* bar) {
    auto* const overflow = bar->findChild<QToolButton*>("qt_toolbar_ext_button");
    if (!overflow) return;
    overflow->setIcon(drawnIcon("M3.5 4 L7.5 8 L3.5 12 M8.5 4 L12.5 8 L8.5 12"));
    overflow->setFocusPolicy(Qt::TabFocus);
    QList<QAction*> const actions = bar->actions();
    // Behind the buttons, as it stands.
    if (!actions.isEmpty()) QWidget::setTabOrder(bar->widgetForAction(actions.last()), overflow);
    QString const name = QCoreApplication::translate("Framekeeper", "More actions");
    overflow->setAccessibleName(name);
    overflow->setToolTip(name);
}

} // namespace

void styleWindow(QWidget* window) {
    keepPaletteLegible();
    keepEdgesVisible();
    keepLabelsLeading(window);
    openContextMenusByKeys(window);
    giveIcons(window);
    if (!glyphOf(window).isEmpty()) window->setWindowIcon(tileIcon(glyphOf(window)));
    for (QAction* const action : window->findChildren<QAction*>())
        tellShortcuts(action);
    for (QToolBar* const bar : window->findChildren<QToolBar*>()) {
        for (QToolButton* const button : bar->findChildren<QToolButton*>())
            makeReachable(button);
        makeReachableOverflow(bar);
    }
    QString const first = window->property("initialFocus").toString();
    if (auto* const widget = first.isEmpty() ? nullptr : window->findChild<QWidget*>(first)) widget->setFocus();
}

void focusOn(QWidget* widget) {
    widget->setFocus(Qt::ShortcutFocusReason);
    if (auto* const field = qobject_cast<QLineEdit*>(widget)) field->selectAll();
}

} // namespace mac
